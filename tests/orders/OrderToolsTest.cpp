#include "orders/OrderIntake.h"
#include "orders/OrderTestSupport.h"

#include <QProcess>
#include <QRegularExpression>

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

}  // namespace

TEST(OrderDbTool, MakesAStoreTheIntakeFillsAndShowsItsOrders) {
    TestSite site;
    const QString file = site.native(u"KV_Orbline2.min"_s);
    EXPECT_EQ(RunTool(ORDERDB_EXE, {u"create"_s, file}).status, 0);
    EXPECT_EQ(RunTool(ORDERDB_EXE, {u"create"_s, file}).status, 1) << "never over a store";

    Ctx().InstrumentCode = u"1730"_s;
    Ctx().DbPath = site.path();
    Ctx().OrderPath = site.path(u"in"_s);
    QByteArray line = "20250416,12,0930,ORD,1730,,ｶﾅ,,,,,,,SAMPLE9";
    line += QByteArray(40 - 13, ',') + "TSH,FERR";
    site.writeFile(u"in/1730.csv"_s, EncodeAnsi(QString::fromUtf8(line)));
    TakeSettled(TakeOrders1730);

    const ToolRun day = RunTool(ORDERDB_EXE, {u"day"_s, file, u"20250416"_s, u"1730"_s});
    EXPECT_EQ(day.status, 0) << day.err.toStdString();
    EXPECT_TRUE(day.out.contains(u"SAMPLE9"_s)) << day.out.toStdString();
    EXPECT_TRUE(day.out.endsWith(u"1 order\n"_s));
    const ToolRun show =
        RunTool(ORDERDB_EXE, {u"show"_s, file, u"20250416"_s, u"12"_s, u"1730"_s, u"ORD"_s});
    EXPECT_EQ(show.status, 0);
    EXPECT_TRUE(show.out.contains(u"KANJYAKANA    ｶﾅ\n"_s)) << show.out.toStdString();
    EXPECT_TRUE(show.out.endsWith(u"tests:\n   1  1\n   2  4290\n"_s)) << show.out.toStdString();
    EXPECT_EQ(RunTool(ORDERDB_EXE, {u"specimen"_s, file, u"none"_s}).status, 1);

    const ToolRun bad = RunTool(ORDERDB_EXE, {u"day"_s, file, u"2025-04-16"_s});
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(bad.err.contains(u"not a date of eight digits"_s));
    EXPECT_EQ(RunTool(ORDERDB_EXE, {u"show"_s, site.native(u"none.min"_s), u"20250416"_s, u"12"_s,
                                    u"1730"_s, u"ORD"_s})
                  .status,
              1);
}

// Runs for 30 seconds: four processes take orders and eight look them up, all on one file.
TEST(OrderConcurrency, FourTakersAndEightLookersShareOneSQLiteFileFor30Seconds) {
    OrderSite store(nullptr);
    const QString dbFolder = store.site.native(u"db"_s);
    const QStringList tags = {u"A"_s, u"B"_s, u"C"_s, u"D"_s};
    std::vector<std::unique_ptr<QProcess>> takers;
    std::vector<std::unique_ptr<QProcess>> lookers;
    const auto start = [&](const QStringList& args) {
        auto p = std::make_unique<QProcess>();
        p->start(QString::fromUtf8(ORDERLOAD_EXE), args);
        EXPECT_TRUE(p->waitForStarted());
        return p;
    };
    for (const QString& tag : tags)
        takers.push_back(
            start({u"take"_s, store.site.native(u"take"_s + tag), dbFolder, u"30"_s, tag}));
    for (int i = 0; i < 8; ++i)
        lookers.push_back(
            start(QStringList{u"look"_s, store.site.native(u"look"_s + QString::number(i)),
                              dbFolder, u"30"_s} +
                  tags));

    const auto finish = [](QProcess& p) {
        EXPECT_TRUE(p.waitForFinished(90000));
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
    for (qsizetype i = 0; i < tags.size(); ++i) {
        const auto m = sent.match(finish(*takers[static_cast<size_t>(i)]));
        ASSERT_TRUE(m.hasMatch());
        // Every line sent is stored, under its own key.
        EXPECT_EQ(static_cast<qint64>(store.rows(u"ORDERCD LIKE '"_s + tags[i] + u"-%'"_s).size()),
                  m.captured(1).toLongLong());
    }
    EXPECT_GT(found, 0);
}
