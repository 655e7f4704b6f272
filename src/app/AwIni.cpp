#include "app/AwIni.h"

#include "common/AnsiCodec.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/Text.h"

#include <QFile>

#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The profile call's buffer holds 256 bytes, the last of them the terminating zero.
constexpr qsizetype kValueBytes = 255;

bool IsProfileBlank(char c) {
    return c == ' ' || c == '\t';
}

QByteArray StripBlanks(const QByteArray& bytes) {
    qsizetype first = 0;
    qsizetype end = bytes.size();
    while (first < end && IsProfileBlank(bytes[first])) ++first;
    while (end > first && IsProfileBlank(bytes[end - 1])) --end;
    return bytes.mid(first, end - first);
}

QList<QByteArray> ProfileLines(const QByteArray& bytes) {
    QList<QByteArray> lines;
    QByteArray current;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (c == '\r' || c == '\n') {
            lines.append(current);
            current.clear();
            if (c == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
        } else {
            current.append(c);
        }
    }
    lines.append(current);
    return lines;
}

bool SameName(const QByteArray& raw, const QString& name) {
    return QString::compare(DecodeAnsi(raw), name, Qt::CaseInsensitive) == 0;
}

std::optional<QByteArray> FindRawValue(const QByteArray& fileBytes, const QString& section,
                                       const QString& key) {
    bool inSection = false;
    for (const QByteArray& rawLine : ProfileLines(fileBytes)) {
        const QByteArray line = StripBlanks(rawLine);
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            const QByteArray name = StripBlanks(line.mid(1, close < 0 ? -1 : close - 1));
            // The first section of that name is the one read.
            if (inSection) return std::nullopt;
            inSection = SameName(name, section);
            continue;
        }
        if (!inSection || line.startsWith(';')) continue;
        const qsizetype eq = line.indexOf('=');
        if (eq < 0) continue;
        if (SameName(StripBlanks(line.left(eq)), key)) return StripBlanks(line.mid(eq + 1));
    }
    return std::nullopt;
}

}  // namespace

QString ProfileString(const QByteArray& fileBytes, const QString& section, const QString& key,
                      const QString& defaultValue) {
    const auto found = FindRawValue(fileBytes, section, key);
    QByteArray value = found ? *found : EncodeAnsi(defaultValue);
    if (found && value.size() >= 2) {
        const char first = value.front();
        if ((first == '"' || first == '\'') && value.back() == first)
            value = value.mid(1, value.size() - 2);
    }
    // What the buffer holds, then as the caller converts and trims it.
    return Trim(DecodeAnsi(value.left(kValueBytes)));
}

QString AwIni::FilePath() {
    return Ctx().AppPath + u"\\KV_Orbline.ini"_s;
}

QString AwIni::GetValue(const QString& section, const QString& key,
                        const QString& defaultValue) const {
    QFile file(NativePath(FilePath()));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly)) bytes = file.readAll();
    return ProfileString(bytes, section, key, defaultValue);
}

bool AwIni::WriteValue(const QString& section, const QString& key, const QString& value) const {
    const QString path = NativePath(FilePath());
    QFile file(path);
    QByteArray bytes;
    if (file.exists()) {
        if (!file.open(QIODevice::ReadOnly)) return false;
        bytes = file.readAll();
        file.close();
    }
    const QByteArray entry = EncodeAnsi(key + u"="_s + (value.isEmpty() ? value : Trim(value)));
    QList<QByteArray> lines = ProfileLines(bytes);
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    qsizetype sectionAt = -1;
    qsizetype insertAt = -1;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QByteArray line = StripBlanks(lines[i]);
        if (line.startsWith('[')) {
            if (sectionAt >= 0) break;
            const qsizetype close = line.indexOf(']');
            if (SameName(StripBlanks(line.mid(1, close < 0 ? -1 : close - 1)), section)) {
                sectionAt = i;
                insertAt = i + 1;
            }
            continue;
        }
        if (sectionAt < 0) continue;
        if (!line.isEmpty()) insertAt = i + 1;
        const qsizetype eq = line.indexOf('=');
        if (eq >= 0 && !line.startsWith(';') && SameName(StripBlanks(line.left(eq)), key)) {
            lines[i] = entry;
            insertAt = -2;
            break;
        }
    }
    if (sectionAt < 0) {
        lines.append("[" + EncodeAnsi(section) + "]");
        lines.append(entry);
    } else if (insertAt >= 0) {
        lines.insert(insertAt, entry);
    }
    QByteArray out;
    for (const QByteArray& line : lines) out += line + "\r\n";
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    return file.write(out) == out.size();
}

}  // namespace orbline
