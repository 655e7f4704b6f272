// kv_orbline: one process per instrument. The parent passes everything on the command line.

#include "app/AwIni.h"
#include "app/Launch.h"
#include "app/Settings.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    using namespace orbline;

    RunLoadEventStart(JoinArguments(argc, argv));

    ReadSettings(AwIni());
    return 0;
}
