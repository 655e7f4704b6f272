// The order store under a day's load and more: the intake of 10,000 order lines of 40 tests
// in 10 files, then 10,000 lookups on a store of 100,000 rows. Each run checks that the store
// holds exactly the rows sent and that every lookup found its order.
//
// Aim on SQLite: at least 5,000 lines/s and 2,000 lookups/s.
//
// Each runs on a SQLite file and, when KV_ORBLINE_BENCH_PG holds the address of a database
// this run may empty (postgresql://...), on that server too.

#include "common/Clock.h"
#include "common/RunContext.h"
#include "common/TextFile.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"
#include "orders/OrderSchema.h"
#include "orders/OrderStore.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

constexpr int kFiles = 10;
constexpr int kLinesPerFile = 1000;
constexpr int kTests = 40;
constexpr int kStoreRows = 100000;
constexpr int kLookups = 10000;

// Forty different test names of 1660.
const QStringList& TestNames() {
    static const QStringList names = {
        u"9NACL"_s, u"CKNAC"_s, u"A1CD2"_s,  u"Cl"_s,    u"A1-H2"_s, u"CO2-L"_s, u"A1-H3"_s,
        u"CREJ2"_s, u"A1-W2"_s, u"CREJ2U"_s, u"A1-W3"_s, u"CREK"_s,  u"AAGP2"_s, u"CREK3"_s,
        u"ACETA"_s, u"CRPLX"_s, u"ALB2"_s,   u"CRPNX"_s, u"ALBCP"_s, u"CYSC"_s,  u"ALBU2"_s,
        u"DBILV"_s, u"ALPJ2"_s, u"D-DI"_s,   u"ALTL"_s,  u"D-DI2"_s, u"AMIK2"_s, u"DIG"_s,
        u"AMYL2"_s, u"DIGIT"_s, u"AMY-P"_s,  u"ETOH2"_s, u"ASOX1"_s, u"FERR"_s,  u"ASTL"_s,
        u"FMC"_s,   u"AT"_s,    u"GA"_s,     u"GALB"_s,  u"GENT2"_s};
    return names;
}

QString OrderKey(int n) {
    return u"K"_s + QString::number(n).rightJustified(9, u'0');
}

QString OrderLine(const QString& date, int n) {
    QStringList f = {date,      QString::number(n % 997), u"0930"_s,    OrderKey(n),
                     u"1660"_s, u"山田 太郎"_s,           u"ﾔﾏﾀﾞ ﾀﾛｳ"_s};
    while (f.size() < 40) f.append(u"x"_s);
    return (f + TestNames()).join(u","_s);
}

// An empty T_ORDER in the server's database.
bool EmptyServerStore(const QString& address) {
    const QString name = u"bench_create"_s;
    if (!ConnectOrderDb(name, {address, {}}, nullptr)) return false;
    bool ok = false;
    {
        QSqlQuery(QSqlDatabase::database(name)).exec(u"DROP TABLE IF EXISTS T_ORDER"_s);
        ok = CreateOrderTable(name, nullptr);
    }
    DisconnectOrderDb(name);
    return ok;
}

// A site whose store holds nothing yet: a SQLite file, or T_ORDER on the server.
struct Site {
    explicit Site(bool onServer) {
        ResetRunContext();
        Ctx().InstrumentCode = u"1660"_s;
        Ctx().AppPath = dir.path();
        Ctx().DbPath = dir.path();
        Ctx().OrderPath = dir.path() + u"/orders"_s;
        QDir().mkpath(Ctx().OrderPath);
        if (onServer) {
            Ctx().DbConnect = qEnvironmentVariable("KV_ORBLINE_BENCH_PG");
            ok = IsPostgresAddress(Ctx().DbConnect) && EmptyServerStore(Ctx().DbConnect);
            return;
        }
        QString error;
        ok = CreateOrderStore(dir.path() + u"/KV_Orbline2.min"_s, &error);
    }
    qint64 rows() const {
        OpenOrderDb();
        qint64 count = -1;
        {
            QSqlQuery q(OrderDb());
            if (q.exec(u"SELECT COUNT(*) FROM T_ORDER"_s) && q.next())
                count = q.value(0).toLongLong();
        }
        CloseOrderDb();
        return count;
    }
    QTemporaryDir dir;
    bool ok = false;
};

