#include "common/Form.h"
#include "orders/OrderLookups.h"
#include "orders/OrderTestSupport.h"
#include "tables/MdlOption.h"

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

// Today is 2025-04-16: the window runs from 2025-03-27 to 2025-04-16.
template <typename Backend>
class OrderLookupsTest : public OrderFixture<Backend> {
  protected:
    QString tests1660(const QString& key, const QString& code = u"1660"_s) {
        QString kana = u"stale"_s;
        QString tests = u"stale"_s;
        LookupOrder1660(key, kana, tests, code);
        return tests;
    }
};
TYPED_TEST_SUITE(OrderLookupsTest, OrderBackends, BackendNames);

TYPED_TEST(OrderLookupsTest, NewestOrderOfTheTwentyOneDayWindowWinsWithRenbanAsText) {
    OrderSite& s = this->store;
    s.order(u"20250417"_s, u"1"_s, u"1660"_s, u"S"_s, {u"1"_s});
    s.order(u"20250326"_s, u"1"_s, u"1660"_s, u"S"_s, {u"2"_s});
    EXPECT_EQ(this->tests1660(u"S"_s), u""_s) << "tomorrow and 21 days ago are outside";

    s.order(u"20250327"_s, u"1"_s, u"1660"_s, u"S"_s, {u"3"_s});
    EXPECT_EQ(this->tests1660(u"S"_s), u"^^^0003^"_s);
    s.order(u"20250416"_s, u"10"_s, u"1660"_s, u"S"_s, {u"4"_s});
    s.order(u"20250416"_s, u"9"_s, u"1660"_s, u"S"_s, {u"5"_s});
    EXPECT_EQ(this->tests1660(u"S"_s), u"^^^0005^"_s) << "\"9\" lies above \"10\"";
    // Another instrument's order with the same key is not found.
    EXPECT_EQ(this->tests1660(u"S"_s, u"1650"_s), u""_s);
    EXPECT_EQ(Ctx().OrderDbFailures, 0);
}

// A spliced key would break the statement, or with "' OR '1'='1" find every row.
TYPED_TEST(OrderLookupsTest, KeysWithQuotesFindExactlyTheRowsTheyName) {
    OrderSite& s = this->store;
    s.order(u"20250416"_s, u"1"_s, u"1660"_s, u"O'Brien"_s, {u"11"_s});
    EXPECT_EQ(this->tests1660(u"O'Brien"_s), u"^^^0011^"_s);
    EXPECT_EQ(this->tests1660(u"' OR '1'='1"_s), u""_s);
}

// The notation of 1660 with tests and kana is Cobas1660Test's; here a NULL count.
TYPED_TEST(OrderLookupsTest, NotationsOf1660And1730And1650) {
    OrderSite& s = this->store;
    s.order(u"20250416"_s, u"1"_s, u"1660"_s, u"NULL"_s, {}, u"ﾇﾙ"_s, {},
            {{u"KENSACNT"_s, std::nullopt}});
    QString kana;
    QString tests;
    LookupOrder1660(u"NULL"_s, kana, tests, u"1660"_s);
    EXPECT_EQ(tests, u"^^^"_s) << "a NULL count is no test";
    EXPECT_EQ(kana, u"ﾇﾙ"_s);

    // 1730 asks by KANJYAINFO; a second code follows its test behind "^" only where stored.
    s.order(u"20250416"_s, u"1"_s, u"1730"_s, u"other"_s, {u"4207"_s, u" 951 "_s, u"113"_s}, u"ｷ"_s,
            u"ID7"_s, {{u"KENSA1_2"_s, u"2"_s}, {u"KENSA2_2"_s, u""_s}, {u"KENSA3_2"_s, u" 5"_s}});
    LookupOrder1730(u"ID7"_s, kana, tests, u"1730"_s);
    EXPECT_EQ(tests, u"^^^4207^2\\^^^951\\^^^113^5"_s);
    EXPECT_EQ(kana, u"ｷ"_s);
    LookupOrder1730(u"other"_s, kana, tests, u"1730"_s);
    EXPECT_EQ(tests, u""_s);
    EXPECT_EQ(kana, u""_s);

    // 1650: fixed slots of the stored code and six blanks, at most twenty.
    QStringList many;
    for (int i = 1; i <= 25; ++i) many.append(QString::number(100 + i));
    s.order(u"20250416"_s, u"2"_s, u"1650"_s, u"M"_s, many);
    LookupOrder1650(u"M"_s, kana, tests, u"1650"_s);
    EXPECT_EQ(tests.size(), 20 * 9);
    EXPECT_TRUE(tests.endsWith(u"120      "_s));
}

