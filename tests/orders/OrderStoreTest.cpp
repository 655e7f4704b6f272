#include "app/AwIni.h"
#include "app/Settings.h"
#include "common/Paths.h"
#include "orders/OrderDbFailure.h"
#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"
#include "orders/OrderStore.h"
#include "orders/OrderTestSupport.h"

#include <QLocale>

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

namespace {

// Stages a line as the intake does and saves it on its own.
void Save(const QString& line, OrderItems items = OrderItems::Items1660) {
    SaveOrderRow(StageOrderLine(line, FillItemTable(items)));
}

QString Line(const QString& key, const QString& info, const QStringList& tests) {
    // Fields 0..20, then 19 fields nobody reads, then the test names from field 40.
    QStringList f = {u"20250416"_s, u"7"_s,   u"0930"_s, key,       u"1660"_s, u"山田 太郎"_s,
                     u"ﾔﾏﾀﾞ ﾀﾛｳ"_s, u"P01"_s, u"1"_s,    u"45"_s,   u"内科"_s, u"0900"_s,
                     u"1"_s,        info,     u"cmt"_s,  u"血清"_s, u"z2"_s,   u"n"_s,
                     u"k1"_s,       u"k2"_s,  u"u"_s};
    for (int i = 21; i < 40; ++i) f.append(u"x"_s + QString::number(i));
    return (f + tests).join(u","_s);
}

}  // namespace

template <typename Backend>
class OrderStoreTest : public OrderFixture<Backend> {};
TYPED_TEST_SUITE(OrderStoreTest, OrderBackends, BackendNames);

TYPED_TEST(OrderStoreTest, SaveWritesEveryColumnAndAnOverwriteLeavesNoFormerTest) {
    OrderSite& s = this->store;
    Save(Line(u" 123 "_s, u"INFO"_s, {u"9NACL"_s, u"CKNAC"_s, u"Cl"_s}));
    auto rows = s.rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Cell(rows[0], "ORDERCD"), u"123"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYANM"), u"山田 太郎"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYAKANA"), u"ﾔﾏﾀﾞ ﾀﾛｳ"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYAINFO"), u"INFO"_s);
    EXPECT_EQ(Cell(rows[0], "KENTAI_NYOU"), u"u"_s);
    // The comment column is the time of the write, never field 14.
    EXPECT_EQ(Cell(rows[0], "KENTAICMT"), u"20250416093015"_s);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"3"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA3"), u"991"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA4"), u""_s);
    EXPECT_EQ(Cell(rows[0], "KENSA1_2"), u"<NULL>"_s);

    s.insert({{u"KENSAYMD"_s, u"20250415"_s},
              {u"RENBAN"_s, u"7"_s},
              {u"KENSAKIKICD"_s, u"1660"_s},
              {u"ORDERCD"_s, u"123"_s}});
    SetFixedNow("2025-04-16 10:00:00");
    Save(Line(u"123"_s, u"NEW"_s, {u"UN"_s, u"unknown"_s}));
    rows = s.rows(u"KENSAYMD = '20250416'"_s);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Cell(rows[0], "KANJYAINFO"), u"NEW"_s);
    EXPECT_EQ(Cell(rows[0], "KENTAICMT"), u"20250416100000"_s);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"1"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA1"), u"4277"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA2"), u""_s);
    EXPECT_EQ(Cell(rows[0], "KENSA3"), u""_s);
    EXPECT_EQ(s.rows().size(), 2u);
    EXPECT_EQ(Ctx().OrderSql,
              u"SELECT * FROM T_ORDER  WHERE KENSAYMD ='20250416'   AND RENBAN "
              u"='7'   AND KENSAKIKICD ='1660'   AND ORDERCD ='123'"_s);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

TYPED_TEST(OrderStoreTest, MoreThanFortyTestsFillFortyColumnsAndCountThemAll) {
    QStringList tests;
    for (int i = 0; i < 45; ++i) tests.append(u"Na"_s);
    Save(Line(u"A"_s, QString(), tests));
    const auto rows = this->store.rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"45"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA40"), u"989"_s);
}

TYPED_TEST(OrderStoreTest, AKeyWithQuotesIsStoredAsItIs) {
    Save(Line(u"O'Brien"_s, QString(), {u"Na"_s}));
    Save(Line(u"' OR '1'='1"_s, QString(), {u"K"_s}));
    const auto rows = this->store.rows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(Cell(rows[0], "ORDERCD"), u"' OR '1'='1"_s);
    EXPECT_EQ(Cell(rows[1], "ORDERCD"), u"O'Brien"_s);
}

TEST(OrderStore, StagingRowsPastTheTableAreNeverSaved) {
    OrderSite s;
    Ctx().OrderTable.put(1, 0, u"20250416"_s);
    SaveOrderRow(1);
    SaveOrderRow(1001);
    SaveOrderRow(0);
    EXPECT_EQ(s.rows().size(), 1u);
    // The intake's rows go round: line 1001 is staged in row 1 again.
    EXPECT_EQ(StagingRowOf(1000), 1000);
    EXPECT_EQ(StagingRowOf(1001), 1);
}

