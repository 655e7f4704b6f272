// The coagulation analyser 1650 against the running process: each kind of message with its one
// answer, a result in two reads, and an order file taken by the poll while the dialogue runs.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

// 8 unused, date and time 2504160925, the place "R012" "03", the identifier in 15 columns, 12
// unused, the slots.
std::string Message(const std::string& kind, const std::string& id, const std::string& slots = {}) {
    return "<STX>" + kind + std::string(8, '0') + "2504160925R01203" + id +
           std::string(27 - id.size(), ' ') + slots + "<ETX>";
}

// The reply at the clock's 2025-04-16 09:30: place and identifier (21 columns), "C", eleven
// blanks, the tests.
std::string Reply(const std::string& fields, const std::string& tests) {
    return "<ACK><STX>S2210101U2504160930" + fields + "C" + std::string(11, ' ') + tests + "<ETX>";
}

const std::string kNoTests(45, ' ');

}  // namespace

// One session: each kind of message gets its one answer (a short query's fields padded on the
// left, its ETX a blank among them); a result in two reads is acknowledged and edited once; an
// order file dropped while the dialogue runs (OrderPT "4") answers the next query.
TEST(Coagulation1650, ASessionOfQueriesAResultAndAnOrderFile) {
    const std::string tests = "040      050      ";
    const std::pair<std::string, std::string> exchanges[] = {
        {Message("X", "K0002"), "<NAK>"},
        {Message("R", "K0002"), Reply("R01203K0002          ", tests)},
        {"<STX>R" + std::string(18, '0') + "AB<ETX>",
         Reply(" AB " + std::string(17, ' '), kNoTests)},
    };
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StoreOrder(link, {u"KENSAKIKICD"_s, u"1650"_s, u"ORDERCD"_s, u"K0002"_s, u"KENSACNT"_s, u"2"_s,
                      u"KENSA1"_s, u"040"_s, u"KENSA2"_s, u"050"_s});
    StartInstrument(link, u"1650"_s, u"CA-50"_s, OrderFolderKeys(link));
    for (const auto& [sent, expected] : exchanges) {
        Exchange(link, sent, expected);
        EXPECT_EQ(Drained(link, 300ms), "") << sent;
    }
    const orbline::sim::Bytes result = Notation(Message("D", "00-0042", "04100125 04400125>"));
    ASSERT_TRUE(link.line.line.send({result.begin(), result.begin() + 60}));
    EXPECT_EQ(Drained(link, 300ms), "");
    ASSERT_TRUE(link.line.line.send({result.begin() + 60, result.end()}));
    EXPECT_EQ(Received(link, 1), "<ACK>");
    ASSERT_TRUE(link.waitForLog(u"出力完了(Write) -- 1650-42-:2025-04-16 09:30:15"_s));
    EXPECT_EQ(Drained(link, 300ms), "");
    // The log line of a reply follows its bytes: the last one could be overtaken by the close.
    const QStringList log = link.logMessages();
    EXPECT_EQ(log.filter(u"問合情報受信完了(Edit) -- 1650-"_s).size(), 2);
    EXPECT_EQ(log.filter(u"測定結果受信完了(Edit) -- 1650-"_s).size(), 1);
    DropOrderFile(link, u"orders/1650_0416.csv"_s, u"K0005"_s, u"1650"_s, {u"PT"_s, u"APTT"_s});
    ASSERT_TRUE(link.waitForLog(u"オーダデータ取得完了(Edit)"_s, 20000));
    Exchange(link, Message("R", "K0005"), Reply("R01203K0005          ", tests));
    EXPECT_EQ(link.close(), 0);

    const QString head = u"20250416,092500,,42,1650,CA-50,000000,"_s;
    EXPECT_EQ(DeliveredRecords(link),
              QStringList({head + u"1650010,PT,,,,,12.5,sec,MIN,,,"_s,
                           head + u"1650040,PT-INR,H,,,,1.25,,MIN,,,レポートリミット上限"_s}));
}
