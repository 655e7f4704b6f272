// The urine analyser's edit (0855) on the frames of any report.

#include "FuzzInput.h"
#include "edits/MdlEdit008.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QStringList frames = fuzz::Text(data, size).split(QChar(0x17));
    const Edit0855 edit = ResultLines0855(frames, fuzz::Settings("0855"));
    fuzz::Require(edit.lines.isEmpty() || edit.lines.endsWith(u"\r\n"), "whole lines only");
    return 0;
}
