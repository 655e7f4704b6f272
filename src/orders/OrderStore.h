#pragma once
// The order store: one table, T_ORDER, in one database file shared by every instrument of a
// site, or a server database reached through PostgreSQL's own driver or through ODBC. A connection
// lives for one save, one lookup, or (in the intake) one order file. Values always go in as bound
// parameters.

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

class QSqlQuery;

namespace orbline {

// DbPath + "\KV_Orbline2.min".
QString OrderDbPath();

// The Access connection string, byte for byte, with the given driver name.
QString AccessConnectString(const QString& driver);
inline constexpr auto kAccessDriver = u"Microsoft Access Driver (*.mdb)";
// 64-bit Windows has only this one.
inline constexpr auto kAccessDriverNew = u"Microsoft Access Driver (*.mdb, *.accdb)";

enum class OrderDbKind { SQLite, Access, Unknown };
// By the file's first bytes: "SQLite format 3", or a Jet/ACE header.
OrderDbKind OrderDbKindOf(const QByteArray& head);
bool IsSQLiteConnection(const QSqlDatabase& db);
bool IsPostgresConnection(const QSqlDatabase& db);

// Where a connection goes: a PostgreSQL address ("postgresql://...") or an ODBC connection
// string, or else a database file.
struct OrderDbTarget {
    QString connectString;
    QString nativeFile;
};
// The target of this process: DbConnect when set, else the file under DbPath.
OrderDbTarget SiteOrderDbTarget();
// The target a tool names: "odbc:<connection string>", a PostgreSQL address, or a file.
OrderDbTarget OrderDbTargetOf(const QString& store);
bool IsPostgresAddress(const QString& connectString);
// Opens a connection of the given name. SQLite files open read-write and are never created;
// they get a busy timeout. On failure the connection is removed and error says why.
bool ConnectOrderDb(const QString& name, const OrderDbTarget& target, QString* error);
void DisconnectOrderDb(const QString& name);

// Opens the connection of this process (DbConnection). A failure ends the process.
void OpenOrderDb();
// Closes it. A failure ends the process.
void CloseOrderDb();
// The open connection; invalid when none is open.
QSqlDatabase OrderDb();

// A write transaction: BEGIN IMMEDIATE on SQLite, so that a writer waits for the lock at the
// start rather than failing between its read and its write; the driver's transaction else
// (READ COMMITTED on PostgreSQL, where the writer's one upsert statement needs no more).
bool BeginOrderWrite(QSqlDatabase& db);
bool CommitOrderWrite(QSqlDatabase& db);
void RollbackOrderWrite(QSqlDatabase& db);

// Runs a prepared statement; a failure is counted and passed over.
bool ExecOrderQuery(QSqlQuery& query);
void NoteOrderDbFailure(const QString& error);

// date ("YYYY/MM/DD") moved by days, as "YYYY/MM/DD" whatever the locale; "" for a bad date.
QString OrderDateOffset(const QString& date, int days);
// The lookups' window: today and 20 days back, both "YYYYMMDD".
QString OrderWindowTo();
QString OrderWindowFrom();

// The columns of T_ORDER written from staging columns, in the store's order: the key, then
// the columns from KENSAHM to KENSACNT with their staging column (KENTAICMT has none).
struct OrderColumn {
    const char16_t* name;
    int stagingColumn;  // -1: KENTAICMT, the time of the write
};
const std::vector<OrderColumn>& OrderKeyColumns();
const std::vector<OrderColumn>& OrderDataColumns();
inline constexpr int kOrderTestColumns = 40;
inline constexpr int kFirstTestStagingColumn = 22;

// Writes staged rows on an open connection with statements prepared once.
class OrderRowWriter {
  public:
    explicit OrderRowWriter(const QSqlDatabase& db);
    ~OrderRowWriter();
    OrderRowWriter(const OrderRowWriter&) = delete;
    OrderRowWriter& operator=(const OrderRowWriter&) = delete;
    // Inserts the row of OrderTable, or overwrites the row with its key. False when a
    // statement failed (already counted).
    bool save(std::int32_t row);

  private:
    struct Statements;
    std::unique_ptr<Statements> statements_;
};

// Opens, writes one staged row in its own transaction, closes. Rows outside 1..1000 are
// skipped. The result is not used.
std::int16_t SaveOrderRow(std::int32_t row);

}  // namespace orbline
