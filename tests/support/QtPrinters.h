#pragma once
// Readable failure messages for Qt texts and byte arrays in every test.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& list, std::ostream* os) {
    *os << '{';
    for (qsizetype i = 0; i < list.size(); ++i)
        *os << (i ? ", \"" : "\"") << list[i].toStdString() << '"';
    *os << '}';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* os) {
    if (bytes.size() > 64) {
        *os << bytes.size() << " bytes: " << bytes.left(32).toHex(' ').toStdString() << " ...";
        return;
    }
    *os << '[' << bytes.toHex(' ').toStdString() << ']';
}
