// Result edit 0855 from literal reports: the rules Urine0855Test does not reach through the
// running process.

#include "edits/MdlEdit008.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

// The run mark of the settings, a fixed sample number in place of the one read, a sequence number
// that is no number kept as printed; the mark column alone flags, ">" is widened, a zero value is
// written as the empty text; frames of five characters or fewer are left out, the first place of
// a name wins (ALB behind the sequence number), and an empty first frame is an error.
TEST(ResultLines0855, RulesTheScenarioDoesNotReach) {
    const EditSettings settings{u"0855"_s, u"UA"_s, u"1"_s, {u"0"_s, u"K9"_s}, u"0"_s};
    const QString header = u"\x02VPU-4210          7             2020/04/16 12:34    "_s;
    const QString head = u"20200416,123400,1,K9,0855,UA,"_s;
    const std::pair<QStringList, QString> cases[] = {
        {{u"\x02xyz\x17"_s, header + u"A12 \r\n\x17"_s,
          u"\x02KET   *3+*               \r\nBIL    1+*        0mg/L  \r\nP/C    >0.5              \r\n\x03"_s},
         head + u"A12 ,0850030,BIL,,,,,,mg/L,MIN,,,\r\n"_s + head +
             u"A12 ,0850170,BIL(定性),,,,,+,,MIN,,,\r\n"_s + head +
             u"A12 ,0850220,KET(定性),H,,,,+++,,MIN,,,\r\n"_s + head +
             u"A12 ,0850280,P/C(定性),,,,,＞0.5,,MIN,,,\r\n"_s},
        {{header + u"ALB1\r\nALB              10      \r\n\x03"_s},
         head + u"ALB1,0850260,ALB(定性),,,,,LB,,MIN,,,\r\n"_s},
        {{QString(), header}, u"ERROR:受信データなし。,0855,UA\r\n"_s},
    };
    for (const auto& [frames, lines] : cases)
        EXPECT_EQ(ResultLines0855(frames, settings).lines, lines)
            << frames.join(u'|').toStdString();
}
