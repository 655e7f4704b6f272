#pragma once
// The table of the order store, from schema.sql (compiled in as a resource): the one
// description that the tool, the tests and the benchmarks make stores from.

#include <QString>
#include <QStringList>

namespace orbline {

QString OrderSchemaText();
// The statements of the schema, comments removed; each ends with ";" at the end of a line.
QStringList OrderSchemaStatements();

// Makes a new SQLite store at a plain path. Fails, and says why, when the file exists.
bool CreateOrderStore(const QString& nativeFile, QString* error);
// Makes T_ORDER and its indexes through an open connection, in one transaction.
bool CreateOrderTable(const QString& connectionName, QString* error);

}  // namespace orbline
