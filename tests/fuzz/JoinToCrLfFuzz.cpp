// Joining to CR LF (1660): every character of the reads is in a piece or still held.

#include "FuzzInput.h"
#include "dialogues/PieceReaders.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    JoinToCrLf joiner;
    QString fed;
    QString joined;
    for (const QString& read : fuzz::Reads(fuzz::Text(data, size))) {
        fed += read;
        if (const std::optional<QString> piece = Join(joiner, read)) joined += *piece;
    }
    fuzz::Require(joined + joiner.text == fed, "every character is joined or held");
    return 0;
}
