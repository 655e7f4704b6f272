#include "MainLogReader.h"

#include "common/AnsiCodec.h"
#include "orders/OrderDbFailure.h"

#include <QDir>
#include <QFile>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace orbline::soak {

namespace {

// The texts of the main log that say something went wrong.
const QStringList& FailureTexts() {
    static const QStringList texts = {
        u"オーダデータ検索失敗(DB)"_s,
        u"オーダデータ登録失敗(Edit)"_s,
        QString::fromUtf16(kOrderDbOpenFailed),
        QString::fromUtf16(kOrderDbCloseFailed),
        u"受信未完了(退避)"_s,
        u"回線切断"_s,
        u"接続失敗"_s,
        u"プログラム異常終了"_s,
        u"システムエラー"_s,
    };
    return texts;
}

QByteArray ReadFrom(const QString& path, qint64 offset) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(offset)) return {};
    return file.readAll();
}

}  // namespace

MainLogReader::MainLogReader(QString root, QString code)
    : root_(std::move(root)), code_(std::move(code)) {}

void MainLogReader::poll() {
    const QString path = root_ + u"/Tesvane"_s + code_ + u".log"_s;
    const qint64 size = QFile(path).size();
    if (size < offset_) {
        // Rotated since the last call: the copy of the day is the old log whole.
        const QStringList copies =
            QDir(root_).entryList({u"Tesvane_ "_s + code_ + u"_*.log"_s}, QDir::Files, QDir::Time);
        if (!copies.isEmpty()) take(ReadFrom(root_ + u'/' + copies.first(), offset_));
        offset_ = 0;
    }
    const QByteArray added = ReadFrom(path, offset_);
    const qsizetype end = added.lastIndexOf("\r\n");
    if (end < 0) return;
    take(added.left(end + 2));
    offset_ += end + 2;
}

void MainLogReader::take(const QByteArray& bytes) {
    const QString text = DecodeAnsi(bytes);
    for (const QString& failure : FailureTexts()) {
        if (const qsizetype count = text.count(failure); count > 0)
            failures_[failure] += static_cast<int>(count);
    }
}

}  // namespace orbline::soak
