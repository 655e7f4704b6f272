// The haematology analyser's edit (1190) on the pieces of any transmission.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit011.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Message1190 message = ParseMessage1190(fuzz::Pieces(fuzz::Text(data, size)), {});
    try {
        (void)ResultLines1190(message, fuzz::Settings("1190"));
    } catch (const RuntimeError&) {
        // A value whose point lies past the runtime's 16-bit position: the error exit.
    }
    return 0;
}
