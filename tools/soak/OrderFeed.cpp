#include "OrderFeed.h"

#include <QFile>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace orbline::soak {

namespace {

constexpr int kFirstTestField = 40;
// Every tenth file holds more lines than two of the intake's batches of 500.
constexpr int kLongFileLines = 1200;

int LinesOfFile(int number) {
    return number % 10 == 9 ? kLongFileLines : 10 + (number * 37) % 90;
}

QByteArray LineEndOfFile(int number) {
    static const QByteArray ends[] = {"\r\n", "\n", "\r"};
    return ends[number % 3];
}

}  // namespace

QByteArray OrderFileText(const OrderTarget& target, int first, int lines,
                         const QByteArray& lineEnd) {
    QByteArray text;
    for (int key = first; key < first + lines; ++key) {
        QStringList fields{u"20250416"_s, QString::number(key), u"0930"_s,
                           u"SOAK%1"_s.arg(key, 8, 10, QChar(u'0')), target.code};
        while (fields.size() < kFirstTestField) fields.append(QString());
        fields.append(target.test);
        text += fields.join(u',').toLatin1() + lineEnd;
    }
    return text;
}

OrderFeed::OrderFeed(std::vector<OrderTarget> targets) : targets_(std::move(targets)) {}

bool OrderFeed::next() {
    if (!halfPath_.isEmpty()) return finish();
    const int number = files_++;
    const OrderTarget& target = targets_.at(static_cast<std::size_t>(number) % targets_.size());
    const int lines = LinesOfFile(number);
    const QByteArray text = OrderFileText(target, nextKey_, lines, LineEndOfFile(number));
    nextKey_ += lines;
    const QString path =
        target.folder + u'/' + target.code + u"-soak-%1.csv"_s.arg(number, 6, 10, QChar(u'0'));
    if (number % 4 == 3) {
        // In place, cut inside a line: a poll that sees the first half must leave it.
        const qsizetype half = text.size() / 2;
        halfPath_ = path;
        halfRest_ = text.mid(half);
        halfCode_ = target.code;
        halfLines_ = lines;
        return write(path, text.left(half), false);
    }
    const QString aside = path + u".part"_s;
    if (!write(aside, text, false)) return false;
    if (!QFile::rename(aside, path)) {
        error_ = u"cannot rename "_s + aside;
        return false;
    }
    lines_[target.code] += lines;
    return true;
}

bool OrderFeed::finish() {
    if (halfPath_.isEmpty()) return true;
    const bool written = write(halfPath_, halfRest_, true);
    if (written) lines_[halfCode_] += halfLines_;
    halfPath_.clear();
    return written;
}

bool OrderFeed::write(const QString& path, const QByteArray& bytes, bool append) {
    QFile file(path);
    const auto mode = QIODevice::WriteOnly | (append ? QIODevice::Append : QIODevice::Truncate);
    if (!file.open(mode) || file.write(bytes) != bytes.size()) {
        error_ = u"cannot write "_s + path;
        return false;
    }
    return true;
}

}  // namespace orbline::soak
