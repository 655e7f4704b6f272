#include "common/Clock.h"

#include <QElapsedTimer>
#include <QThread>

#include <cmath>
#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

std::optional<QDateTime> FixedNow() {
    const char* text = std::getenv("KV_ORBLINE_NOW");
    if (text == nullptr || *text == '\0') return std::nullopt;
    QDateTime when = QDateTime::fromString(QString::fromLatin1(text), u"yyyy-MM-dd HH:mm:ss"_s);
    if (!when.isValid()) return std::nullopt;
    return when;
}

enum class Token { Year4, Year2, MonthOrMinute, Day, Hour, Second, Literal };

struct Piece {
    Token token;
    QChar literal;
};

QString Digits(int value, int width) {
    return QString::number(value).rightJustified(width, u'0');
}

}  // namespace

QDateTime Now() {
    if (auto fixed = FixedNow()) return *fixed;
    return QDateTime::currentDateTime();
}

QString FormatDateTime(const QDateTime& when, const QString& pattern) {
    const QString p = pattern.toUpper();
    std::vector<Piece> pieces;
    for (qsizetype i = 0; i < p.size();) {
        auto run = [&](QChar c) {
            qsizetype n = 0;
            while (i + n < p.size() && p[i + n] == c) ++n;
            return n;
        };
        const QChar c = p[i];
        const qsizetype n = run(c);
        if (c == u'Y' && n >= 4) {
            pieces.push_back({Token::Year4, {}});
            i += 4;
        } else if (c == u'Y' && n >= 2) {
            pieces.push_back({Token::Year2, {}});
            i += 2;
        } else if ((c == u'M' || c == u'D' || c == u'H' || c == u'S') && n >= 2) {
            pieces.push_back({c == u'M'   ? Token::MonthOrMinute
                              : c == u'D' ? Token::Day
                              : c == u'H' ? Token::Hour
                                          : Token::Second,
                              {}});
            i += 2;
        } else {
            pieces.push_back({Token::Literal, pattern[i]});
            i += 1;
        }
    }

    const QDate date = when.date();
    const QTime time = when.time();
    QString out;
    Token lastDateToken = Token::Literal;
    for (size_t k = 0; k < pieces.size(); ++k) {
        const Piece& piece = pieces[k];
        switch (piece.token) {
            case Token::Literal:
                out += piece.literal;
                continue;
            case Token::Year4:
                out += Digits(date.year(), 4);
                break;
            case Token::Year2:
                out += Digits(date.year() % 100, 2);
                break;
            case Token::MonthOrMinute: {
                Token next = Token::Literal;
                for (size_t j = k + 1; j < pieces.size() && next == Token::Literal; ++j)
                    next = pieces[j].token;
                const bool minute = lastDateToken == Token::Hour || next == Token::Second;
                out += Digits(minute ? time.minute() : date.month(), 2);
                break;
            }
            case Token::Day:
                out += Digits(date.day(), 2);
                break;
            case Token::Hour:
                out += Digits(time.hour(), 2);
                break;
            case Token::Second:
                out += Digits(time.second(), 2);
                break;
        }
        lastDateToken = piece.token;
    }
    return out;
}

QString NowText(const QString& pattern) {
    return FormatDateTime(Now(), pattern);
}

double TimeScale() {
    static const double scale = [] {
        const char* text = std::getenv("KV_ORBLINE_TIME_SCALE");
        if (text == nullptr) return 1.0;
        char* end = nullptr;
        const double value = std::strtod(text, &end);
        return (end != text && value > 0 && std::isfinite(value)) ? value : 1.0;
    }();
    return scale;
}

int ScaledMilliseconds(int milliseconds) {
    if (milliseconds <= 0) return 0;
    return std::max(1, static_cast<int>(std::lround(milliseconds * TimeScale())));
}

void Sleep(int milliseconds) {
    SleepScaled(ScaledMilliseconds(milliseconds));
}

void SleepScaled(std::int64_t milliseconds) {
    if (milliseconds > 0) QThread::msleep(static_cast<unsigned long>(milliseconds));
}

std::int64_t MonotonicMs() {
    static const QElapsedTimer started = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return started.elapsed();
}

}  // namespace orbline