// The answers go over the line in the scenario tests and the simulator scripts; here the
// branches they do not reach, and the failure line of a lookup without a row.
TYPED_TEST(OrderLookupsTest, NotationsOf0980And1190AndTheNoRowBranches) {
    OrderSite& s = this->store;
    s.order(u"20250416"_s, u"1"_s, u"0980"_s, u"1234"_s, {u"0980010"_s}, u"ｶ"_s, {},
            {{u"KANJYAID"_s, u"P9"_s}, {u"SEX"_s, u"2"_s}});
    s.order(u"20250416"_s, u"1"_s, u"0980"_s, u"NOCNT"_s, {}, u"ﾅ"_s);
    s.order(u"20250416"_s, u"1"_s, u"0980"_s, u"ODD"_s, {u"1190030"_s, u"0980010"_s});
    s.order(u"20250416"_s, u"1"_s, u"1190"_s, u"U"_s, {u"1190010"_s, u"9999999"_s});

    QString key = u"12-3-4"_s;
    QString kana;
    QString test;
    QString id = u"keep"_s;
    QString sex = u"keep"_s;
    LookupOrder0980(key, kana, test, u"0980"_s, id, sex);
    EXPECT_EQ(key, u"1234"_s) << "the caller's key loses its \"-\" too";
    EXPECT_EQ(test, u"HbA1c"_s);
    EXPECT_EQ(id + sex + kana, u"P92ｶ"_s);
    key = u"NOCNT"_s;
    LookupOrder0980(key, kana, test, u"0980"_s, id, sex);
    EXPECT_EQ(test, u""_s) << "a found row without tests is not the default";
    EXPECT_EQ(kana, u"ﾅ"_s);
    key = u"ODD"_s;
    LookupOrder0980(key, kana, test, u"0980"_s, id, sex);
    EXPECT_EQ(test, u"HGB"_s) << "only KENSA1 is read";
    id = u"keep"_s;
    key = u"NOROW"_s;
    LookupOrder0980(key, kana, test, u"0980"_s, id, sex);
    EXPECT_EQ(test, u"HbA1c"_s);
    EXPECT_EQ(kana + id, u"keep"_s);
    EXPECT_TRUE(s.mainLog(u"2620"_s).isEmpty());

    QString tests;
    LookupOrder1190(u"U"_s, kana, tests, u"1190"_s, id, sex);
    EXPECT_EQ(tests, u"^^^^WBC\\^^^^"_s) << "a code without a name keeps its place";
    id = u"keep"_s;
    LookupOrder1190(u"H-1"_s, kana, tests, u"1190"_s, id, sex);
    EXPECT_EQ(kana + tests + id, u"keep"_s);
    tests = u"stale"_s;
    LookupOrder1160(u"H-1"_s, u"1160"_s, tests);
    EXPECT_EQ(tests, u""_s);
    const auto line = [](const QString& code) {
        return u"データ取得失敗 -- Key: H-1:"_s + code + u":2025-04-16 09:30:15\r\n"_s;
    };
    const QString head = u"【検査： 2620-0-2025-04-16 09:30:15】データ"_s;
    EXPECT_EQ(s.mainLog(u"2620"_s), head + line(u"1190"_s) + head + line(u"1160"_s));
    EXPECT_EQ(Form().Txt_Log.text(), u"オーダ"_s + line(u"1160"_s) + u"オーダ"_s + line(u"1190"_s));
}

