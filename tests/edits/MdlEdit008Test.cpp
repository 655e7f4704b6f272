// Result edit 0855 from literal reports: what Urine0855Test does not reach through the running
// process (the grades it does not send, the first-place search, short frames, the fixed number).

#include "edits/MdlEdit008.h"

#include "common/Text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

const EditSettings kSettings{u"0855"_s, u"UA"_s, u"1"_s, {u"0"_s, {}}, u"0"_s};

// STX, the model, the identifier 7 in column 20, date, time, the sequence number from 54.
QString Header(const QString& model = u"VPU-4210"_s, const QString& seq = u"  12"_s) {
    return u"\x02"_s + model + u"          "_s + PadRightFixed(u"7"_s, 13, u" "_s) +
           u" 2020/04/16 12:34    "_s + seq + u"\r\n"_s;
}

// A print line: the name in six columns, the mark, then grade, value and unit in six each.
QString Line(const QString& name, const QString& mark, const QString& grade,
             const QString& value = {}, const QString& unit = {}) {
    return PadRightFixed(name, 6, u" "_s) + mark + PadRightFixed(grade, 6, u" "_s) +
           PadLeftFixed(value, 6, u" "_s) + PadRightFixed(unit, 6, u" "_s) + u"\r\n"_s;
}

// The lines of a report, each record from its item code on.
QStringList Lines(const QStringList& frames, const EditSettings& settings = kSettings) {
    QStringList lines = ResultLines0855(frames, settings).lines.split(u"\r\n"_s);
    for (QString& line : lines)
        if (!line.startsWith(u"ERROR:"_s)) line = line.section(u',', 7);
    return lines;
}

}  // namespace

TEST(ResultLines0855, GradesAndTheirFlag) {
    const std::pair<QString, QString> cases[] = {
        {Line(u"URO"_s, u" "_s, u"NEG."_s), u"0850180,URO(定性),,,,,N,,MIN,,,"_s},
        {Line(u"KET"_s, u"*"_s, u"3+*"_s), u"0850220,KET(定性),H,,,,+++,,MIN,,,"_s},
        {Line(u"LEU"_s, u" "_s, u"4+"_s), u"0850240,LEU(定性),,,,,++++,,MIN,,,"_s},
        {Line(u"NIT"_s, u" "_s, u"+-"_s), u"0850230,NIT(定性),,,,,+-,,MIN,,,"_s},
        {Line(u"P/C"_s, u" "_s, u">0.5"_s), u"0850280,P/C(定性),,,,,＞0.5,,MIN,,,"_s},
        // Only the mark column flags: a starred grade without it is no H.
        {Line(u"BIL"_s, u" "_s, u"1+*"_s), u"0850170,BIL(定性),,,,,+,,MIN,,,"_s},
    };
    for (const auto& [line, record] : cases)
        EXPECT_EQ(Lines({Header() + line + u"\x03"_s}), QStringList({record, QString()}))
            << line.toStdString();
}

TEST(ResultLines0855, ValuesAndTheHeader) {
    struct Case {
        QStringList frames;
        QStringList lines;
    };
    const Case cases[] = {
        // A zero is formatted to the empty text, and its record is written all the same.
        {{Header() + Line(u"ALB"_s, u" "_s, {}, u"0"_s, u"mg/L"_s) + u"\x03"_s},
         {u"0850120,ALB,,,,,,mg/L,MIN,,,"_s, QString()}},
        // Frames of five characters or fewer are left out of the text, or the model would not
        // stand at column 2.
        {{u"\x02xyz\x17"_s, Header() + u"\x17"_s,
          u"\x02"_s + Line(u"PH"_s, u" "_s, u"-"_s, u"6.5"_s) + u"\x03"_s},
         {u"0850050,PH,,,,,6.5,,MIN,,,"_s, u"0850190,PH(定性),,,,,-,,MIN,,,"_s, QString()}},
        // The first place wins, also one in the header: ALB's columns are read behind the
        // sequence number, and its print line is lost.
        {{Header(u"VAE-4020"_s, u"ALB1"_s) + Line(u"ALB"_s, u" "_s, {}, u"10"_s) + u"\x03"_s},
         {u"0850260,ALB(定性),,,,,LB,,MIN,,,"_s, QString()}},
        {{QString(), Header()}, {u"ERROR:受信データなし。,0855,UA"_s, QString()}},
        {{}, {u"ERROR:受信データなし。,0855,UA"_s, QString()}},
        {{u"\x02vpu-4210 "_s + Header().mid(10)},
         {u"ERROR:検査機器が違います。vpu-4210,0855,UA"_s, QString()}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Lines(c.frames), c.lines) << c.frames.join(u'|').toStdString();
}

// The run mark of the settings, a sequence number that is no number kept as printed, and a
// fixed sample number in the place of the one read.
TEST(ResultLines0855, RunMarkSequenceAndFixedNumber) {
    const QString report =
        Header(u"VPU-4010"_s, u"A12 "_s) + Line(u"GLU"_s, u" "_s, u"NEG."_s) + u"\x03"_s;
    EXPECT_EQ(ResultLines0855({report}, kSettings).lines,
              u"20200416,123400,1,7,0855,UA,A12 ,0850150,GLU(定性),,,,,-,,MIN,,,\r\n"_s);
    EditSettings fixed = kSettings;
    fixed.sampleRule = {u"0"_s, u"K9"_s};
    EXPECT_EQ(ResultLines0855({report}, fixed).sampleId, u"K9"_s);
}
