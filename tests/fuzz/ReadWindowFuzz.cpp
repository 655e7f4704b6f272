// The read window: whatever the reads and their times, every byte is given or held, in order.

#include "FuzzInput.h"
#include "dialogues/ReadWindow.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte chooses the window: waits of 0, 10, 100 or 1000 ms, with or without rest.
    static constexpr std::int64_t kWaits[] = {0, 10, 100, 1000};
    ReadWindow window{.waitMs = kWaits[data[0] % 4], .restMs = data[0] & 4 ? 100 : 0};
    QString fed;
    QString given;
    std::int64_t now = 0;
    for (const QString& part : fuzz::Reads(fuzz::Text(data + 1, size - 1))) {
        fed += part;
        now += part.at(0).unicode() % 150;
        if (const std::optional<QString> read = TakeRead(window, now, part)) {
            fuzz::Require(!read->isEmpty(), "a read is never empty");
            given += *read;
        }
        fuzz::Require(SleepBeforeNextLook(window, now, 10) <= 10,
                      "the loop sleeps at most a round");
    }
    fuzz::Require(given + window.held == fed, "every byte is given or held, in order");
    return 0;
}
