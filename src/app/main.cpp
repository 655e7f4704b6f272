// kv_orbline: one process per instrument. The parent passes everything on the command line.

#include "app/CloseRequest.h"
#include "app/CommandLine.h"
#include "app/Launch.h"
#include "app/ServiceWatchdog.h"
#include "app/Session.h"
#include "common/Form.h"
#include "common/RunContext.h"

#include <QCoreApplication>

#ifdef ORBLINE_HAS_CONSOLE
#include "console/Console.h"

#include <QApplication>
#endif

#include <cstdio>
#include <memory>

namespace {

void CloseRequestArrived() {
    std::int16_t cancel = 0;
    orbline::Form_QueryUnload(cancel);
}

// A window only for ShowMode 1: every other process runs without a display.
std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv, bool console) {
#ifdef ORBLINE_HAS_CONSOLE
    if (console) {
        auto app = std::make_unique<QApplication>(argc, argv);
        orbline::console::InstallConsole();
        return app;
    }
#else
    if (console) std::fputs("kv_orbline: built without the console; no window is shown\n", stderr);
#endif
    return std::make_unique<QCoreApplication>(argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
    // A parent always passes a command line. Without one the logs would go to the root of the
    // file system and the first serial port would be opened: tell the person at the shell.
    if (argc < 2) {
        std::fputs(
            "usage: kv_orbline CODE=SHOWMODE=PREFIX=APPPATH=SAMPLEID=SPARE=RUNMARK\n"
            "  for instance: kv_orbline 2620=0=TN=\\opt\\kv\\site  (\"/\" is removed; write "
            "paths with \"\\\")\n",
            stderr);
        return 2;
    }
    using namespace orbline;
    std::u16string raw;
    const QString commandLine =
        RawCommandArguments(raw) ? QString::fromStdU16String(raw) : JoinArguments(argc, argv);
    const std::unique_ptr<QCoreApplication> app =
        MakeApplication(argc, argv, ShowsConsole(ParseCommandLine(commandLine).ShowMode));

    // Unloading the form is the close request, whoever asks for it: the parent, the exit
    // command, the console's close button or an abnormal end.
    SetUnloadHandler(&CloseRequestArrived);
    if (!InstallCloseRequest(&CloseRequestArrived))
        std::fputs("kv_orbline: the close request cannot be received\n", stderr);
    StartServiceWatchdog();

    Form_Load(commandLine);
    // After a stop the form waits for the next command or the close request.
    return QCoreApplication::exec();
}
