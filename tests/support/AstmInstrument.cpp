#include "support/AstmInstrument.h"

#include "orders/OrderSchema.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace orbline::test {

namespace {

const QString kConnection = u"scenario-orders"_s;

template <typename Work>
void WithStore(LinkProcess& link, Work work) {
    const QString file = link.native(u"KV_Orbline2.min"_s);
    if (!QFile::exists(file)) {
        QString error;
        EXPECT_TRUE(orbline::CreateOrderStore(file, &error)) << error.toStdString();
    }
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, kConnection);
        db.setDatabaseName(file);
        EXPECT_TRUE(db.open()) << db.lastError().text().toStdString();
        work(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(kConnection);
}

}  // namespace

void StartInstrument(LinkProcess& link, const QString& code, const QString& name,
                     const QString& extraKeys) {
    link.instrumentName = name;
    link.writeSettings(extraKeys);
    link.start(code);
    EXPECT_TRUE(link.waitForLog(u"受信開始(Wait)"_s));
}

void SendAcked(LinkProcess& link, const std::string& transmission) {
    for (const sim::Bytes& piece : sim::CutIntoFrames(Notation(transmission))) {
        ASSERT_TRUE(link.line.line.send(piece)) << link.line.line.error();
        if (piece == Notation("<EOT>")) return;
        EXPECT_EQ(sim::Visible(link.line.line.receive(1, 5s)), "<ACK>")
            << "after " << sim::Visible(piece);
    }
}

void Exchange(LinkProcess& link, const std::string& sent, const std::string& expected) {
    ASSERT_TRUE(link.line.line.send(Notation(sent))) << link.line.line.error();
    const sim::Bytes want = Notation(expected);
    if (want.empty()) {
        EXPECT_EQ(Drained(link, 400ms), "") << "after " << sent;
        return;
    }
    EXPECT_EQ(sim::Visible(link.line.line.receive(want.size(), 5s)), sim::Visible(want))
        << "after " << sent;
}

std::string Received(LinkProcess& link, std::size_t count) {
    return sim::Visible(link.line.line.receive(count, 5s));
}

std::string Drained(LinkProcess& link, std::chrono::milliseconds within) {
    return sim::Visible(link.line.line.drain(within));
}

void CreateOrderStore(LinkProcess& link) {
    WithStore(link, [](QSqlDatabase&) {});
}

void StoreOrder(LinkProcess& link, const QStringList& columnsAndValues) {
    Cells cells{{u"KENSAYMD"_s, u"20250416"_s}, {u"RENBAN"_s, u"1"_s}};
    for (qsizetype i = 0; i + 1 < columnsAndValues.size(); i += 2)
        cells[columnsAndValues.at(i)] = columnsAndValues.at(i + 1);
    WithStore(link, [&](QSqlDatabase& db) { InsertOrder(db, cells); });
}

void InsertOrder(const QSqlDatabase& db, const Cells& cells) {
    QStringList names;
    for (const auto& [name, value] : cells) names.append(name);
    QSqlQuery q(db);
    q.prepare(u"INSERT INTO T_ORDER ("_s + names.join(u',') + u") VALUES ("_s +
              QStringList(names.size(), u"?"_s).join(u',') + u')');
    for (const auto& [name, value] : cells)
        q.addBindValue(value ? QVariant(*value) : QVariant(QMetaType(QMetaType::QString)));
    EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString();
}

QString OrderFolderKeys(LinkProcess& link) {
    QString keys = u"OrderPT=4\r\n"_s;
    for (const QString& folder : {u"orders"_s, u"orders2"_s}) {
        QDir(link.native()).mkpath(folder);
        keys += (folder == u"orders"_s ? u"OrderPath="_s : u"OrderPath2="_s) +
                link.native(folder).replace(u'/', u'\\') + u"\r\n"_s;
    }
    return keys;
}

void DropOrderFile(LinkProcess& link, const QString& name, const QString& key, const QString& code,
                   const QStringList& tests) {
    QStringList fields{u"20250416"_s, u"2"_s, u"0930"_s, key, code};
    while (fields.size() < 40) fields.append(QString());
    fields.append(tests);
    QFile file(link.native(name + u".tmp"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(fields.join(u',').toLatin1() + "\r\n");
    file.close();
    ASSERT_TRUE(file.rename(link.native(name)));
}

int OrderRowsFor(LinkProcess& link, const QString& key) {
    int rows = -1;
    WithStore(link, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.prepare(u"SELECT COUNT(*) FROM T_ORDER WHERE ORDERCD = ?"_s);
        q.addBindValue(key);
        if (q.exec() && q.next()) rows = q.value(0).toInt();
    });
    return rows;
}

QStringList DeliveredRecords(const LinkProcess& link) {
    const QStringList files = link.deliveries();
    if (files.size() != 1) return {u"<%1 files delivered>"_s.arg(files.size())};
    return link.readDelivery(files.first()).split(u"\r\n"_s, Qt::SkipEmptyParts);
}

QStringList RecordFields(const QStringList& records, std::initializer_list<int> fields) {
    QStringList picked;
    for (const QString& record : records) {
        const QStringList f = record.split(u',');
        QStringList row;
        for (const int i : fields) row.append(f.value(i));
        picked.append(row.join(u','));
    }
    return picked;
}

std::string Capture(const char* name) {
    const QByteArray bytes = ReadFixture(u"captures/"_s + QString::fromLatin1(name));
    return sim::Visible(sim::Bytes(bytes.begin(), bytes.end()));
}

}  // namespace orbline::test
