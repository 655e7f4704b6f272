#pragma once
// A site with an empty order store, reached either directly as a SQLite file or through ODBC
// with the SQLite ODBC driver (DbConnect). Suites are typed over both, so one set of cases
// shows the same results on either path. The cases' own checks read the file directly.

#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "orders/OrderSchema.h"
#include "support/AstmInstrument.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

namespace orbline::test {

struct SQLiteFile {
    static void Configure(const QString&) { Ctx().DbConnect.clear(); }
};

// DbPath names a folder without a store: only the connection string can find it.
struct OdbcSQLite {
    static void Configure(const QString& nativeFile) {
        Ctx().DbConnect = QStringLiteral("Driver=SQLite3;Database=") + nativeFile;
        Ctx().DbPath = Ctx().DbPath + QStringLiteral("\\none");
    }
};

struct BackendNames {
    template <typename T>
    static std::string GetName(int) {
        return std::is_same_v<T, SQLiteFile> ? "SQLiteFile" : "OdbcSQLite";
    }
};

using OrderBackends = ::testing::Types<SQLiteFile, OdbcSQLite>;

class OrderSite {
  public:
    explicit OrderSite(const char* fixedNow = "2025-04-16 09:30:15") : site(fixedNow) {
        QDir().mkpath(site.native(QStringLiteral("db")));
        Ctx().DbPath = site.path(QStringLiteral("db"));
        QString error;
        EXPECT_TRUE(orbline::CreateOrderStore(storeFile(), &error)) << error.toStdString();
    }
    ~OrderSite() { QSqlDatabase::removeDatabase(QString::fromUtf16(kChecker)); }
    OrderSite(const OrderSite&) = delete;
    OrderSite& operator=(const OrderSite&) = delete;

    QString storeFile() const { return site.native(QStringLiteral("db/KV_Orbline2.min")); }

    // An order of one instrument with its tests; extra cells are added or replace those.
    void order(const QString& date, const QString& renban, const QString& code,
               const QString& orderCd, const QStringList& tests, const QString& kana = {},
               const QString& info = {}, const Cells& extra = {}) {
        Cells cells{{QStringLiteral("KENSAYMD"), date},
                    {QStringLiteral("RENBAN"), renban},
                    {QStringLiteral("KENSAKIKICD"), code},
                    {QStringLiteral("ORDERCD"), orderCd},
                    {QStringLiteral("KANJYAKANA"), kana},
                    {QStringLiteral("KANJYAINFO"), info},
                    {QStringLiteral("KENSACNT"), QString::number(tests.size())}};
        for (qsizetype i = 0; i < tests.size(); ++i)
            cells[QStringLiteral("KENSA") + QString::number(i + 1)] = tests[i];
        for (const auto& [name, value] : extra) cells[name] = value;
        InsertOrder(checker(), cells);
    }

    void exec(const QString& sql) {
        QSqlQuery q(checker());
        EXPECT_TRUE(q.exec(sql)) << q.lastError().text().toStdString();
    }

    std::vector<QSqlRecord> rows(const QString& where = QStringLiteral("1=1")) {
        QSqlQuery q(checker());
        EXPECT_TRUE(q.exec(QStringLiteral("SELECT * FROM T_ORDER WHERE ") + where +
                           QStringLiteral(" ORDER BY KENSAYMD, RENBAN, ORDERCD")));
        std::vector<QSqlRecord> out;
        while (q.next()) out.push_back(q.record());
        return out;
    }

    QString mainLog(const QString& code) const {
        return DecodeAnsi(site.readFile(QStringLiteral("Tesvane") + code + QStringLiteral(".log")));
    }

    TestSite site;

  private:
    static constexpr auto kChecker = u"order_test_checker";
    QSqlDatabase checker() {
        const QString name = QString::fromUtf16(kChecker);
        if (QSqlDatabase::contains(name)) return QSqlDatabase::database(name);
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(storeFile());
        db.open();
        return db;
    }
};

// The texts of the columns, "<NULL>" for NULL, joined by "|".
inline QString Columns(const QSqlRecord& row, std::initializer_list<const char*> names) {
    QStringList texts;
    for (const char* name : names) {
        const QString column = QString::fromLatin1(name);
        texts.append(row.isNull(column) ? QStringLiteral("<NULL>") : row.value(column).toString());
    }
    return texts.join(u'|');
}

// The first poll sees the files; the second takes those it finds as the first saw them.
inline void TakeSettled(void (*take)()) {
    take();
    take();
}

template <typename Backend>
class OrderFixture : public ::testing::Test {
  protected:
    OrderFixture() { Backend::Configure(store.storeFile()); }
    OrderSite store;
};

}  // namespace orbline::test
