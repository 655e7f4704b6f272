#include "orders/OrderSchema.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace orbline {

QString OrderSchemaText() {
    QFile file(u":/orders/schema.sql"_s);
    if (!file.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(file.readAll());
}

QStringList OrderSchemaStatements() {
    QStringList statements;
    QString current;
    for (const QString& line : OrderSchemaText().split(u'\n')) {
        const QString code = line.left(line.indexOf(u"--"_s)).trimmed();
        if (code.isEmpty()) continue;
        current += (current.isEmpty() ? QString() : u"\n"_s) + code;
        if (code.endsWith(u';')) {
            current.chop(1);
            statements.append(current);
            current.clear();
        }
    }
    return statements;
}

bool CreateOrderTable(const QString& connectionName, QString* error) {
    QSqlDatabase db = QSqlDatabase::database(connectionName, false);
    const QStringList statements = OrderSchemaStatements();
    if (statements.isEmpty()) {
        if (error) *error = u"the schema is missing from this build"_s;
        return false;
    }
    if (!db.transaction()) {
        if (error) *error = db.lastError().text();
        return false;
    }
    for (const QString& statement : statements) {
        QSqlQuery query(db);
        if (!query.exec(statement)) {
            if (error) *error = query.lastError().text();
            query.finish();
            db.rollback();
            return false;
        }
    }
    if (db.commit()) return true;
    if (error) *error = db.lastError().text();
    return false;
}

bool CreateOrderStore(const QString& nativeFile, QString* error) {
    if (QFileInfo::exists(nativeFile)) {
        if (error) *error = u"a file of that name exists already: "_s + nativeFile;
        return false;
    }
    const QString name = u"orbline_create_store"_s;
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(nativeFile);
        if (!db.open()) {
            if (error) *error = db.lastError().text();
        } else {
            ok = CreateOrderTable(name, error);
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!ok) QFile::remove(nativeFile);
    return ok;
}

}  // namespace orbline
