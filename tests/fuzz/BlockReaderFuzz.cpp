// The tonometer's blocks (2620): every character is in a block or still held, and a block is
// of the kind its ends say.

#include "FuzzInput.h"
#include "dialogues/PieceReaders.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    BlockReader reader;
    QString fed;
    QString blocks;
    for (const QString& read : fuzz::Reads(fuzz::Text(data, size))) {
        fed += read;
        const BlockStep step = Join(reader, read);
        if (!step.block) continue;
        fuzz::Require(step.endsInCr && step.block->text.endsWith(u'\r'), "a block ends in CR");
        blocks += step.block->text;
    }
    fuzz::Require(blocks + reader.text == fed, "every character is in a block or held");
    return 0;
}
