// The immunoassay analyser's edit (1730) on the pieces of any transmission: it passes over
// what it cannot read.

#include "FuzzInput.h"
#include "edits/MdlEdit016.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<CobasItem> items{{QStringLiteral("10"), QStringLiteral("TSH")},
                                              {QStringLiteral("20"), QStringLiteral("FT4")}};
    const CobasMessage message = ParseMessage1730(fuzz::Pieces(fuzz::Text(data, size)));
    (void)ResultLines1730(message, fuzz::Settings("1730"), items);
    return 0;
}
