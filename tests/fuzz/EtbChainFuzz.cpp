// The report chain (0855): a report never holds more than was fed, nor more than its frames.

#include "FuzzInput.h"
#include "dialogues/PieceReaders.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    EtbChain chain;
    qsizetype fed = 0;
    qsizetype reported = 0;
    for (const QString& read : fuzz::Reads(fuzz::Text(data, size))) {
        fed += read.size();
        const std::optional<QStringList> report = Join(chain, read);
        if (!report) continue;
        fuzz::Require(!report->isEmpty() && report->size() <= kChainFrames,
                      "a report has one to eleven frames");
        for (const QString& frame : *report) reported += frame.size();
    }
    fuzz::Require(reported <= fed, "no report holds what was not fed");
    return 0;
}
