#pragma once
// A site with an empty order store, reached directly as a SQLite file, through ODBC with the
// SQLite ODBC driver (DbConnect), or on the test server through PostgreSQL's own driver (a
// database of its own for each site). Suites are typed over all three, so one set of cases
// shows the same results on each path. The cases' own checks read the store directly.

#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "orders/OrderSchema.h"
#include "orders/OrderStore.h"
#include "support/AstmInstrument.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUrl>
#include <QVariant>

#include <initializer_list>
#include <string>
#include <vector>

namespace orbline::test {

// The address of the test server (scripts/pg-test-server.sh); empty when none runs.
inline QString TestServerAddress() {
    return qEnvironmentVariable("KV_ORBLINE_TEST_PG");
}

class OrderSite {
  public:
    // onServer: the store is a new database on the test server, when one runs.
    explicit OrderSite(const char* fixedNow = "2025-04-16 09:30:15", bool onServer = false)
        : site(fixedNow) {
        QDir().mkpath(site.native(QStringLiteral("db")));
        Ctx().DbPath = site.path(QStringLiteral("db"));
        QString error;
        EXPECT_TRUE(orbline::CreateOrderStore(storeFile(), &error)) << error.toStdString();
        if (onServer && !TestServerAddress().isEmpty()) makeServerStore();
    }
    ~OrderSite() {
        QSqlDatabase::removeDatabase(QString::fromUtf16(kChecker));
        if (!database_.isEmpty())
            admin([&](QSqlQuery& q) {
                return q.exec(QStringLiteral("DROP DATABASE ") + database_ +
                              QStringLiteral(" WITH (FORCE)"));
            });
    }
    OrderSite(const OrderSite&) = delete;
    OrderSite& operator=(const OrderSite&) = delete;

    QString storeFile() const { return site.native(QStringLiteral("db/KV_Orbline2.min")); }
    // The address of the site's database on the test server; empty for a SQLite store.
    QString serverAddress() const { return serverAddress_; }

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

    // The first column of the first row.
    QVariant value(const QString& sql) {
        QSqlQuery q(checker());
        EXPECT_TRUE(q.exec(sql) && q.next()) << q.lastError().text().toStdString();
        return q.value(0);
    }

    // The store refuses rows of that ORDERCD, as a server database's rule may.
    void refuse(const QString& orderCd) {
        exec(serverAddress_.isEmpty()
                 ? QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON T_ORDER WHEN NEW.ORDERCD "
                                  "= '%1' BEGIN SELECT RAISE(ABORT, 'refused'); END")
                       .arg(orderCd)
                 : QStringLiteral(
                       "ALTER TABLE T_ORDER ADD CONSTRAINT refuse CHECK (ORDERCD <> '%1')")
                       .arg(orderCd));
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
        QString error;
        EXPECT_TRUE(orbline::ConnectOrderDb(
            name, orbline::OrderDbTargetOf(serverAddress_.isEmpty() ? storeFile() : serverAddress_),
            &error))
            << error.toStdString();
        return QSqlDatabase::database(name);
    }

    // Runs work on a connection to the server's own database.
    template <typename Work>
    static void admin(Work work) {
        const QString name = QStringLiteral("order_test_admin");
        QString error;
        EXPECT_TRUE(orbline::ConnectOrderDb(name, {TestServerAddress(), {}}, &error))
            << error.toStdString();
        {
            QSqlQuery q(QSqlDatabase::database(name, false));
            EXPECT_TRUE(work(q)) << q.lastError().text().toStdString();
        }
        orbline::DisconnectOrderDb(name);
    }

    // Test processes run side by side: each site has a database of its own, named after the
    // process and the site, with T_ORDER as orderdb makes it.
    void makeServerStore() {
        static int sites = 0;
        database_ =
            QStringLiteral("kvtest_%1_%2").arg(QCoreApplication::applicationPid()).arg(++sites);
        admin([&](QSqlQuery& q) {
            q.exec(QStringLiteral("DROP DATABASE IF EXISTS ") + database_ +
                   QStringLiteral(" WITH (FORCE)"));
            return q.exec(QStringLiteral("CREATE DATABASE ") + database_ +
                          QStringLiteral(" TEMPLATE template0"));
        });
        QUrl address(TestServerAddress());
        address.setPath(QStringLiteral("/") + database_);
        serverAddress_ = address.toString();
        QString error;
        EXPECT_TRUE(orbline::CreateOrderTable(checker().connectionName(), &error))
            << error.toStdString();
    }

    QString database_;
    QString serverAddress_;
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

struct SQLiteFile {
    static constexpr const char* kName = "SQLiteFile";
    static constexpr bool kOnServer = false;
    static void Configure(const OrderSite&) { Ctx().DbConnect.clear(); }
};

// DbPath names a folder without a store: only the connection string can find it.
struct OdbcSQLite {
    static constexpr const char* kName = "OdbcSQLite";
    static constexpr bool kOnServer = false;
    static void Configure(const OrderSite& site) {
        Ctx().DbConnect = QStringLiteral("Driver=SQLite3;Database=") + site.storeFile();
        Ctx().DbPath = Ctx().DbPath + QStringLiteral("\\none");
    }
};

// The same, with DbConnect the address of the site's database on the test server.
struct PostgreSQL {
    static constexpr const char* kName = "PostgreSQL";
    static constexpr bool kOnServer = true;
    static void Configure(const OrderSite& site) {
        Ctx().DbConnect = site.serverAddress();
        Ctx().DbPath = Ctx().DbPath + QStringLiteral("\\none");
    }
};

struct BackendNames {
    template <typename T>
    static std::string GetName(int) {
        return T::kName;
    }
};

using OrderBackends = ::testing::Types<SQLiteFile, OdbcSQLite, PostgreSQL>;

// A server backend without a test server is skipped, so that the rest still runs.
template <typename Backend>
class OrderFixture : public ::testing::Test {
  protected:
    OrderFixture() : store("2025-04-16 09:30:15", Backend::kOnServer) { Backend::Configure(store); }
    void SetUp() override {
        if (Backend::kOnServer && TestServerAddress().isEmpty())
            GTEST_SKIP() << "no test server: KV_ORBLINE_TEST_PG is not set";
    }
    OrderSite store;
};

}  // namespace orbline::test
