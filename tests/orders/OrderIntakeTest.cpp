#include "common/Logging.h"
#include "orders/OrderIntake.h"
#include "orders/OrderStore.h"
#include "orders/OrderTestSupport.h"

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

namespace {

// A line of 2025-04-16 09:30 whose fields 5 to 39 hold their place ("f5" ...), then the tests.
QByteArray OrderLine(const QString& renban, const QString& key, const QString& code,
                     const QStringList& tests) {
    QStringList f = {u"20250416"_s, renban, u"0930"_s, key, code};
    while (f.size() < 40) f.append(u"f"_s + QString::number(f.size()));
    return EncodeAnsi((f + tests).join(u","_s));
}

// An order of one test under the key, with its line end.
QByteArray Line(const char* key, int renban = 1) {
    return OrderLine(QString::number(renban), QString::fromLatin1(key), u"1660"_s, {u"Na"_s}) +
           "\r\n";
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

// Other instruments' files alone start nothing; empty files alone are deleted and logged.
TYPED_TEST(OrderIntakeTest, AFolderOfMixedFilesBecomesRowsDeletionsAndOneLogLinePerRun) {
    TestSite& site = this->site();
    site.writeFile(u"orders/1650other.csv"_s, OrderLine(u"9"_s, u"K9"_s, u"1650"_s, {u"PT"_s}));
    TakeSettled(TakeOrders1660);
    EXPECT_TRUE(this->store.mainLog(u"1660"_s).isEmpty());
    EXPECT_FALSE(site.exists(u"WkOrder1660.txt"_s));
    site.writeFile(u"orders/1660empty.csv"_s, "");
    TakeSettled(TakeOrders1660);
    EXPECT_FALSE(site.exists(u"orders/1660empty.csv"_s));

    site.writeFile(u"orders/1660a.csv"_s,
                   OrderLine(u"1"_s, u" K1 "_s, u"1660"_s,
                             {u" 9NACL"_s, u"cknac"_s, u"CKNAC"_s, u"FERR"_s, u"AMH"_s}) +
                       "\n\r" + EncodeAnsi(u"20250416,2,0930,K2,1660,山田 太郎\r\n"_s));
    site.writeFile(u"orders/sub/1660ABC.CSV"_s, OrderLine(u"3"_s, u"K3"_s, u"1660"_s, {u"Na"_s}));
    TakeSettled(TakeOrders1660);

    const auto rows = this->store.rows();
    ASSERT_EQ(rows.size(), 4u);
    // LF, CR and CR LF each end a line; the blank line is a row with empty key columns.
    EXPECT_EQ(Columns(rows[0], {"KENSAYMD", "KENSACNT"}), u"|0"_s);
    // Test names count case; unknown ones are dropped, and the first FERR row wins (not 67).
    EXPECT_EQ(Columns(rows[1], {"ORDERCD", "KENSACNT", "KENSA1", "KENSA2", "KENSA3"}),
              u"K1|3|951|4207|4290"_s);
    EXPECT_EQ(Columns(rows[2], {"KANJYANM", "KENSACNT"}), u"山田 太郎|0"_s);
    EXPECT_EQ(Columns(rows[3], {"ORDERCD"}), u"K3"_s);

    EXPECT_TRUE(site.exists(u"orders/1650other.csv"_s));
    const QString folder = site.path(u"orders"_s);
    EXPECT_EQ(DecodeAnsi(site.readFile(u"WkOrder1660.txt"_s)),
              folder + u"\\1660a.csv\r\n"_s + folder + u"\\sub\\1660ABC.CSV\r\n\r\n"_s);
    EXPECT_EQ(Ctx().OrderRowCount, 4);

    const QString event = u"オーダデータ取得完了(Edit) -- 1660--:2025-04-16 09:30:15"_s;
    const QString line = u"【検査： 1660-0-2025-04-16 09:30:15】"_s + event + u"\r\n"_s;
    EXPECT_EQ(this->store.mainLog(u"1660"_s), line + line);
    EXPECT_EQ(Form().Txt_Log.text(), event + u"\r\n"_s + event + u"\r\n"_s);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

// Forty-five tests fill the forty test columns and count all; the same key taken again leaves
// none of the former tests; a quote in the key is an ordinary character.
TYPED_TEST(OrderIntakeTest, ALineFillsItsColumnsAndTheSameKeyAgainLeavesNoFormerTest) {
    QStringList tests{u"9NACL"_s};
    while (tests.size() < 45) tests.append(u"Na"_s);
    this->site().writeFile(u"orders/1660a.csv"_s,
                           OrderLine(u"7"_s, u"O'Brien"_s, u"1660"_s, tests));
    TakeSettled(TakeOrders1660);
    auto rows = this->store.rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Columns(rows[0], {"ORDERCD", "KENSAHM", "KANJYAKANA", "KANJYAINFO", "KENTAI_NYOU"}),
              u"O'Brien|0930|f6|f13|f20"_s);
    // The comment column is the time of the write, never field 14.
    EXPECT_EQ(Columns(rows[0], {"KENTAICMT", "KENSACNT", "KENSA1", "KENSA40", "KENSA1_2"}),
              u"20250416093015|45|951|989|<NULL>"_s);

    this->store.order(u"20250415"_s, u"7"_s, u"1660"_s, u"O'Brien"_s, {u"4277"_s});
    SetFixedNow("2025-04-16 10:00:00");
    this->site().writeFile(u"orders/1660b.csv"_s,
                           OrderLine(u"7"_s, u"O'Brien"_s, u"1660"_s, {u"UN"_s, u"unknown"_s}));
    TakeSettled(TakeOrders1660);
    rows = this->store.rows(u"KENSAYMD = '20250416'"_s);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(Columns(rows[0], {"KENTAICMT", "KENSACNT", "KENSA1", "KENSA2", "KENSA40"}),
              u"20250416100000|1|4277||"_s);
    EXPECT_EQ(this->store.rows().size(), 2u);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

// Each instrument's folder, pattern, work file and item table; 1660's own is shown above. Each
// line names one test the table knows.
TEST(OrderIntake, EachInstrumentTakesItsOwnFilesWithItsOwnTable) {
    struct Case {
        void (*take)();
        QString code, file, work, tests, expected;
    };
    const Case cases[] = {
        {TakeOrders1650, u"1650"_s, u"orders/1650.csv"_s, u"WkOrder1650.txt"_s, u"Ⅱ"_s, u"120"_s},
        {TakeOrders1190, u"1190"_s, u"orders/1190.csv"_s, u"WkOrder1190.txt"_s, u"PCT"_s,
         u"1190240"_s},
        {TakeOrders0980, u"0980"_s, u"orders/0980.csv"_s, u"WkOrder0980.txt"_s, u"HbA1c"_s,
         u"0980010"_s},
        {TakeOrders1660_2, u"1660"_s, u"orders2/1660.csv"_s, u"WkOrder1660_2.txt"_s, u"TSH"_s,
         u"1"_s},
        // AMH stands in the table of 1730 and is never found.
        {TakeOrders1730, u"1730"_s, u"orders/1730.csv"_s, u"WkOrder1730.txt"_s, u"AMH,FERR"_s,
         u"4290"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.work.toStdString());
        OrderSite s;
        Ctx().InstrumentCode = c.code;
        Ctx().OrderPath = s.site.path(u"orders"_s);
        Ctx().OrderPath2 = s.site.path(u"orders2"_s);
        s.site.writeFile(c.file, OrderLine(u"1"_s, u"K"_s, c.code, c.tests.split(u',')) + "\r\n");
        TakeSettled(c.take);
        const auto rows = s.rows();
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(Columns(rows[0], {"KENSACNT", "KENSA1"}), u"1|"_s + c.expected);
        EXPECT_TRUE(s.site.exists(c.work));
        EXPECT_FALSE(s.site.exists(c.file));
        // 0980 and 1190 leave their codes in ItemCodes from entry 1, for the lookups.
        const qsizetype entry = c.code == u"0980"_s ? 1 : c.code == u"1190"_s ? 24 : 0;
        EXPECT_EQ(entry > 0 ? Ctx().ItemCodes.get(entry) : c.expected, c.expected);
    }
}

// A file written as the laboratory system goes: a poll that finds it grown, touched, or empty
// and still held by its writer, leaves it; the first that finds it as the poll before did
// takes it whole.
TYPED_TEST(OrderIntakeTest, AFileIsTakenWholeOnlyOnceAPollFindsItUnchanged) {
    OrderSite& s = this->store;
    const auto write = [&](const QByteArray& bytes, int minute) {
        s.site.writeFile(u"orders/1660.csv"_s, bytes);
        QFile f(s.site.native(u"orders/1660.csv"_s));
        EXPECT_TRUE(f.open(QIODevice::Append) &&
                    f.setFileTime(QDateTime(QDate(2025, 4, 16), QTime(9, minute)),
                                  QFileDevice::FileModificationTime));
    };
    write(Line("K1"), 0);
    QFile held(s.site.native(u"orders/1660e.csv"_s));
    ASSERT_TRUE(held.open(QIODevice::WriteOnly));
    TakeOrders1660();
    write(Line("K1") + Line("K2"), 0);
    held.write(Line("K3"));
    held.close();
    TakeOrders1660();
    EXPECT_TRUE(s.rows().empty());
    EXPECT_TRUE(s.mainLog(u"1660"_s).isEmpty());
    write(Line("K1") + Line("K2"), 1);
    TakeOrders1660();
    EXPECT_EQ(s.rows().size(), 1u) << "only the file left alone since the poll before";
    TakeOrders1660();
    EXPECT_EQ(s.rows().size(), 3u);
    EXPECT_FALSE(s.site.exists(u"orders/1660.csv"_s));
}

// The store refuses one line (as a server database's rule may): the other lines of its batch
// and of the batches before are stored, also those past the staging table; the file stays
// beside as ".failed", numbered when that name is taken, and no later poll takes it.
TYPED_TEST(OrderIntakeTest, AFileWithALineTheStoreRefusesIsKeptAsFailedWithItsCount) {
    this->store.refuse(u"BAD"_s);
    TestSite& site = this->site();
    QByteArray lines;
    for (int i = 1; i <= 1005; ++i) lines += Line(i == 1003 ? "BAD" : "K", i);
    site.writeFile(u"orders/1660a.csv"_s, lines);
    site.writeFile(u"orders/1660b.csv"_s, Line("K4"));
    TakeSettled(TakeOrders1660);
    TakeSettled(TakeOrders1660);
    EXPECT_EQ(this->store.rows(u"ORDERCD <> 'BAD' AND KENSA1 = '989'"_s).size(), 1005u);
    EXPECT_EQ(this->store.rows().size(), 1005u);
    EXPECT_EQ(site.readFile(u"orders/1660a.csv.failed"_s), lines);
    EXPECT_FALSE(site.exists(u"orders/1660b.csv"_s));
    const QString head = u"【検査： 1660-0-2025-04-16 09:30:15】オーダデータ"_s;
    const QString tail = u"1660--:2025-04-16 09:30:15\r\n"_s;
    EXPECT_EQ(this->store.mainLog(u"1660"_s),
              head + u"登録失敗(Edit) -- 1件 -- "_s + tail + head + u"取得完了(Edit) -- "_s + tail);
    EXPECT_TRUE(DecodeAnsi(site.readFile(u"KV_Orbline1660.diag"_s))
                    .contains(site.path(u"orders"_s) +
                              u"\\1660a.csv: 1 of 1005 lines could not be stored"_s));

    site.writeFile(u"orders/1660a.csv"_s, Line("BAD"));
    TakeSettled(TakeOrders1660);
    EXPECT_TRUE(site.exists(u"orders/1660a.csv.2.failed"_s));
}
