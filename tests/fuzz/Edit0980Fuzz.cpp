// The glycohaemoglobin analyser's edit (0980) on the pieces of any transmission.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit009.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Message0980 message = ParseMessage0980(fuzz::Pieces(fuzz::Text(data, size)), {}, {});
    try {
        (void)ResultLines0980(message, fuzz::Settings("0980"));
    } catch (const RuntimeError&) {
        // A value whose point lies past the runtime's 16-bit position: the error exit.
    }
    return 0;
}
