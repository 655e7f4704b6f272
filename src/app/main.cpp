// kv_orbline: one process per instrument. The parent passes everything on the command line.

#include "app/CloseRequest.h"
#include "app/CommandLine.h"
#include "app/Launch.h"
#include "app/ServiceWatchdog.h"
#include "app/Session.h"
#include "common/Form.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

void CloseRequestArrived() {
    std::int16_t cancel = 0;
    orbline::Form_QueryUnload(cancel);
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
    QCoreApplication app(argc, argv);
    using namespace orbline;

    // Unloading the form is the close request, whoever asks for it: the parent, the exit
    // command or an abnormal end.
    SetUnloadHandler(&CloseRequestArrived);
    if (!InstallCloseRequest(&CloseRequestArrived))
        std::fputs("kv_orbline: the close request cannot be received\n", stderr);
    StartServiceWatchdog();

    std::u16string raw;
    Form_Load(RawCommandArguments(raw) ? QString::fromStdU16String(raw)
                                       : JoinArguments(argc, argv));
    // After a stop the form waits for the next command or the close request.
    return QCoreApplication::exec();
}
