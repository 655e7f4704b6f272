// Random and mutated frames of the blood glucose meter through the frame check and the edit: no
// crash, no hang; a frame the check takes is a whole frame with the right checksum, and each
// measurement gives one record, or two with a comment. A fixed seed keeps a failure
// reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include "common/AnsiCodec.h"
#include "common/Text.h"
#include "dialogues/Classifiers.h"
#include "edits/MdlEdit009.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

// 256 less the byte sum of the text, in two hexadecimal digits.
QString Sum(const QString& text) {
    unsigned sum = 0;
    for (const char b : EncodeAnsi(text)) sum += static_cast<std::uint8_t>(b);
    return QString::number((256 - sum % 256) % 256, 16).toUpper().rightJustified(2, u'0');
}

bool SumMatches(const QString& frame) {
    return frame.size() >= 4 &&
           frame.mid(frame.size() - 3, 2) == Sum(frame.mid(1, frame.size() - 4));
}

QString WithSum(const QString& inner) {
    return QChar(0x02) + inner + Sum(inner) + QChar(0x03);
}

}  // namespace

TEST(Frame0990Fuzz, NoCrashNoHangAndOnlyWholeFramesPass) {
    const QString del(QChar(0x7F));
    const QStringList seeds{
        WithSum(u"\u00051"_s),
        WithSum(u"\u00041"_s),
        WithSum(u"\u00161WSY"_s),
        WithSum(u"D1WBH|DAT=250416|TIM=093000|MSN=GM001234|VER=1.02|CNT=3"_s),
        WithSum(u"D1WBD|SNB=0001|PID=1234567"_s + del.repeated(9) +
                u"|BGD= 125|JDG=2|DAT=250416|TIM=091500|CMT=after meal"_s + del.repeated(6)),
        WithSum(u"D2NBD|PID=|BGD=>600|JDG=1|CMT="_s),
        WithSum(u"D3RSD|QCS=1"_s),
    };
    std::mt19937 random(20261124);
    const auto pick = [&](int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random);
    };
    // Half of the random bytes are those the check and the edit look at; every byte becomes
    // the character the port makes of it.
    const auto character = [&] {
        static constexpr char kMarked[] = {0x02, 0x03, 0x04, 0x05, 0x16, 0x7F, 0x0D, 0x0A,
                                           'D',  '|',  '=',  'W',  'B',  ' ',  '<',  '>'};
        const char b =
            pick(2) == 0 ? kMarked[pick(std::size(kMarked))] : static_cast<char>(pick(256));
        return PortText(QByteArray(1, b)).at(0);
    };
    FrameHistory history;
    const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    for (int round = 0, last = rounds != nullptr ? std::atoi(rounds) : 2000; round < last;
         ++round) {
        QStringList frames;
        for (int n = 1 + pick(4); n > 0; --n) {
            const bool randomText = pick(4) == 0;
            QString frame = randomText ? QString(pick(80), QChar()) : seeds.at(pick(seeds.size()));
            for (QChar& ch : frame)
                if (randomText || pick(40) == 0) ch = character();
            for (int k = pick(4); k > 0; --k) frame.insert(pick(frame.size() + 1), character());
            for (int k = pick(4); k > 0 && !frame.isEmpty(); --k)
                frame.remove(pick(frame.size()), 1);
            std::int16_t eot = 0;
            const FrameCheck check =
                CheckFrame0990(frame, static_cast<std::int16_t>(pick(3)), eot, history);
            if (check == FrameCheck::Good || check == FrameCheck::Idle ||
                check == FrameCheck::Rsd) {
                ASSERT_TRUE(frame.startsWith(QChar(0x02)) && frame.endsWith(QChar(0x03)))
                    << "round " << round;
                // The EOT frame inside a transmission ends the check before the checksum.
                if (eot == 0) {
                    ASSERT_TRUE(SumMatches(frame)) << "round " << round;
                }
            }
            frames.append(frame + u"\r\n"_s);
        }
        for (const Measurement0990& m : ParseFrames0990(frames, {})) {
            const QString lines = ResultLines0990(m, {u"0990"_s, u"GM"_s, u"0"_s, {}, {}});
            const qsizetype records = lines.count(u"\r\n"_s);
            ASSERT_TRUE(lines.endsWith(u"\r\n"_s)) << "round " << round;
            ASSERT_EQ(records, Trim(m.comment).isEmpty() ? 1 : 2) << "round " << round;
        }
    }
}
