// The systemd unit as systemd reads it: the template unit, instantiated with the built program
// in place of the installed one, passes `systemd-analyze verify` without a word; the example
// instance file gives the command line with its "\" intact; an instance without a command line
// starts the program with no argument at all.

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
    ASSERT_TRUE(unit.contains("/usr/bin/kv_orbline"));
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

// systemd passes "${VAR}" as one argument even when it is empty, and the program would run on
// the root folder and the first port; the unit's start command passes none, so the program
// prints its usage and ends with 2, which the unit does not restart.
TEST(ServiceUnit, AnInstanceWithoutItsCommandLineStartsTheProgramWithNoArgument) {
    const QString unit = QString::fromUtf8(ReadAll(Packaging(u"systemd/kv-orbline@.service"_s)));
    const QString prefix = u"ExecStart=/bin/sh -c '"_s;
    const qsizetype start = unit.indexOf(prefix);
    ASSERT_GE(start, 0) << "the start command is no longer run through sh";
    const qsizetype end = unit.indexOf(u"'\n"_s, start);
    ASSERT_GT(end, start);
    // "$$" is systemd's literal "$".
    const QString script =
        unit.mid(start + prefix.size(), end - start - prefix.size())
            .replace(u"$$"_s, u"$"_s)
            .replace(u"/usr/bin/kv_orbline"_s, QString::fromLocal8Bit(KV_ORBLINE_EXE));
    for (const bool present : {false, true}) {
        QProcess process;
        QProcessEnvironment env;
        if (present) env.insert(u"KV_ORBLINE_ARGS"_s, QString());
        process.setProcessEnvironment(env);
        process.start(u"/bin/sh"_s, {u"-c"_s, script});
        ASSERT_TRUE(process.waitForFinished(10000));
        EXPECT_EQ(process.exitCode(), 2) << present;
        EXPECT_TRUE(process.readAllStandardError().startsWith("usage: kv_orbline")) << present;
    }
}
