// The coagulation analyser's edit (1650) on any message.

#include "FuzzInput.h"
#include "edits/MdlEdit016.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Edit1650 edit = ResultLines1650(fuzz::Text(data, size), fuzz::Settings("1650"));
    fuzz::Require(edit.lines.isEmpty() || edit.lines.endsWith(u"\r\n"), "whole lines only");
    return 0;
}
