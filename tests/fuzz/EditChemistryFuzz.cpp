// The chemistry analysers' edit (2140, 2990): each piece read as a frame of one message, then
// its result lines with the 2140's built-in item table.

#include "FuzzInput.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit021.h"
#include "tables/MdlOption.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool loaded = [] {
        LoadOption2140();
        return true;
    }();
    (void)loaded;
    const RunContext& c = Ctx();
    const ChemistryParams params{{c.OptionTable2140, c.OptionCount2140, 0, 1},
                                 QStringLiteral("2140")};
    ChemistryMessage message;
    try {
        for (const QString& frame : fuzz::Text(data, size).split(QChar(0x03)))
            ReadChemistryFrame(frame, {}, message);
        (void)ResultLinesChemistry(message, params, fuzz::Settings("2140"));
    } catch (const RuntimeError&) {
        // A 101st group, a count no integer holds: the error exit.
    }
    return 0;
}
