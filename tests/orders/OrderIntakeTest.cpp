#include "common/Logging.h"
#include "orders/OrderIntake.h"
#include "orders/OrderStore.h"
#include "orders/OrderTestSupport.h"

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

namespace {

QByteArray OrderLine(const QString& date, const QString& renban, const QString& key,
                     const QString& code, const QStringList& tests) {
    QStringList f = {date, renban, u"0930"_s, key, code};
    while (f.size() < 40) f.append(u"f"_s + QString::number(f.size()));
    return EncodeAnsi((f + tests).join(u","_s));
}

}  // namespace

template <typename Backend>
class OrderIntakeTest : public OrderFixture<Backend> {
  protected:
    OrderIntakeTest() {
        Ctx().InstrumentCode = u"1660"_s;
        Ctx().OrderPath = this->store.site.path(u"orders"_s);
    }
    TestSite& site() { return this->store.site; }
};
TYPED_TEST_SUITE(OrderIntakeTest, OrderBackends, BackendNames);

TYPED_TEST(OrderIntakeTest, AFolderOfMixedFilesBecomesRowsDeletionsAndOneLogLine) {
    TestSite& site = this->site();
    site.writeFile(u"orders/1660a.csv"_s,
                   OrderLine(u"20250416"_s, u"1"_s, u" K1 "_s, u"1660"_s,
                             {u" 9NACL"_s, u"cknac"_s, u"CKNAC"_s, u"FERR"_s, u"AMH"_s}) +
                       "\r\n\r\n" + "20250416,2,0930,K2,1660,short line\r\n");
    site.writeFile(u"orders/sub/1660ABC.CSV"_s,
                   OrderLine(u"20250416"_s, u"3"_s, u"K3"_s, u"1660"_s, {u"Na"_s}));
    site.writeFile(u"orders/1660empty.csv"_s, "");
    site.writeFile(u"orders/1650other.csv"_s,
                   OrderLine(u"20250416"_s, u"9"_s, u"K9"_s, u"1650"_s, {u"PT"_s}));

    TakeOrders1660();

    const auto rows = this->store.rows();
    ASSERT_EQ(rows.size(), 4u);
    // The blank line is a row with empty key columns.
    EXPECT_EQ(Cell(rows[0], "KENSAYMD"), u""_s);
    EXPECT_EQ(Cell(rows[0], "KENSACNT"), u"0"_s);
    // Test names count case; unknown ones are dropped, and the first FERR row wins.
    EXPECT_EQ(Cell(rows[1], "ORDERCD"), u"K1"_s);
    EXPECT_EQ(Cell(rows[1], "KENSACNT"), u"3"_s);
    EXPECT_EQ(Cell(rows[1], "KENSA1"), u"951"_s);
    EXPECT_EQ(Cell(rows[1], "KENSA2"), u"4207"_s);
    EXPECT_EQ(Cell(rows[1], "KENSA3"), u"4290"_s);
    EXPECT_EQ(Cell(rows[2], "KANJYANM"), u"short line"_s);
    EXPECT_EQ(Cell(rows[2], "KENSACNT"), u"0"_s);
    EXPECT_EQ(Cell(rows[3], "ORDERCD"), u"K3"_s);

    EXPECT_FALSE(site.exists(u"orders/1660a.csv"_s));
    EXPECT_FALSE(site.exists(u"orders/sub/1660ABC.CSV"_s));
    EXPECT_FALSE(site.exists(u"orders/1660empty.csv"_s));
    EXPECT_TRUE(site.exists(u"orders/1650other.csv"_s));
    const QString folder = site.path(u"orders"_s);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"WkOrder1660.txt"_s)),
              folder + u"\\1660a.csv\r\n"_s + folder + u"\\1660empty.csv\r\n"_s + folder +
                  u"\\sub\\1660ABC.CSV\r\n\r\n"_s);
    EXPECT_EQ(Ctx().OrderRowCount, 4);

    const QString event = u"オーダデータ取得完了(Edit) -- 1660--:2025-04-16 09:30:15"_s;
    EXPECT_EQ(this->store.mainLog(u"1660"_s),
              u"【検査： 1660-0-2025-04-16 09:30:15】"_s + event + u"\r\n"_s);
    EXPECT_EQ(Form().Txt_Log.text(), event + u"\r\n"_s);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

