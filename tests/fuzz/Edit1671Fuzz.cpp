// The tympanometer (1671): the pieces repaired into lines, the scan, and the pure parts of the
// edit on each call (the charts of one ear, of a reflex batch, the ear files merged).

#include "FuzzInput.h"
#include "common/RuntimeError.h"
#include "dialogues/Dialogue1671.h"
#include "edits/MdlEdit016.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QStringList lines = RepairLines1671(fuzz::Reads(fuzz::Text(data, size)));
    qsizetype scanned = 0;
    for (const ScanCall1671& c : ScanLines1671(lines)) {
        fuzz::Require(c.first == scanned && c.count > 0, "the calls take the lines in turn");
        scanned += c.count;
        const QStringList call = lines.mid(c.first, c.count);
        if (RejectedLine1671(call, c.call, fuzz::Settings("1671"))) continue;
        try {
            switch (c.call) {
                case Call1671::OneEar:
                    (void)SingleEarChart1671(call.first());
                    break;
                case Call1671::BothEars:
                    (void)MergedChart1671(EarFile1671(call.first()).join(u"\r\n"),
                                          EarFile1671(call.last()).join(u"\r\n"),
                                          PointCount1671(call.last()));
                    break;
                case Call1671::Reflex:
                    (void)ReflexChart1671(call, QStringLiteral("1"));
                    break;
            }
            (void)ReadPressureTable1671(call.first());
        } catch (const RuntimeError&) {
            // A count that is no number, a table past its rows: the error exit.
        }
    }
    fuzz::Require(scanned == lines.size(), "every line is in a call");
    return 0;
}
