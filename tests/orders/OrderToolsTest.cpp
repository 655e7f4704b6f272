#include "orders/OrderIntake.h"
#include "orders/OrderTestSupport.h"

#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <memory>

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

namespace {

struct ToolRun {
    int status = -1;
    QString out;
    QString err;
};

ToolRun RunTool(const char* exe, const QStringList& args, int timeoutMs = 30000) {
    QProcess p;
    p.start(QString::fromUtf8(exe), args);
    ToolRun run;
    if (!p.waitForFinished(timeoutMs)) return run;
    run.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    run.out = QString::fromUtf8(p.readAllStandardOutput());
    run.err = QString::fromUtf8(p.readAllStandardError());
    return run;
}

// The command line for a store: a file as each command's first argument, a server's address
// through --connect.
QStringList Command(const QString& store, const QString& command, const QStringList& args = {}) {
    if (IsPostgresAddress(store)) return QStringList{u"--connect"_s, store, command} + args;
    return QStringList{command, store} + args;
}

// orderdb makes the store, the intake fills it, orderdb shows what it holds.
void ToolRoundTrip(OrderSite& site, const QString& store) {
    EXPECT_EQ(RunTool(ORDERDB_EXE, Command(store, u"create"_s)).status, 0);
    EXPECT_EQ(RunTool(ORDERDB_EXE, Command(store, u"create"_s)).status, 1) << "never over a store";

    Ctx().InstrumentCode = u"1730"_s;
    Ctx().DbPath = site.site.path();
    Ctx().DbConnect = IsPostgresAddress(store) ? store : QString();
    Ctx().OrderPath = site.site.path(u"in"_s);
    QByteArray line = "20250416,12,0930,ORD,1730,,ｶﾅ,,,,,,,SAMPLE9";
    line += QByteArray(40 - 13, ',') + "TSH,FERR";
    site.site.writeFile(u"in/1730.csv"_s, EncodeAnsi(QString::fromUtf8(line)));
    TakeSettled(TakeOrders1730);

    const ToolRun day = RunTool(ORDERDB_EXE, Command(store, u"day"_s, {u"20250416"_s, u"1730"_s}));
    EXPECT_EQ(day.status, 0) << day.err.toStdString();
    EXPECT_TRUE(day.out.contains(u"SAMPLE9"_s)) << day.out.toStdString();
    EXPECT_TRUE(day.out.endsWith(u"1 order\n"_s));
    const ToolRun show = RunTool(
        ORDERDB_EXE, Command(store, u"show"_s, {u"20250416"_s, u"12"_s, u"1730"_s, u"ORD"_s}));
    EXPECT_EQ(show.status, 0);
    EXPECT_TRUE(show.out.contains(u"KANJYAKANA    ｶﾅ\n"_s)) << show.out.toStdString();
    EXPECT_TRUE(show.out.endsWith(u"tests:\n   1  1\n   2  4290\n"_s)) << show.out.toStdString();
    EXPECT_EQ(RunTool(ORDERDB_EXE, Command(store, u"specimen"_s, {u"none"_s})).status, 1);
}

}  // namespace

TEST(OrderDbTool, MakesAStoreTheIntakeFillsAndShowsItsOrders) {
    OrderSite store;
    const QString file = store.site.native(u"KV_Orbline2.min"_s);
    ToolRoundTrip(store, file);

    const ToolRun bad = RunTool(ORDERDB_EXE, {u"day"_s, file, u"2025-04-16"_s});
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(bad.err.contains(u"not a date of eight digits"_s));
    EXPECT_EQ(RunTool(ORDERDB_EXE, {u"show"_s, store.site.native(u"none.min"_s), u"20250416"_s,
                                    u"12"_s, u"1730"_s, u"ORD"_s})
                  .status,
              1);
}

