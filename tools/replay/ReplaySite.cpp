#include "ReplaySite.h"

#include "app/AwIni.h"
#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "orders/OrderSchema.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace orbline::replay {

namespace {

QString Backslashed(QString path) {
    return path.replace(u'/', u'\\');
}

bool CopyReplacing(const QString& from, const QString& to, const QByteArray& oldText,
                   const QByteArray& newText) {
    QFile in(from);
    if (!in.open(QIODevice::ReadOnly)) return false;
    QByteArray bytes = in.readAll();
    if (!oldText.isEmpty() && !newText.isEmpty()) bytes.replace(oldText, newText);
    QFile out(to);
    return out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(bytes) == bytes.size();
}

}  // namespace

ReplaySite::ReplaySite() {
    for (const QString& folder : {u"wk"_s, u"data"_s, u"chart"_s, u"orders"_s})
        QDir(dir_.path()).mkpath(folder);
}

QString ReplaySite::appPath() const {
    return Backslashed(dir_.path());
}

QString ReplaySite::native(const QString& relative) const {
    return dir_.filePath(relative);
}

bool ReplaySite::writeSettings(const QString& iniFile, const QString& prefix, const QString& device,
                               QString* error) {
    const QString target = native(u"KV_Orbline.ini"_s);
    if (!iniFile.isEmpty() && !QFile::copy(iniFile, target)) {
        *error = u"cannot read the settings file "_s + iniFile;
        return false;
    }
    // AwIni works on AppPath's settings file: this process's context points at the site.
    Ctx().AppPath = appPath();
    const AwIni ini;
    const QString user = u"User"_s;
    const QString section = prefix + u"MC"_s;
    configuredChartFolder_ = ini.GetValue(user, u"JyusinDataPath2"_s, QString());
    const QString site = appPath();
    // The order folders are emptied by the program: never the real site's.
    const std::pair<QString, QString> keys[] = {
        {user, u"JyusinWKPath"_s},  {user, u"JyusinDataPath"_s}, {user, u"JyusinDataPath2"_s},
        {user, u"DbPath"_s},        {user, u"DbConnect"_s},      {section, u"OrderPath"_s},
        {section, u"OrderPath2"_s}, {section, u"Device"_s},
    };
    const QString values[] = {site + u"\\wk"_s, site + u"\\data"_s,   site + u"\\chart"_s,  site,
                              QString(),        site + u"\\orders"_s, site + u"\\orders"_s, device};
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        if (!ini.WriteValue(keys[i].first, keys[i].second, values[i])) {
            *error = u"cannot write the settings of the replay site "_s + target;
            return false;
        }
    }
    // A pseudo-terminal takes any line format, but no flow control by characters or DSR.
    const QString handshake = ini.GetValue(section, u"Handshake"_s, QString());
    if (handshake == u"1"_s || handshake == u"3"_s) ini.WriteValue(section, u"Handshake"_s, u"0"_s);
    return true;
}

bool ReplaySite::makeOrderStore(const QString& ordersFile, QString* error) {
    const QString store = native(u"KV_Orbline2.min"_s);
    if (ordersFile.isEmpty()) return CreateOrderStore(store, error);
    if (QFile::copy(ordersFile, store)) return true;
    *error = u"cannot copy the order store "_s + ordersFile;
    return false;
}

std::optional<QStringList> ReplaySite::collect(const QString& outDir, QString* error) const {
    const QByteArray siteChart = EncodeAnsi(appPath() + u"\\chart"_s);
    const QByteArray realChart = EncodeAnsi(configuredChartFolder_);
    QStringList written;
    struct Copy {
        QString from;
        QStringList patterns;
        QString to;
        bool result;
    };
    const Copy copies[] = {
        {u"data"_s, {}, QString(), true},
        {u"chart"_s, {}, u"chart"_s, true},
        {QString(), {u"*.log"_s, u"*.diag"_s}, u"log"_s, false},
    };
    for (const Copy& copy : copies) {
        const QDir from(native(copy.from));
        const QStringList names = from.entryList(copy.patterns, QDir::Files, QDir::Name);
        if (names.isEmpty()) continue;
        const QDir to(QDir(outDir).filePath(copy.to));
        if (!to.mkpath(u"."_s)) {
            *error = u"cannot make the folder "_s + to.path();
            return std::nullopt;
        }
        for (const QString& name : names) {
            const QString target = to.filePath(name);
            QFile::remove(target);
            if (!CopyReplacing(from.filePath(name), target, siteChart, realChart)) {
                *error = u"cannot write "_s + target;
                return std::nullopt;
            }
            if (copy.result) written.append(target);
        }
    }
    return written;
}

}  // namespace orbline::replay
