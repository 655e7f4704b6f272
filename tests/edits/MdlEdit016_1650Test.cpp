// Result edit 1650 from literal messages: what Coagulation1650Test does not reach through the
// running process (the scaling of each item, the flags, the slot limits, the error lines).

#include "edits/MdlEdit016.h"

#include "common/Text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

// A "D" message of sample 7: positions 1 to 53, the slots, the ETX.
QString Message(const QString& slots) {
    return u"\x02"_s + u"D"_s + RepeatChar(8, u"x"_s) + u"2504160925R01203"_s +
           PadRightFixed(u"7"_s, 27, u" "_s) + slots + u"\x03"_s;
}

// The lines of the message, the records from their item code on.
QStringList Lines(const QString& message) {
    const EditSettings settings{u"1650"_s, u"CA-50"_s, u"1"_s, {u"0"_s, {}}, u"0"_s};
    QStringList lines = ResultLines1650(message, settings).lines.split(u"\r\n"_s);
    for (QString& line : lines)
        if (!line.startsWith(u"ERROR:"_s)) line = line.section(u',', 7);
    return lines;
}

}  // namespace

TEST(ResultLines1650, ScalingByItemAndTheFlags) {
    const std::pair<QString, QString> cases[] = {
        {u"04301000-"_s, u"1650030,PT比,L,,,,10.00,,MIN,,,上下限管理値未満"_s},
        {u"051  125+"_s, u"1650050,APTT,H,,,,12.5,sec,MIN,,,上下限管理値超"_s},
        {u"062-----!"_s, u"1650060,Fbg,,,,,-----,mg/dL,MIN,,,希釈倍率変更測定による凝固時間"_s},
        {u"092 <100<"_s, u"1650080,HpT,L,,,,＜100,%,MIN,,,レポートリミット下限"_s},
        {u"62200990*"_s,
         u"1650230,PFDP,,,,,99.0,ug/mL,MIN,,,測定エラー時、または、平均データの乖離データ発生時"_s},
        // An unknown code names the item, and its value only loses its leading zeros.
        {u"99900125A"_s, u"999,999,,,,,125,,MIN,,,A"_s},
    };
    for (const auto& [slot, record] : cases)
        EXPECT_EQ(Lines(Message(slot)), QStringList({record, QString()})) << slot.toStdString();
}

// The ETX counts as text and a slot may end one past it: a cut slot is still read, its value
// carrying the ETX. Past 23 slots the rest is lost. An empty message, or one of another kind,
// is one error line.
TEST(ResultLines1650, WhichSlotsAreReadAndTheErrorLines) {
    const QString slot = u"04100125 "_s;
    EXPECT_EQ(Lines(Message(slot + u"0410012"_s)).value(1),
              u"1650010,PT,,,,,0012\x03,sec,MIN,,,"_s);
    EXPECT_EQ(Lines(Message(slot + u"041001"_s)).size(), 2);
    EXPECT_EQ(Lines(Message(slot.repeated(23) + u"04200500 "_s)).size(), 24);
    EXPECT_EQ(Lines(QString()), QStringList({u"ERROR:受信データなし。,1650,CA-50"_s, QString()}));
    EXPECT_EQ(Lines(u"\x02\x03"_s).first(), u"ERROR:テキスト区分エラー1。 \x03,1650,CA-50"_s);
}