// A store that cannot be opened would end the run: such a benchmark is skipped instead.
bool Unusable(benchmark::State& state, const Site& site) {
    if (site.ok) return false;
    state.SkipWithError("no store: on a server, KV_ORBLINE_BENCH_PG names none that opens");
    return true;
}

void DropOrderFiles(int firstLine) {
    const QString today = NowText(u"YYYYMMDD"_s);
    for (int f = 0; f < kFiles; ++f) {
        QStringList lines;
        for (int i = 0; i < kLinesPerFile; ++i)
            lines.append(OrderLine(today, firstLine + f * kLinesPerFile + i));
        WriteNewLine(Ctx().OrderPath + u"/1660_"_s + QString::number(f) + u".csv"_s,
                     lines.join(u"\r\n"_s));
    }
}

void BM_IntakeOf10000Lines(benchmark::State& state, bool onServer) {
    for (auto _ : state) {
        state.PauseTiming();
        Site site(onServer);
        if (Unusable(state, site)) return;
        DropOrderFiles(0);
        state.ResumeTiming();
        // Two polls: the first sees the files, the second finds them unchanged and takes them.
        TakeOrders1660();
        TakeOrders1660();
        state.PauseTiming();
        if (!site.ok || site.rows() != kFiles * kLinesPerFile || Ctx().OrderDbFailures != 0)
            state.SkipWithError("the store does not hold exactly the lines sent");
        state.ResumeTiming();
    }
    state.counters["lines/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFiles * kLinesPerFile,
                           benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(BM_IntakeOf10000Lines, SQLite, false)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_IntakeOf10000Lines, PostgreSQL, true)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// The store is filled in one transaction of its own, not through the intake: what is measured
// here is the lookup.
void FillStore(int rows) {
    const QString today = NowText(u"YYYYMMDD"_s);
    OpenOrderDb();
    {
        QSqlDatabase db = OrderDb();
        BeginOrderWrite(db);
        {
            QSqlQuery q(db);
            q.prepare(
                u"INSERT INTO T_ORDER (KENSAYMD, RENBAN, KENSAKIKICD, ORDERCD, KANJYAKANA, "
                u"KENSACNT, KENSA1, KENSA2, KENSA3) VALUES (?, ?, '1660', ?, 'ｶﾅ', '3', "
                u"'951', '4207', '4290')"_s);
            for (int n = 0; n < rows; ++n) {
                // A third of the rows lie before the window, as old orders do.
                q.addBindValue(n % 3 == 0 ? u"20200101"_s : today);
                q.addBindValue(QString::number(n % 997));
                q.addBindValue(OrderKey(n));
                q.exec();
            }
        }
        CommitOrderWrite(db);
    }
    CloseOrderDb();
}

void BM_LookupsOnAStoreOf100000Rows(benchmark::State& state, bool onServer) {
    Site site(onServer);
    if (Unusable(state, site)) return;
    FillStore(kStoreRows);
    if (!site.ok || site.rows() != kStoreRows) state.SkipWithError("the store was not filled");
    auto* random = QRandomGenerator::global();
    qint64 wrong = 0;
    for (auto _ : state) {
        for (int i = 0; i < kLookups; ++i) {
            const int n = random->bounded(kStoreRows);
            QString kana;
            QString tests;
            LookupOrder1660(OrderKey(n), kana, tests, u"1660"_s);
            const bool inWindow = n % 3 != 0;
            if (tests != (inWindow ? u"^^^0951^\\^^^4207^\\^^^4290^"_s : QString())) ++wrong;
        }
    }
    if (wrong != 0 || Ctx().OrderDbFailures != 0)
        state.SkipWithError("a lookup gave a wrong answer");
    state.counters["lookups/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * kLookups, benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(BM_LookupsOnAStoreOf100000Rows, SQLite, false)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_LookupsOnAStoreOf100000Rows, PostgreSQL, true)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
