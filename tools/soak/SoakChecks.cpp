#include "SoakChecks.h"

#include "common/AnsiCodec.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace orbline::soak {

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList FilesIn(const QString& folder, const QString& pattern) {
    return QDir(folder).entryList({pattern}, QDir::Files | QDir::Hidden, QDir::Name);
}

// A record may name another delivered file (the 1671's chart), whose serial goes up from pass
// to pass: the serial is left out of the comparison.
QByteArray Comparable(QByteArray bytes) {
    static const QRegularExpression serial(u"[0-9]+~KVB\\.csv"_s);
    return DecodeAnsi(bytes).replace(serial, u"~KVB.csv"_s).toUtf8();
}

QString FirstLine(const QString& text) {
    return text.section(u'\n', 0, 0).trimmed();
}

}  // namespace

Delivered CheckDeliveries(const QString& root, const SoakInstrument& instrument, int passes,
                          QStringList& failures) {
    const QString code = instrument.code;
    const QString data = root + u"/data"_s;
    const QStringList files = FilesIn(data, code + u"-*"_s);
    Delivered delivered{static_cast<int>(files.size()), 0};
    if (delivered.files != passes) {
        failures.append(
            u"%1: %2 result files for %3 passes"_s.arg(code).arg(files.size()).arg(passes));
    }
    if (instrument.chart) {
        delivered.charts = static_cast<int>(FilesIn(root + u"/chart"_s, u"*"_s).size());
        if (delivered.charts != passes) {
            failures.append(
                u"%1: %2 charts for %3 passes"_s.arg(code).arg(delivered.charts).arg(passes));
        }
    }
    if (files.isEmpty()) return delivered;
    const QByteArray first = Comparable(ReadAll(data + u'/' + files.first()));
    const qsizetype records = first.count("\r\n");
    if (records != instrument.records || !first.endsWith("\r\n")) {
        failures.append(u"%1: %2 holds %3 records, not %4 ended by CR LF"_s.arg(
            code, files.first(), QString::number(records), QString::number(instrument.records)));
    }
    for (const QString& name : files) {
        if (Comparable(ReadAll(data + u'/' + name)) != first)
            failures.append(u"%1: %2 differs from %3"_s.arg(code, name, files.first()));
    }
    return delivered;
}

void CheckWorkFolder(const QString& root, QStringList& failures) {
    // The 1160's query messages each leave an empty work file, as that edit always has.
    const QFileInfoList files = QDir(root + u"/wk"_s).entryInfoList(QDir::Files | QDir::Hidden);
    const auto left = std::count_if(files.begin(), files.end(),
                                    [](const QFileInfo& file) { return file.size() > 0; });
    if (left > 0) failures.append(u"work folder holds %1 undelivered files"_s.arg(left));
}

void CheckLogs(const QString& root, const QString& code,
               const std::map<QString, int>& mainLogFailures, QStringList& failures) {
    for (const auto& [text, count] : mainLogFailures)
        failures.append(u"%1: %2 × \"%3\" in the main log"_s.arg(code).arg(count).arg(text));
    for (const QString& name : FilesIn(root, u"KV_Orbline"_s + code + u"*.diag"_s)) {
        const QString diag = DecodeAnsi(ReadAll(root + u'/' + name));
        if (!diag.isEmpty()) failures.append(u"%1: %2: %3"_s.arg(code, name, FirstLine(diag)));
    }
    const QString stderrName = u"kv_orbline"_s + code + u".stderr"_s;
    const QString standardError = QString::fromLocal8Bit(ReadAll(root + u'/' + stderrName));
    if (!standardError.isEmpty())
        failures.append(u"%1: %2: %3"_s.arg(code, stderrName, FirstLine(standardError)));
}

void CheckOrders(const QStringList& orderFolders, const std::map<QString, int>& linesWritten,
                 const std::map<QString, int>& rows, QStringList& failures) {
    for (const QString& folder : orderFolders) {
        QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) failures.append(u"order file left: "_s + it.next());
    }
    std::map<QString, int> all = linesWritten;
    for (const auto& [code, count] : rows) all.try_emplace(code, 0);
    for (const auto& [code, lines] : all) {
        const auto row = rows.find(code);
        const int stored = row == rows.end() ? 0 : row->second;
        if (stored != lines)
            failures.append(
                u"%1: %2 order rows for %3 lines written"_s.arg(code).arg(stored).arg(lines));
    }
}

}  // namespace orbline::soak