// On the server, create makes the table with the key and the lookups' indexes.
TEST(OrderDbTool, MakesTheTableOnAServerAndShowsItsOrders) {
    if (TestServerAddress().isEmpty()) GTEST_SKIP() << "no test server: KV_ORBLINE_TEST_PG";
    OrderSite store(nullptr, true);
    store.exec(u"DROP TABLE T_ORDER"_s);
    ToolRoundTrip(store, store.serverAddress());
    EXPECT_EQ(store.rows().size(), 1u);
    EXPECT_EQ(store.value(u"SELECT COUNT(*) FROM pg_indexes WHERE tablename = 't_order'"_s).toInt(),
              3)
        << "the key and the two lookups' indexes";
}

namespace {

// Four processes take orders and eight look them up, all on one store, for the given time. Two
// takers share a tag, so they overwrite each other's rows while both write: every line sent is
// stored once under its own key, and no statement fails.
void RunLoad(OrderSite& store, const QString& storeArg, int seconds) {
    const QStringList tags = {u"A"_s, u"B"_s, u"C"_s, u"A"_s};
    std::vector<std::unique_ptr<QProcess>> takers;
    std::vector<std::unique_ptr<QProcess>> lookers;
    const auto start = [&](const QStringList& args) {
        auto p = std::make_unique<QProcess>();
        p->start(QString::fromUtf8(ORDERLOAD_EXE), args);
        EXPECT_TRUE(p->waitForStarted());
        return p;
    };
    const QString time = QString::number(seconds);
    for (qsizetype i = 0; i < tags.size(); ++i)
        takers.push_back(start({u"take"_s, store.site.native(u"take"_s + QString::number(i)),
                                storeArg, time, tags[i]}));
    for (int i = 0; i < 8; ++i)
        lookers.push_back(
            start(QStringList{u"look"_s, store.site.native(u"look"_s + QString::number(i)),
                              storeArg, time} +
                  tags.mid(0, 3)));

    const auto finish = [&](QProcess& p) {
        EXPECT_TRUE(p.waitForFinished(seconds * 1000 + 60000));
        EXPECT_EQ(p.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(p.exitCode(), 0) << p.arguments().join(u' ').toStdString() << ": "
                                   << p.readAllStandardError().toStdString();
        return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
    };
    static const QRegularExpression sent(u"^sent (\\d+)$"_s);
    static const QRegularExpression looked(u"^lookups (\\d+) found (\\d+)$"_s);
    qint64 found = 0;
    for (auto& p : lookers) {
        const auto m = looked.match(finish(*p));
        ASSERT_TRUE(m.hasMatch());
        found += m.captured(2).toLongLong();
    }
    std::map<QString, qint64> mostSent;
    for (qsizetype i = 0; i < tags.size(); ++i) {
        const auto m = sent.match(finish(*takers[static_cast<size_t>(i)]));
        ASSERT_TRUE(m.hasMatch());
        mostSent[tags[i]] = std::max(mostSent[tags[i]], m.captured(1).toLongLong());
    }
    for (const auto& [tag, lines] : mostSent)
        EXPECT_EQ(static_cast<qint64>(store.rows(u"ORDERCD LIKE '"_s + tag + u"-%'"_s).size()),
                  lines)
            << tag.toStdString();
    EXPECT_GT(found, 0);
}

}  // namespace

// Runs for 30 seconds on one SQLite file.
TEST(OrderConcurrency, FourTakersAndEightLookersShareOneSQLiteFileFor30Seconds) {
    OrderSite store(nullptr);
    RunLoad(store, store.site.native(u"db"_s), 30);
}

// Runs for 30 seconds on the test server.
TEST(OrderConcurrency, FourTakersAndEightLookersShareOneServerFor30Seconds) {
    if (TestServerAddress().isEmpty()) GTEST_SKIP() << "no test server: KV_ORBLINE_TEST_PG";
    OrderSite store(nullptr, true);
    RunLoad(store, store.serverAddress(), 30);
}
