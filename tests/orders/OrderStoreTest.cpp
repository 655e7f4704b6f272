#include "orders/OrderLookups.h"
#include "orders/OrderStore.h"
#include "orders/OrderTestSupport.h"

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

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

// A missing store, a file that is no database and an ODBC driver that does not exist each end
// the process with status 1, and no store is made. The main log and standard error keep the
// fixed text; the driver's words go to standard error and to the diagnostic log. A connection
// string may hold a password and is never written.
TEST(OrderStoreDeathTest, AStoreThatCannotBeOpenedEndsWithStatusOneAndSaysWhy) {
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
    EXPECT_FALSE(site.exists(u"nodb/KV_Orbline2.min"_s));
    EXPECT_TRUE(DecodeAnsi(site.readFile(u"Tesvane1660.log"_s))
                    .endsWith(u"】データベースの取得に失敗しました\r\n"_s));
    EXPECT_EQ(DecodeAnsi(site.readFile(u"KV_Orbline1660.diag"_s)),
              u"2025-04-16 09:30:15 1660 order store "_s + QString::fromStdString(file) +
                  u" cannot be opened: no such file: "_s + QString::fromStdString(file) +
                  u"\r\n"_s);

    site.writeFile(u"nodb/KV_Orbline2.min"_s, "plain text");
    EXPECT_EXIT(LookupOrder1660(u"K"_s, kana, tests, u"1660"_s), ::testing::ExitedWithCode(1), "");
    Ctx().DbConnect = u"Driver=NoSuchDriver;Database=x;PWD=secret42"_s;
    EXPECT_EXIT(LookupOrder1660(u"K"_s, kana, tests, u"1660"_s), ::testing::ExitedWithCode(1),
                "データベースの取得に失敗しました\n.*order store \\(DbConnect of section User\\) "
                "cannot be opened: .*NoSuchDriver");
    const QString diagnosis = DecodeAnsi(site.readFile(u"KV_Orbline1660.diag"_s));
    EXPECT_EQ(diagnosis.count(u"\r\n"_s), 3) << diagnosis.toStdString();
    EXPECT_FALSE(diagnosis.contains(u"secret42"_s));
}