TYPED_TEST(OrderLookupsTest, Lookup2140FoldsItemsIntoEightyEightFlags) {
    OrderSite& s = this->store;
    // Item number (column 0) of each test code (column 2); the first Na row wins.
    s.site.writeFile(u"KV_OPTION2140.DAT"_s,
                     "87,,Na\r\n88,,K\r\n89,,Cl\r\n1,,TP\r\n2,,ALB\r\n"
                     "93,,A/G\r\n91,,H\r\n95,,X95\r\n46,,CRP\r\n1,,Na\r\n");
    LoadOption2140();
    EXPECT_EQ(ItemNumberOf2140(u"Na"_s), u"87"_s);
    EXPECT_EQ(ItemNumberOf2140(u"na"_s), u""_s);

    const auto flags = [](std::initializer_list<int> set) {
        QString text(88, u'0');
        for (int p : set) text[p - 1] = u'1';
        return text;
    };
    const QString blanks30(30, u' ');
    s.order(u"20250416"_s, u"2"_s, u"2140"_s, u"o"_s, {u"Cl"_s, u"H"_s, u"A/G"_s, u"CRP"_s},
            QString(), u"S2"_s);
    s.order(u"20250416"_s, u"1"_s, u"2140"_s, u"o3"_s, {u"???"_s, u"X95"_s}, u"ﾊﾅｺ"_s, u"S3"_s);
    s.order(u"20250416"_s, u"1"_s, u"2140"_s, u"o4"_s, {u"???"_s}, u"ﾊﾅｺ"_s, u"S4"_s);

    QString items;
    QString count;
    EXPECT_EQ(LookupOrder2140(u"S2"_s, u"2140"_s, items, count), 0);
    EXPECT_EQ(items, flags({87, 88, 1, 2, 46}) + u"100000"_s + blanks30);
    EXPECT_EQ(count, u"  4"_s);
    // 95 counts and marks nothing the reply carries; an unknown code does not count.
    EXPECT_EQ(LookupOrder2140(u"S3"_s, u"2140"_s, items, count), 0);
    EXPECT_EQ(items, flags({}) + u"100000ﾊﾅｺ"_s + QString(27, u' '));
    EXPECT_EQ(count, u"  1"_s);
    EXPECT_EQ(LookupOrder2140(u"S4"_s, u"2140"_s, items, count), 6);
    EXPECT_EQ(count, u"  0"_s);
    EXPECT_EQ(LookupOrder2140(u"none"_s, u"2140"_s, items, count), 6);
    EXPECT_EQ(items, flags({}) + u"100000"_s + blanks30);
}

// Another process holds the store past the lookups' wait (5 s): the instrument gets the
// no-order answer, and the log says that the database failed, not that no order exists.
TEST(OrderLookups, ALookupWhoseStatementFailsIsLoggedAsADatabaseFailure) {
    OrderSite s;
    s.order(u"20250416"_s, u"1"_s, u"1190"_s, u"U"_s, {u"1190010"_s}, u"ｶ"_s);
    s.exec(u"BEGIN EXCLUSIVE"_s);
    QString kana = u"stale"_s;
    QString tests = u"stale"_s;
    QString id;
    QString sex;
    LookupOrder1190(u"U"_s, kana, tests, u"1190"_s, id, sex);
    s.exec(u"ROLLBACK"_s);
    EXPECT_EQ(kana + tests, u""_s);
    const QString line = u"オーダデータ検索失敗(DB) -- Key: U:1190:2025-04-16 09:30:15\r\n"_s;
    EXPECT_EQ(s.mainLog(u"2620"_s), u"【検査： 2620-0-2025-04-16 09:30:15】"_s + line);
    EXPECT_EQ(Form().Txt_Log.text(), line);
    EXPECT_TRUE(DecodeAnsi(s.site.readFile(u"KV_Orbline2620.diag"_s))
                    .contains(u"order lookup of key U for 1190 failed and was answered as no "
                              u"order: SELECT: database is locked"_s));
}
