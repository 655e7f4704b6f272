// Random and mutated frames of the glucose meter through the frame check and the edit: a frame
// taken is whole with its checksum; a measurement gives one record, two with a comment.

#include "common/AnsiCodec.h"
#include "common/Text.h"
#include "dialogues/Classifiers.h"
#include "edits/MdlEdit009.h"
#include "support/Frames.h"
#include "support/Fuzz.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(Frame0990Fuzz, NoCrashNoHangAndOnlyWholeFramesPass) {
    const auto sum = [](const QString& text) {  // 256 less the byte sum, two hex digits
        unsigned total = 0;
        for (const char b : EncodeAnsi(text)) total += static_cast<std::uint8_t>(b);
        return QString::number((256 - total % 256) % 256, 16).toUpper().rightJustified(2, u'0');
    };
    QStringList seeds;
    for (const char* inner :
         {"<ENQ>1", "<EOT>1", "<SYN>1WSY", "D1WBH|DAT=250416|MSN=GM001234", "D3RSD|QCS=1",
          "D1WBD|PID=1234567<x7F><x7F>|BGD= 125|JDG=2|DAT=250416|TIM=091500|CMT=meal<x7F>",
          "D2NBD|PID=|BGD=>600|JDG=1|CMT="}) {
        const QString text = test::PortBytes(inner);
        seeds.append(QChar(0x02) + text + sum(text) + QChar(0x03));
    }
    test::Fuzz pick{std::mt19937(20261124)};
    const auto character = [&] {
        return PortText(QByteArray(1, pick.byte("\x02\x03\x04\x05\x16\x7F\r\nD|=WB <>"))).at(0);
    };
    FrameHistory history;
    for (int round = 0, last = test::Fuzz::Rounds(2000); round < last; ++round) {
        QStringList frames;
        for (qsizetype n = 1 + pick(4); n > 0; --n) {
            // Seeds mutated; an empty start grows random.
            QString frame = pick(4) == 0 ? QString() : seeds.at(pick(seeds.size()));
            pick.edit(frame, pick(frame.isEmpty() ? 80 : 6), character);
            std::int16_t eot = 0;
            const FrameCheck check =
                CheckFrame0990(frame, static_cast<std::int16_t>(pick(3)), eot, history);
            // A frame taken is whole and carries its checksum; the EOT frame inside a
            // transmission is taken before its checksum is looked at.
            const bool taken =
                check == FrameCheck::Good || check == FrameCheck::Idle || check == FrameCheck::Rsd;
            ASSERT_TRUE(!taken || (frame.startsWith(QChar(0x02)) && frame.endsWith(QChar(0x03)) &&
                                   (eot == 1 || frame.sliced(frame.size() - 3, 2) ==
                                                    sum(frame.sliced(1, frame.size() - 4)))))
                << "round " << round;
            frames.append(frame + u"\r\n"_s);
        }
        for (const Measurement0990& m : ParseFrames0990(frames, {}))
            ASSERT_EQ(ResultLines0990(m, {u"0990"_s, u"GM"_s, u"0"_s, {}, {}}).count(u"\r\n"_s),
                      Trim(m.comment).isEmpty() ? 1 : 2)
                << "round " << round;
    }
}
