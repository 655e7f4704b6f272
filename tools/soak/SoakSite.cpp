#include "SoakSite.h"

#include "SoakInstruments.h"
#include "common/AnsiCodec.h"
#include "orders/OrderSchema.h"
#include "orders/OrderStore.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace orbline::soak {

namespace {

const QString kConnection = u"soak-store"_s;

QString Backslashed(QString path) {
    return path.replace(u'/', u'\\');
}

// As a site writes them: every line key spelled out, so that no start warns about one.
QString InstrumentSection(const SoakSite& site, const SoakInstrument& instrument) {
    QString text = u"["_s + SoakPrefix(instrument.code) + u"MC]\r\nName="_s + instrument.name +
                   u"\r\nPort=1\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\nStopBits=1\r\n"_s +
                   u"Handshake=N\r\nTimeOut=1000\r\nDevice="_s + site.device(instrument.code) +
                   u"\r\n"_s;
    if (!instrument.orderTest.isEmpty()) {
        text += u"OrderPT=4\r\nOrderPath="_s + site.appPath() + u"\\orders\r\nOrderPath2="_s +
                site.appPath() + u"\\orders2\r\n"_s;
    }
    return text;
}

QString SettingsText(const SoakSite& site) {
    QString text = u"[User]\r\nJyusinWKPath="_s + site.appPath() + u"\\wk\r\nJyusinDataPath="_s +
                   site.appPath() + u"\\data\r\nJyusinDataPath2="_s + site.appPath() +
                   u"\\chart\r\n"_s;
    if (!site.pgAddress.isEmpty()) text += u"DbConnect="_s + site.pgAddress + u"\r\n"_s;
    for (const SoakInstrument& instrument : SoakInstruments())
        text += InstrumentSection(site, instrument);
    return text;
}

OrderDbTarget StoreOf(const SoakSite& site) {
    return OrderDbTargetOf(site.pgAddress.isEmpty() ? site.native(u"KV_Orbline2.min"_s)
                                                    : site.pgAddress);
}

bool MakeStore(const SoakSite& site, QString* error) {
    if (site.pgAddress.isEmpty()) return CreateOrderStore(site.native(u"KV_Orbline2.min"_s), error);
    if (!ConnectOrderDb(kConnection, StoreOf(site), error)) return false;
    const bool made = CreateOrderTable(kConnection, error);
    DisconnectOrderDb(kConnection);
    return made;
}

}  // namespace

QString SoakSite::appPath() const {
    return Backslashed(root);
}

QString SoakSite::device(const QString& code) const {
    return native(u"tty"_s + code);
}

QStringList SoakSite::orderFolders() const {
    return {native(u"orders"_s), native(u"orders2"_s)};
}

bool MakeSite(const SoakSite& site, QString* error) {
    for (const QString& folder : {u"wk"_s, u"data"_s, u"chart"_s, u"orders"_s, u"orders2"_s}) {
        if (!QDir(site.root).mkpath(folder)) {
            *error = u"cannot make "_s + site.native(folder);
            return false;
        }
    }
    QFile settings(site.native(u"KV_Orbline.ini"_s));
    if (!settings.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        settings.write(EncodeAnsi(SettingsText(site))) < 0) {
        *error = u"cannot write "_s + settings.fileName();
        return false;
    }
    return MakeStore(site, error);
}

std::optional<std::map<QString, int>> RowsByInstrument(const SoakSite& site, QString* error) {
    if (!ConnectOrderDb(kConnection, StoreOf(site), error)) return std::nullopt;
    std::optional<std::map<QString, int>> rows;
    {
        QSqlQuery query(QSqlDatabase::database(kConnection, false));
        if (query.exec(u"SELECT KENSAKIKICD, COUNT(*) FROM T_ORDER GROUP BY KENSAKIKICD"_s)) {
            rows.emplace();
            while (query.next()) (*rows)[query.value(0).toString()] = query.value(1).toInt();
        } else {
            *error = u"cannot count the rows of T_ORDER"_s;
        }
    }
    DisconnectOrderDb(kConnection);
    return rows;
}

}  // namespace orbline::soak
