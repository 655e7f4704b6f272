#include "common/Text.h"

#include "common/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {
void RequireArgument(bool ok) {
    if (!ok) throw RuntimeError(errors::InvalidArgument());
}
}  // namespace

QString Mid(const QString& text, qsizetype start) {
    RequireArgument(start >= 1);
    if (start > text.size()) return QString();
    return text.mid(start - 1);
}

QString Mid(const QString& text, qsizetype start, qsizetype length) {
    RequireArgument(start >= 1 && length >= 0);
    if (start > text.size()) return QString();
    return text.mid(start - 1, length);
}

QString Left(const QString& text, qsizetype n) {
    RequireArgument(n >= 0);
    return text.left(n);
}

QString Right(const QString& text, qsizetype n) {
    RequireArgument(n >= 0);
    return text.right(n);
}

qsizetype InStr(const QString& text, const QString& find) {
    return InStr(1, text, find);
}

qsizetype InStr(qsizetype start, const QString& text, const QString& find) {
    RequireArgument(start >= 1);
    if (start > text.size() + 1) return 0;
    if (find.isEmpty()) return start;
    const qsizetype at = text.indexOf(find, start - 1);
    return at < 0 ? 0 : at + 1;
}

QString LTrim(const QString& text) {
    qsizetype first = 0;
    while (first < text.size() && text[first] == u' ') ++first;
    return text.mid(first);
}

QString RTrim(const QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == u' ') --end;
    return text.left(end);
}

QString Trim(const QString& text) {
    return LTrim(RTrim(text));
}

QString RepeatChar(qsizetype count, const QString& fill) {
    RequireArgument(count >= 0 && !fill.isEmpty());
    return QString(count, fill[0]);
}

QString PadLeftFixed(const QString& text, qsizetype length, const QString& fill) {
    RequireArgument(length >= 0);
    QString padded = text;
    if (text.size() < length) padded = RepeatChar(length - text.size(), fill) + text;
    return Right(padded, length);
}

QString PadRightFixed(const QString& text, qsizetype length, const QString& fill) {
    RequireArgument(length >= 0);
    QString padded = text;
    if (text.size() < length) padded = text + RepeatChar(length - text.size(), fill);
    return Left(padded, length);
}

QStringList Split(const QString& text, const QString& separator) {
    if (text.isEmpty()) return {};
    if (separator.isEmpty()) return {text};
    return text.split(separator, Qt::KeepEmptyParts);
}

std::optional<QString> FieldAt(const QStringList& fields, qsizetype index) {
    if (index < 0 || index >= fields.size()) return std::nullopt;
    return fields[index];
}

QString CheckedField(const QStringList& fields, qsizetype index) {
    if (index < 0 || index >= fields.size()) throw RuntimeError(errors::SubscriptOutOfRange());
    return fields[index];
}

QStringList SplitLines(const QString& text, LineEnds rule) {
    QStringList lines;
    QString current;
    bool open = false;  // whether characters (or an empty line) are pending
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool isCrLf = c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        const bool endsLine = isCrLf || (c == u'\r' && rule != LineEnds::CrLfOrLf) ||
                              (c == u'\n' && rule != LineEnds::CrOrCrLf);
        if (endsLine) {
            lines.append(current);
            current.clear();
            open = false;
            if (isCrLf) ++i;
            continue;
        }
        current.append(c);
        open = true;
    }
    if (open) lines.append(current);
    return lines;
}

}  // namespace orbline
