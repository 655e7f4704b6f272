// The chemistry analysers' frames (2140, 2990): each read is classified by its second byte.

#include "FuzzInput.h"
#include "dialogues/PieceReaders.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    SecondByteFrames frames;
    for (const QString& read : fuzz::Reads(fuzz::Text(data, size))) {
        const KindedFrame kinded = ClassifyFrame(frames, read);
        fuzz::Require(kinded.lastFrame == frames.lastFrame, "the mark is the one kept");
        fuzz::Require(read.startsWith(QChar(0x02)) || kinded.kind == FrameKind::NoStx,
                      "a read without STX is no frame");
    }
    return 0;
}
