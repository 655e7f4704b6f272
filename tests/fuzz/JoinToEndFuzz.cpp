// Joining to ETX (1650, 0990): every character of the reads is in a piece or still held.

#include "FuzzInput.h"
#include "dialogues/PieceReaders.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    JoinToEnd joiner{.mark = QChar(0x03)};
    QString fed;
    QString joined;
    for (const QString& read : fuzz::Reads(fuzz::Text(data, size))) {
        fed += read;
        if (const std::optional<QString> piece = Join(joiner, read)) {
            fuzz::Require(piece->endsWith(QChar(0x03)), "a piece ends with its mark");
            joined += *piece;
        }
    }
    fuzz::Require(joined + joiner.text == fed, "every character is joined or held");
    return 0;
}
