// The systemd unit as systemd reads it: the template unit, instantiated with the built program
// in place of the installed one, passes `systemd-analyze verify` without a word; the example
// instance file gives the command line with its "\" intact.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

QString Packaging(const QString& relative) {
    return QString::fromLocal8Bit(ORBLINE_SOURCE_DIR) + u"/packaging/"_s + relative;
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

TEST(ServiceUnit, AnInstanceOfTheTemplatePassesSystemdVerification) {
    const QString analyze = QStandardPaths::findExecutable(u"systemd-analyze"_s);
    if (analyze.isEmpty()) GTEST_SKIP() << "systemd-analyze is not installed (package systemd)";
    QByteArray unit = ReadAll(Packaging(u"systemd/kv-orbline@.service"_s));
    ASSERT_TRUE(unit.contains("ExecStart=/usr/bin/kv_orbline "));
    unit.replace("/usr/bin/kv_orbline", QByteArray(KV_ORBLINE_EXE));

    QTemporaryDir dir;
    const QString instance = dir.filePath(u"kv-orbline@0980-HA.service"_s);
    QFile file(instance);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(unit) == unit.size());
    file.close();

    QProcess verify;
    verify.setProcessChannelMode(QProcess::MergedChannels);
    verify.start(analyze, {u"verify"_s, u"--man=no"_s, instance});
    ASSERT_TRUE(verify.waitForFinished(60000));
    const QString said = QString::fromLocal8Bit(verify.readAll());
    EXPECT_EQ(verify.exitCode(), 0) << said.toStdString();
    // A line it cannot parse is only a warning ("..., ignoring"), with status 0: any word about
    // this unit fails. Words about other units (a container's own) do not.
    for (const QString& line : said.split(u'\n', Qt::SkipEmptyParts))
        EXPECT_FALSE(line.contains(u"kv-orbline@"_s)) << line.toStdString();
}

// EnvironmentFile= drops a "\" outside quotes. The user environment generator reads the same
// syntax with the same parser, so it shows what the unit would pass.
TEST(ServiceUnit, TheExampleInstanceFileKeepsTheBackslashesOfItsPath) {
    const QString generator =
        u"/usr/lib/systemd/user-environment-generators/30-systemd-environment-d-generator"_s;
    if (!QFile::exists(generator)) GTEST_SKIP() << "no systemd environment generator";
    QTemporaryDir config;
    QDir(config.path()).mkpath(u"environment.d"_s);
    ASSERT_TRUE(QFile::copy(Packaging(u"systemd/0980-HA.conf.example"_s),
                            config.filePath(u"environment.d/0980-HA.conf"_s)));

    QProcess parse;
    QProcessEnvironment env;
    env.insert(u"XDG_CONFIG_HOME"_s, config.path());
    parse.setProcessEnvironment(env);
    parse.start(generator, {});
    ASSERT_TRUE(parse.waitForFinished(30000));
    // It writes the value again in shell quoting, each "\" doubled.
    const QStringList lines = QString::fromLocal8Bit(parse.readAllStandardOutput()).split(u'\n');
    EXPECT_TRUE(lines.contains(uR"(KV_ORBLINE_ARGS="0980=0=HA=\\srv\\kv\\0980")"_s))
        << lines.join(u'\n').toStdString();
}
