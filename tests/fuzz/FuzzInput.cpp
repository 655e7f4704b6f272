#include "FuzzInput.h"

using namespace Qt::StringLiterals;

namespace orbline::fuzz {

QStringList Reads(const QString& text) {
    QStringList reads;
    for (qsizetype at = 0, length = 0; at < text.size(); at += length) {
        length = 1 + text.at(at).unicode() % 40;
        reads.append(text.mid(at, length));
    }
    return reads;
}

QStringList Pieces(const QString& text) {
    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c != u'\n' && c != 0x05 && c != 0x04) continue;
        pieces.append(text.mid(start, i + 1 - start));
        start = i + 1;
    }
    if (start < text.size()) pieces.append(text.mid(start));
    return pieces;
}

EditSettings Settings(const char* code) {
    return {QString::fromLatin1(code), u"FUZZ"_s, u"1"_s, {u"0"_s, {}}, u"0"_s};
}

}  // namespace orbline::fuzz
