// The blood glucose meter's edit (0990) on the frames of any transmission: a record for each
// measurement, and one more for a comment.

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/MdlEdit009.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<Measurement0990> measurements;
    try {
        measurements = ParseFrames0990(fuzz::Pieces(fuzz::Text(data, size)), {});
    } catch (const RuntimeError&) {
        // A 2001st measurement: the error exit.
        return 0;
    }
    for (const Measurement0990& m : measurements)
        fuzz::Require(ResultLines0990(m, fuzz::Settings("0990")).count(u"\r\n") ==
                          (Trim(m.comment).isEmpty() ? 1 : 2),
                      "a record, and one for a comment");
    return 0;
}
