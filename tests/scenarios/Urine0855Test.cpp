// The urine analyser 0855 against the running process: reports of each model, in frames and in
// reads cut anywhere, and one of a model the link does not know. The host never sends a byte.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

const QString kStamp = u":2025-04-16 09:30:15"_s;

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width - text.size(), ' ');
}

std::string RightAligned(const std::string& text, std::size_t width) {
    return std::string(width - text.size(), ' ') + text;
}

// Print lines in the notation: "<" written "<LT>", the line ends "<CR><LF>".
std::string Notated(const std::string& printed) {
    std::string notation;
    for (const char c : printed)
        notation += c == '<' ? "<LT>" : c == '\r' ? "<CR>" : c == '\n' ? "<LF>" : std::string(1, c);
    return notation;
}

// The model in columns 2 to 9, the identifier from 20, date from 34, time from 45, sequence
// number from 54 (the STX is column 1).
std::string Header(const std::string& model, const std::string& id) {
    return Notated(model + "    ID No." + Padded(id, 13) + " 2020/04/16 12:34 SEQ  12\r\n");
}

// A print line: the name in six columns, the mark, then grade, value and unit in six each.
std::string Line(const std::string& name, const std::string& mark, const std::string& grade,
                 const std::string& value, const std::string& unit) {
    return Notated(Padded(name, 6) + mark + Padded(grade, 6) + RightAligned(value, 6) +
                   Padded(unit, 6) + "\r\n");
}

// GLU has a grade only, PH and S.G. a value only; BIL, KET, NIT, LEU, ALB and P/C aren't
// printed.
const std::string kLines[] = {
    Line("GLU", " ", "NEG.", "", ""),           Line("PRO", "*", "2+*", "100", "mg/dL"),
    Line("URO", " ", "NORMAL", "0.2", "EU/dL"), Line("PH", " ", "", "6.5", ""),
    Line("S.G.", " ", "", "1.020", ""),         Line("BLD", " ", "1+", "", ""),
    Line("CRE", " ", "", "<10", "mg/dL"),       Line("A/C", " ", "NORMAL", "030", "mg/gCr"),
};

std::string Lines(std::size_t from, std::size_t to) {
    std::string lines;
    for (std::size_t i = from; i < to; ++i) lines += kLines[i];
    return lines;
}

// The records of that report, from the item code on.
const QStringList kRecords = {
    u"0850150,GLU(定性),,,,,-,,MIN,,,"_s,   u"0850020,PRO,,,,,100,mg/dL,MIN,,,"_s,
    u"0850160,PRO(定性),H,,,,++,,MIN,,,"_s, u"0850040,URO,,,,,0.2,EU/dL,MIN,,,"_s,
    u"0850180,URO(定性),,,,,N,,MIN,,,"_s,   u"0850050,PH,,,,,6.5,,MIN,,,"_s,
    u"0850060,S.G.,,,,,1.020,,MIN,,,"_s,    u"0850210,BLD(定性),,,,,+,,MIN,,,"_s,
    u"0850110,CRE,,,,,＜10,mg/dL,MIN,,,"_s, u"0850130,A/C,,,,,30,mg/gCr,MIN,,,"_s,
    u"0850270,A/C(定性),,,,,-,,MIN,,,"_s,
};

QStringList WithHead(const QString& id) {
    QStringList lines;
    for (const QString& record : kRecords)
        lines.append(u"20200416,123400,,"_s + id + u",0855,UA,000012,"_s + record);
    return lines;
}

struct Report {
    std::vector<std::string> reads;  // each sent once the link has read the one before
    QStringList file;                // the delivered lines
    QString logged;                  // SampleId and RunMark of the log line
};

}  // namespace

// One session of reports: a two-frame report of each model gives its records, one of another
// model gives the error line alone, a report in three frames cut inside them is put together,
// and one of no test gives an empty file.
// Nothing at all goes back on the line.
TEST(Urine0855, ReportsOfEachModelAndOfAnUnknownOne) {
    const auto twoFrames = [](const std::string& model, const std::string& id) {
        return std::vector<std::string>{"<STX>" + Header(model, id) + Lines(0, 3) + "<ETB>",
                                        "<STX>" + Lines(3, 8) + "<ETX>"};
    };
    // Three frames, each in two reads: the first cut inside the header, the others between
    // print lines.
    const std::string header = Header("VPU-4210", "K-77");
    const std::vector<std::string> threeFrames = {
        "<STX>" + header.substr(0, 4), header.substr(4) + "<ETB>", "<STX>" + Lines(0, 2),
        Lines(2, 3) + "<ETB>",         "<STX>" + Lines(3, 5),      Lines(5, 8) + "<ETX>",
    };
    const Report reports[] = {
        {twoFrames("VPU-4210", "0000012345"), WithHead(u"12345"_s), u"12345-"_s},
        {twoFrames("VPU-4010", "A-0042"), WithHead(u"A-0042"_s), u"A-0042-"_s},
        {twoFrames("VAE-4020", ""), WithHead(u"0"_s), u"0-"_s},
        {twoFrames("VPU-3000", "12"), {u"ERROR:検査機器が違います。VPU-3000,0855,UA"_s}, u"0-0"_s},
        {threeFrames, WithHead(u"K-77"_s), u"K-77-"_s},
        // One frame without a print line: the file is delivered empty, as the edit always makes it.
        {{"<STX>" + Header("VPU-4010", "9") + "<ETX>"}, {}, u"9-0"_s},
    };
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StartInstrument(link, u"0855"_s, u"UA"_s);
    QStringList expectedLog;
    int delivered = 0;
    for (const Report& report : reports) {
        SCOPED_TRACE(report.logged.toStdString());
        for (const std::string& read : report.reads) Exchange(link, read, "");
        ASSERT_TRUE(link.waitForDeliveries(++delivered));
        const QStringList files = link.deliveries();
        EXPECT_EQ(link.readDelivery(files.last()).split(u"\r\n"_s), report.file + QStringList{{}});
        expectedLog.append(u"出力完了(Write) -- 0855-"_s + report.logged + kStamp);
    }
    EXPECT_EQ(Drained(link, 300ms), "");
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);
    // The loop logs nothing of its own: the edits' lines stand between the start and the close.
    EXPECT_EQ(link.logMessages(),
              QStringList({u"プログラム開始 -- 0855--"_s + kStamp,
                           u"通信条件(Condition) 1:baud=9600 parity=なし data=8 stop=1:なし:1000"_s,
                           u"受信開始(Wait) -- 0855--"_s + kStamp}) +
                  expectedLog +
                  QStringList({u"プログラム終了(Query) -- 0855"_s + kStamp,
                               u"プログラム終了(kaijyo) -- 0855"_s + kStamp,
                               u"接続終了 -- 0855"_s + kStamp}));
    EXPECT_TRUE(link.workFiles().isEmpty());
}