TYPED_TEST(OrderIntakeTest, EmptyFilesAloneStillLogAndOtherInstrumentsFilesAloneDoNot) {
    TestSite& site = this->site();
    site.writeFile(u"orders/1650only.csv"_s, "20250416,1,0930,K,1650\r\n");
    TakeOrders1660();
    EXPECT_TRUE(this->store.mainLog(u"1660"_s).isEmpty());
    EXPECT_FALSE(site.exists(u"WkOrder1660.txt"_s));

    site.writeFile(u"orders/1660e1.csv"_s, "");
    site.writeFile(u"orders/x/1660e2.csv"_s, "");
    TakeOrders1660();
    EXPECT_TRUE(this->store.rows().empty());
    EXPECT_FALSE(site.exists(u"orders/1660e1.csv"_s));
    EXPECT_FALSE(site.exists(u"orders/x/1660e2.csv"_s));
    EXPECT_TRUE(this->store.mainLog(u"1660"_s).contains(u"オーダデータ取得完了(Edit) -- "_s));
}

TYPED_TEST(OrderIntakeTest, LinesPastTheStagingTableAreAllStored) {
    QByteArray file;
    for (int i = 1; i <= 1005; ++i)
        file += OrderLine(u"20250416"_s, QString::number(i), u"K"_s, u"1660"_s, {u"Na"_s}) + "\r\n";
    this->site().writeFile(u"orders/1660big.csv"_s, file);
    TakeOrders1660();
    const auto rows = this->store.rows(u"RENBAN IN ('1', '1000', '1001', '1005')"_s);
    ASSERT_EQ(rows.size(), 4u);
    for (const auto& row : rows) EXPECT_EQ(Cell(row, "KENSA1"), u"989"_s);
    EXPECT_EQ(this->store.rows().size(), 1005u);
}

// Each instrument's folder, pattern, work file and item table.
TEST(OrderIntake, EachInstrumentTakesItsOwnFilesWithItsOwnTable) {
    struct Case {
        void (*take)();
        const char16_t* file;
        const char16_t* work;
        const char16_t* code;
        QStringList tests;
        QStringList expected;
    };
    const std::vector<Case> cases = {
        {TakeOrders1650,
         u"orders/1650.csv",
         u"WkOrder1650.txt",
         u"1650",
         {u"Ⅱ"_s, u"+DD"_s, u"AMH"_s},
         {u"120"_s, u"700"_s}},
        {TakeOrders1190,
         u"orders/1190.csv",
         u"WkOrder1190.txt",
         u"1190",
         {u"NEUT#"_s, u"PCT"_s},
         {u"1190140"_s, u"1190240"_s}},
        {TakeOrders0980,
         u"orders/0980.csv",
         u"WkOrder0980.txt",
         u"0980",
         {u"hba1c"_s, u"HbA1c"_s},
         {u"0980010"_s}},
        {TakeOrders1660,
         u"orders/1660.csv",
         u"WkOrder1660.txt",
         u"1660",
         {u"FT4 Ⅱ"_s, u"CROSSL（β-CTx）"_s, u"AMH"_s},
         {u"201"_s, u"127"_s}},
        {TakeOrders1660_2,
         u"orders2/1660.csv",
         u"WkOrder1660_2.txt",
         u"1660",
         {u"TSH"_s},
         {u"1"_s}},
        // AMH stands in the table of 1730 and is never found; FERR is 4290, not 67.
        {TakeOrders1730,
         u"orders/1730.csv",
         u"WkOrder1730.txt",
         u"1730",
         {u"AMH"_s, u"FERR"_s, u"whole-PTH"_s},
         {u"4290"_s, u"273"_s}},
    };
    for (const Case& c : cases) {
        const QString code = QString::fromUtf16(c.code);
        SCOPED_TRACE(code.toStdString());
        OrderSite s;
        Ctx().InstrumentCode = code;
        Ctx().OrderPath = s.site.path(u"orders"_s);
        Ctx().OrderPath2 = s.site.path(u"orders2"_s);
        s.site.writeFile(QString::fromUtf16(c.file),
                         OrderLine(u"20250416"_s, u"1"_s, u"K"_s, code, c.tests) + "\r\n");
        c.take();
        const auto rows = s.rows();
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(Cell(rows[0], "KENSACNT"), QString::number(c.expected.size()));
        for (qsizetype i = 0; i < c.expected.size(); ++i)
            EXPECT_EQ(Cell(rows[0], ("KENSA" + std::to_string(i + 1)).c_str()), c.expected[i]);
        EXPECT_TRUE(s.site.exists(QString::fromUtf16(c.work)));
        EXPECT_FALSE(s.site.exists(QString::fromUtf16(c.file)));
        // 0980 and 1190 leave their codes in ItemCodes from entry 1, for the lookups.
        if (code == u"0980"_s) {
            EXPECT_EQ(Ctx().ItemCodes.get(1), u"0980010"_s);
        }
        if (code == u"1190"_s) {
            EXPECT_EQ(Ctx().ItemCodes.get(24), u"1190240"_s);
        }
    }
}
