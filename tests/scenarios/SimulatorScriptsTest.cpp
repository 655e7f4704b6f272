// Each script of the simulator, as the README shows them, played against the process: the
// simulator must end well (every expected byte came) and the result message be delivered.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace orbline::test;

TEST(SimulatorScripts, EachScriptPlaysItsInstrumentAgainstTheProcess) {
    struct Case {
        QString script;
        QString code;
        QString name;
        qsizetype records;
    };
    const Case cases[] = {
        {u"tonometer-2620.sim"_s, u"2620"_s, u"TOMEY"_s, 6},
        {u"glycohaemoglobin-0980.sim"_s, u"0980"_s, u"HLC"_s, 1},
        {u"aia-1160.sim"_s, u"1160"_s, u"AIA"_s, 1},
        {u"haematology-1190.sim"_s, u"1190"_s, u"XN-550"_s, 21},
        {u"coagulation-1650.sim"_s, u"1650"_s, u"CA-50"_s, 2},
        {u"cobas-1660.sim"_s, u"1660"_s, u"COBAS"_s, 7},
        {u"immunoassay-1730.sim"_s, u"1730"_s, u"E411"_s, 7},
        {u"chemistry-2140.sim"_s, u"2140"_s, u"BM-2140"_s, 3},
        {u"chemistry-2990.sim"_s, u"2990"_s, u"BM-2990"_s, 3},
        {u"urine-0855.sim"_s, u"0855"_s, u"UA"_s, 8},
        {u"tympanometer-1671.sim"_s, u"1671"_s, u"TYMP"_s, 1},
        {u"glucose-0990.sim"_s, u"0990"_s, u"GM"_s, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script.toStdString());
        LinkProcess link;
        CreateOrderStore(link);
        const QString device = link.native(u"tty"_s);
        QProcess simulator;
        simulator.setProcessChannelMode(QProcess::MergedChannels);
        simulator.start(QString::fromLocal8Bit(KV_SIMULATOR_EXE),
                        {u"--pty"_s, device,
                         QString::fromLocal8Bit(ORBLINE_SOURCE_DIR) +
                             u"/tools/simulator/scripts/"_s + c.script});
        ASSERT_TRUE(simulator.waitForStarted(5000));
        for (int i = 0; i < 100 && !QFile::exists(device); ++i) QThread::msleep(50);
        link.instrumentName = c.name;
        link.writeSettings(QString(), device);
        link.start(c.code);
        ASSERT_TRUE(simulator.waitForFinished(60000));
        EXPECT_EQ(simulator.exitCode(), 0) << simulator.readAll().toStdString();
        EXPECT_TRUE(link.waitForDeliveries(1));
        // The simulator's end of the line closed as it ended: the port is gone.
        EXPECT_EQ(link.finish(), 1);
        EXPECT_EQ(DeliveredRecords(link).size(), c.records);
    }
}
