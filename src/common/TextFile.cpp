#include "common/TextFile.h"

#include "common/AnsiCodec.h"
#include "common/Paths.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {
bool Write(const QString& path, const QString& text, QIODevice::OpenMode mode) {
    if (path.isEmpty()) return false;
    QFile file(NativePath(path));
    if (!file.open(mode)) return false;
    const QByteArray bytes = EncodeAnsi(text);
    const bool ok = file.write(bytes) == bytes.size();
    file.close();
    return ok && file.error() == QFileDevice::NoError;
}
}  // namespace

bool AppendLine(const QString& path, const QString& text) {
    return Write(path, text + u"\r\n"_s, QIODevice::WriteOnly | QIODevice::Append);
}

bool WriteNewLine(const QString& path, const QString& text) {
    return Write(path, text + u"\r\n"_s, QIODevice::WriteOnly | QIODevice::Truncate);
}

bool WriteNewText(const QString& path, const QString& text) {
    return Write(path, text, QIODevice::WriteOnly | QIODevice::Truncate);
}

std::optional<QString> ReadAllText(const QString& path) {
    if (path.isEmpty()) return std::nullopt;
    QFile file(NativePath(path));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return DecodeAnsi(file.readAll());
}

}  // namespace orbline
