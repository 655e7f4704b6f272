// The blood glucose meter's frame check (0990): a frame taken is a whole frame.

#include "FuzzInput.h"
#include "dialogues/Classifiers.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FrameHistory history;
    std::int16_t pieceCount = 0;
    for (const QString& frame : fuzz::Pieces(fuzz::Text(data, size))) {
        std::int16_t eot = 0;
        const FrameCheck check = CheckFrame0990(frame, pieceCount, eot, history);
        const bool taken =
            check == FrameCheck::Good || check == FrameCheck::Idle || check == FrameCheck::Rsd;
        fuzz::Require(!taken || (frame.startsWith(QChar(0x02)) && frame.endsWith(QChar(0x03))),
                      "a frame taken runs from STX to ETX");
        pieceCount = check == FrameCheck::Good ? static_cast<std::int16_t>(pieceCount + 1) : 0;
    }
    return 0;
}
