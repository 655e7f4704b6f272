#pragma once
// Playing an ASTM-like instrument against the running process: transmissions sent piece by
// piece and acknowledged, the host's frames expected byte for byte, and orders put into the
// site's order store as the laboratory system would leave them.

#include "support/Frames.h"
#include "support/LinkProcess.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace orbline::test {

// Settings with the instrument's name and the extra keys, the process started for the code, and
// its wait for the line reached.
void StartInstrument(LinkProcess& link, const QString& code, const QString& name,
                     const QString& extraKeys = QString());

// Sends each piece of the transmission (ENQ, each frame, EOT) and expects exactly ACK after
// each but the last; after the EOT piece the host's answer is left to the caller.
void SendAcked(LinkProcess& link, const std::string& transmission);
// Sends bytes and expects exactly `expected` back within five seconds ("" for nothing).
void Exchange(LinkProcess& link, const std::string& sent, const std::string& expected);
// The next `count` bytes that come back within five seconds, in the notation.
std::string Received(LinkProcess& link, std::size_t count);
// What came back within the time, in the notation.
std::string Drained(LinkProcess& link, std::chrono::milliseconds within);

// The order store of the site (DbPath defaults to the site folder): a query needs one, since a
// store that cannot be opened ends the process.
void CreateOrderStore(LinkProcess& link);
// The store, made when missing, with one row of today: columns and values in pairs.
void StoreOrder(LinkProcess& link, const QStringList& columnsAndValues);
// One row into T_ORDER of an open store, as another writer of the store would leave it: the
// columns and their values, std::nullopt for NULL.
using Cells = std::map<QString, std::optional<QString>>;
void InsertOrder(const QSqlDatabase& db, const Cells& cells);
// Settings keys that make the dialogue look into the site's folders "orders" (OrderPath) and
// "orders2" (OrderPath2), made here.
QString OrderFolderKeys(LinkProcess& link);
// An order file of one line of today for the key, the instrument and the tests, dropped whole,
// as the laboratory system does: written aside, then renamed to `name` ("orders/..." or
// "orders2/...").
void DropOrderFile(LinkProcess& link, const QString& name, const QString& key, const QString& code,
                   const QStringList& tests);
// Rows of T_ORDER for a key, or -1 when the store cannot be read.
int OrderRowsFor(LinkProcess& link, const QString& key);

// The records of the one delivered file.
QStringList DeliveredRecords(const LinkProcess& link);
// The given fields of each record, joined by ",".
QStringList RecordFields(const QStringList& records, std::initializer_list<int> fields);

// A capture of tests/fixtures/captures in the notation.
std::string Capture(const char* name);

}  // namespace orbline::test
