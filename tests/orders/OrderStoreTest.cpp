#include "orders/OrderIntake.h"
#include "orders/OrderLookups.h"
#include "orders/OrderStore.h"
#include "orders/OrderTestSupport.h"

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

// Forty-five tests fill the forty columns and count all; an overwrite with fewer tests empties
// every former one; a quote in the key is an ordinary character.
TYPED_TEST(OrderStoreTest, SaveWritesEveryColumnAndAnOverwriteLeavesNoFormerTest) {
    OrderSite& s = this->store;
    QStringList tests{u"9NACL"_s};
    while (tests.size() < 45) tests.append(u"Na"_s);
    Save(Line(u" O'Brien "_s, u"INFO"_s, tests));
    auto rows = s.rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Cell(rows[0], "ORDERCD"), u"O'Brien"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYANM"), u"山田 太郎"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYAKANA"), u"ﾔﾏﾀﾞ ﾀﾛｳ"_s);
    EXPECT_EQ(Cell(rows[0], "KANJYAINFO"), u"INFO"_s);
    EXPECT_EQ(Cell(rows[0], "KENTAI_NYOU"), u"u"_s);
    // The comment column is the time of the write, never field 14.
    EXPECT_EQ(Cell(rows[0], "KENTAICMT"), u"20250416093015"_s);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"45"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA1"), u"951"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA40"), u"989"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA1_2"), u"<NULL>"_s);

    s.insert({{u"KENSAYMD"_s, u"20250415"_s},
              {u"RENBAN"_s, u"7"_s},
              {u"KENSAKIKICD"_s, u"1660"_s},
              {u"ORDERCD"_s, u"O'Brien"_s}});
    SetFixedNow("2025-04-16 10:00:00");
    Save(Line(u"O'Brien"_s, u"NEW"_s, {u"UN"_s, u"unknown"_s}));
    rows = s.rows(u"KENSAYMD = '20250416'"_s);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Cell(rows[0], "KANJYAINFO"), u"NEW"_s);
    EXPECT_EQ(Cell(rows[0], "KENTAICMT"), u"20250416100000"_s);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"1"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA1"), u"4277"_s);
    EXPECT_EQ(Cell(rows[0], "KENSA2"), u""_s);
    EXPECT_EQ(Cell(rows[0], "KENSA40"), u""_s);
    EXPECT_EQ(s.rows().size(), 2u);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

TEST(OrderStore, StagingRowsPastTheTableAreNeverSaved) {
    OrderSite s;
    Ctx().OrderTable.put(1, 0, u"20250416"_s);
    SaveOrderRow(1);
    SaveOrderRow(1001);
    SaveOrderRow(0);
    EXPECT_EQ(s.rows().size(), 1u);
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
