// Each script of the simulator, as the README shows them, played against the process: the
// simulator must end well (every expected byte came) and the result message be delivered. The
// session is captured, and kv_replay must deliver the same result files from the capture, and
// from the work folder's pieces where they hold the result message.

#include "support/AstmInstrument.h"
#include "support/SimulatorScripts.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace orbline::test;

namespace {

// Name and bytes of each file of a folder.
std::map<QString, QByteArray> FolderFiles(const QString& folder) {
    std::map<QString, QByteArray> files;
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly)) files[name] = file.readAll();
    }
    return files;
}

// kv_replay on the recorded site's settings and clock; its exit status, output in `log`.
int Replay(const LinkProcess& link, const QString& code, const QString& input,
           const QString& outDir, QString& log) {
    QProcess replay;
    replay.setProcessChannelMode(QProcess::MergedChannels);
    replay.start(
        QString::fromLocal8Bit(KV_REPLAY_EXE),
        {u"--ini"_s, link.native(u"KV_Orbline.ini"_s), u"--now"_s, u"2025-04-16 09:30:15"_s,
         u"--program"_s, QString::fromLocal8Bit(KV_ORBLINE_EXE), code, input, outDir});
    const bool ended = replay.waitForFinished(60000);
    log = QString::fromLocal8Bit(replay.readAll());
    return ended && replay.exitStatus() == QProcess::NormalExit ? replay.exitCode() : -1;
}

class SimulatorScripts : public testing::TestWithParam<ScriptCase> {};

}  // namespace

TEST_P(SimulatorScripts, ScriptPlaysItsInstrumentAndReplayDeliversTheSameFiles) {
    const ScriptCase& c = GetParam();
    const QString code = QString::fromLatin1(c.code);
    LinkProcess link;
    CreateOrderStore(link);
    const QString device = link.native(u"tty"_s);
    const QString capture = link.native(u"session.capture"_s);
    QProcess simulator;
    simulator.setProcessChannelMode(QProcess::MergedChannels);
    simulator.start(QString::fromLocal8Bit(KV_SIMULATOR_EXE),
                    {u"--pty"_s, device, u"--capture"_s, capture,
                     QString::fromLocal8Bit(ORBLINE_SOURCE_DIR) + u"/tools/simulator/scripts/"_s +
                         QString::fromLatin1(c.script)});
    ASSERT_TRUE(simulator.waitForStarted(5000));
    for (int i = 0; i < 100 && !QFile::exists(device); ++i) QThread::msleep(50);
    link.instrumentName = QString::fromLatin1(c.name);
    link.writeSettings(QString(), device);
    link.start(code);
    ASSERT_TRUE(simulator.waitForFinished(60000));
    EXPECT_EQ(simulator.exitCode(), 0) << simulator.readAll().toStdString();
    EXPECT_TRUE(link.waitForDeliveries(1));
    // The simulator's end of the line closed as it ended: the port is gone.
    EXPECT_EQ(link.finish(), 1);
    EXPECT_EQ(DeliveredRecords(link).size(), c.records);

    const auto delivered = FolderFiles(link.native(u"data"_s));
    const auto charts = FolderFiles(link.native(u"chart"_s));
    QStringList inputs{capture};
    if (*c.pieceFolder != '\0') inputs.append(link.native(QString::fromLatin1(c.pieceFolder)));
    for (const QString& input : inputs) {
        SCOPED_TRACE(input.toStdString());
        const QTemporaryDir out;
        QString log;
        ASSERT_EQ(Replay(link, code, input, out.path(), log), 0) << log.toStdString();
        EXPECT_EQ(FolderFiles(out.path()), delivered) << log.toStdString();
        EXPECT_EQ(FolderFiles(out.filePath(u"chart"_s)), charts);
    }
}

INSTANTIATE_TEST_SUITE_P(EachCode, SimulatorScripts, testing::ValuesIn(orbline::test::kScriptCases),
                         [](const testing::TestParamInfo<ScriptCase>& info) {
                             return std::string("Code") + info.param.code;
                         });
