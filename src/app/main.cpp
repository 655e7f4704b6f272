// kv_orbline: one process per instrument. The parent passes everything on the command line.

#include "app/AwIni.h"
#include "app/Launch.h"
#include "app/Settings.h"

#include <QCoreApplication>

#include <cstdio>

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

    RunLoadEventStart(JoinArguments(argc, argv));
    ReadSettings(AwIni());
    return 0;
}
