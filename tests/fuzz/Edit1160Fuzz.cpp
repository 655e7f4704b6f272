// The AIA analyser's edit (1160) on the pieces of any transmission.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit011.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const Message1160 message = ParseMessage1160(fuzz::Pieces(fuzz::Text(data, size)), {}, {});
        (void)ResultLines1160(message, fuzz::Settings("1160"));
    } catch (const RuntimeError&) {
        // Data the instrument got wrong: the error exit.
    }
    return 0;
}
