// The cobas analyser's edit (1660) on the pieces of any transmission.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit016.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const CobasMessage message = ParseMessage1660(fuzz::Pieces(fuzz::Text(data, size)), {});
        (void)ResultLines1660(message, fuzz::Settings("1660"));
    } catch (const RuntimeError&) {
        // A record short of a field, a 101st row, a value that cannot be formatted.
    }
    return 0;
}