TEST(OrderStore, DriverIsChosenByTheFirstBytesOfTheFile) {
    EXPECT_EQ(OrderDbKindOf("SQLite format 3\0rest"), OrderDbKind::SQLite);
    EXPECT_EQ(OrderDbKindOf(QByteArray("\0\1\0\0Standard Jet DB\0", 20)), OrderDbKind::Access);
    EXPECT_EQ(OrderDbKindOf(QByteArray("\0\1\0\0Standard ACE DB\0", 20)), OrderDbKind::Access);
    EXPECT_EQ(OrderDbKindOf("Standard Jet DB"), OrderDbKind::Unknown);
    EXPECT_EQ(OrderDbKindOf(QByteArray()), OrderDbKind::Unknown);

    TestSite site;
    Ctx().DbPath = u"C:\\kv\\db"_s;
    EXPECT_EQ(AccessConnectString(QString::fromUtf16(kAccessDriver)),
              u"Driver={Microsoft Access Driver (*.mdb)};DBQ=C:\\kv\\db\\\\KV_Orbline2.min;"
              u"password=xq40172635"_s);
    EXPECT_EQ(OrderDbPath(), u"C:\\kv\\db\\KV_Orbline2.min"_s);
}

TEST(OrderStore, DbConnectOfSectionUserRoutesTheStoreThroughOdbc) {
    OrderSite s;
    s.order(u"20250416"_s, u"1"_s, u"1660"_s, u"K1"_s, {u"951"_s});
    Ctx().IniPrefix = u"CB"_s;
    // The file DbPath names does not exist: only the connection string can find the order.
    s.site.writeFile(
        u"KV_Orbline.ini"_s,
        EncodeAnsi(u"[User]\r\nDbPath="_s + s.site.path(u"none"_s) +
                   u"\r\nDbConnect=Driver=SQLite3;Database="_s + s.storeFile() + u"\r\n"_s));
    ReadUserSettings(AwIni());
    QString kana;
    QString tests;
    LookupOrder1660(u"K1"_s, kana, tests, u"1660"_s);
    EXPECT_EQ(tests, u"^^^0951^"_s);
}

TEST(OrderStoreDeathTest, AMissingStoreEndsTheProcessWithStatusOneAndIsNotCreated) {
    TestSite site;
    Ctx().InstrumentCode = u"1660"_s;
    Ctx().DbPath = site.path(u"nodb"_s);
    QDir().mkpath(site.native(u"nodb"_s));
    QString kana;
    QString tests;
    EXPECT_EXIT(LookupOrder1660(u"K"_s, kana, tests, u"1660"_s), ::testing::ExitedWithCode(1),
                "データベースの取得に失敗しました");
    EXPECT_FALSE(site.exists(u"nodb/KV_Orbline2.min"_s));
    EXPECT_TRUE(DecodeAnsi(site.readFile(u"Tesvane1660.log"_s))
                    .endsWith(u"】データベースの取得に失敗しました\r\n"_s));

    // A file that is no database, and an ODBC driver that does not exist, end the same way.
    site.writeFile(u"nodb/KV_Orbline2.min"_s, "plain text");
    EXPECT_EXIT(SaveOrderRow(1), ::testing::ExitedWithCode(1), "");
    Ctx().OrderTable.put(1, 0, u"x"_s);
    Ctx().DbConnect = u"Driver=NoSuchDriver;Database=x"_s;
    EXPECT_EXIT(SaveOrderRow(1), ::testing::ExitedWithCode(1), "データベースの取得に失敗しました");
}

TEST(OrderStore, DateOffsetIsSlashedYearMonthDayUnderAnyLocale) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(OrderDateOffset(u"2025/04/16"_s, -20), u"2025/03/27"_s);
    QLocale::setDefault(QLocale(QLocale::Japanese, QLocale::Japan));
    EXPECT_EQ(OrderDateOffset(u"2024/03/10"_s, -20), u"2024/02/19"_s);
    EXPECT_EQ(OrderDateOffset(u"2025/01/05"_s, -20), u"2024/12/16"_s);
    EXPECT_EQ(OrderDateOffset(u"20250105"_s, -20), QString());
    QLocale::setDefault(before);
}

// The main log and standard error keep the fixed text; the driver's words go to standard error
// and to the diagnostic log. A connection string may hold a password and is never written.
TEST(OrderStoreDeathTest, AStoreThatCannotBeOpenedSaysWhyInTheDiagnosticLog) {
    TestSite site;
    Ctx().InstrumentCode = u"1660"_s;
    Ctx().DbPath = site.path(u"nodb"_s);
    QDir().mkpath(site.native(u"nodb"_s));
    const std::string file = site.native(u"nodb/KV_Orbline2.min"_s).toStdString();
    QString kana;
    QString tests;
    EXPECT_EXIT(LookupOrder1660(u"K"_s, kana, tests, u"1660"_s), ::testing::ExitedWithCode(1),
                "データベースの取得に失敗しました\n2025-04-16 09:30:15 1660 order store " + file +
                    " cannot be opened: no such file: " + file + "\n$");
    EXPECT_EQ(DecodeAnsi(site.readFile(u"KV_Orbline1660.diag"_s)),
              u"2025-04-16 09:30:15 1660 order store "_s + QString::fromStdString(file) +
                  u" cannot be opened: no such file: "_s + QString::fromStdString(file) +
                  u"\r\n"_s);

    Ctx().DbConnect = u"Driver=NoSuchDriver;Database=x;PWD=secret42"_s;
    EXPECT_EXIT(LookupOrder1660(u"K"_s, kana, tests, u"1660"_s), ::testing::ExitedWithCode(1),
                "order store \\(DbConnect of section User\\) cannot be opened: .*NoSuchDriver");
    const QString diagnosis = DecodeAnsi(site.readFile(u"KV_Orbline1660.diag"_s));
    EXPECT_EQ(diagnosis.count(u"\r\n"_s), 2) << diagnosis.toStdString();
    EXPECT_FALSE(diagnosis.contains(u"secret42"_s));
}
