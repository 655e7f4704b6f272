// The tonometer's edit (2620): the blocks of any transmission scanned in both layouts, then
// the result lines of the rows.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit026.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const ScanInputs2620 inputs{.ftLayout = (data[0] & 1) != 0,
                                .today = QStringLiteral("20250416")};
    ScanState2620 state = StartScan2620(inputs);
    BlockReader reader;
    try {
        for (const QString& read : fuzz::Reads(fuzz::Text(data + 1, size - 1)))
            if (const BlockStep step = Join(reader, read); step.block)
                ScanBlock2620(step.block->text, inputs, state);
    } catch (const RuntimeError&) {
        // A row past position 100: the error exit.
        return 0;
    }
    fuzz::Require(state.rows.size() <= std::size_t(kMaxRows2620), "at most 100 rows");
    (void)ResultLines2620(state.rows, fuzz::Settings("2620"));
    return 0;
}
