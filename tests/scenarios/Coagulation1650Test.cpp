// The coagulation analyser 1650 against the running process: a result message in two reads,
// each kind of message with its one answer, and an order file taken by the poll while the
// dialogue runs.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
namespace sim = orbline::sim;

namespace {

const QString kStamp = u":2025-04-16 09:30:15"_s;

// A message of the kind: 8 unused, date and time 2504160925, the place "R012" "03", the
// identifier in 15 columns, 12 unused, then the slots.
std::string Message(const std::string& kind, const std::string& id, const std::string& slots = {}) {
    return "<STX>" + kind + std::string(8, '0') + "2504160925" + "R01203" + id +
           std::string(15 - id.size(), ' ') + std::string(12, ' ') + slots + "<ETX>";
}

// The host's reply at the clock's 2025-04-16 09:30: the query's place and identifier (21
// columns), "C", eleven blanks and the tests.
std::string Reply(const std::string& fields, const std::string& tests) {
    return "<STX>S2210101U2504160930" + fields + "C" + std::string(11, ' ') + tests + "<ETX>";
}

void Started(LinkProcess& link, const QString& keys = QString()) {
    StartInstrument(link, u"1650"_s, u"CA-50"_s, keys);
}

qsizetype LogLinesStarting(const LinkProcess& link, const QString& text) {
    const QStringList log = link.logMessages();
    return std::count_if(log.begin(), log.end(),
                         [&](const QString& line) { return line.startsWith(text); });
}

}  // namespace

TEST(Coagulation1650, AResultInTwoReadsIsAcknowledgedAndEditedOnce) {
    LinkProcess link;
    Started(link);
    const sim::Bytes message =
        Notation(Message("D", "00-0042", "04100125 04400125>99900125 062-----+"));
    const auto half = message.begin() + 60;
    ASSERT_TRUE(link.line.line.send(sim::Bytes(message.begin(), half)));
    EXPECT_EQ(Drained(link, 300ms), "");
    ASSERT_TRUE(link.line.line.send(sim::Bytes(half, message.end())));
    EXPECT_EQ(Received(link, 1), "<ACK>");
    ASSERT_TRUE(link.waitForDeliveries(1));
    EXPECT_EQ(Drained(link, 300ms), "");
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);

    const QString head = u"20250416,092500,,42,1650,CA-50,000000,"_s;
    EXPECT_EQ(DeliveredRecords(link),
              QStringList({head + u"1650010,PT,,,,,12.5,sec,MIN,,,"_s,
                           head + u"1650040,PT-INR,H,,,,1.25,,MIN,,,レポートリミット上限"_s,
                           head + u"999,999,,,,,125,,MIN,,,"_s,
                           head + u"1650060,Fbg,H,,,,-----,mg/dL,MIN,,,上下限管理値超"_s}));
    EXPECT_EQ(LogLinesStarting(link, u"測定結果受信完了(Edit) -- 1650-"_s), 1);
    EXPECT_TRUE(link.logMessages().contains(u"出力完了(Write) -- 1650-42-"_s + kStamp));
}

// One process takes the messages in turn; each gets its answer and nothing more. A query
// shorter than the reply's fields gets them padded on the left, its ETX a blank among them.
TEST(Coagulation1650, EachMessageGetsItsOneAnswer) {
    struct Case {
        const char* what;
        std::string sent;
        std::string expected;
    };
    const std::string noTests(45, ' ');
    const Case cases[] = {
        {"another kind", Message("X", "K0002"), "<NAK>"},
        {"STX and ETX alone", "<STX><ETX>", "<NAK>"},
        {"a query with an order", Message("R", "K0002"),
         "<ACK>" + Reply("R01203K0002          ", "040      050      ")},
        {"a query without an order", Message("R", "K0009"),
         "<ACK>" + Reply("R01203K0009          ", noTests)},
        {"a short query", "<STX>R" + std::string(18, '0') + "AB<ETX>",
         "<ACK>" + Reply(" AB " + std::string(17, ' '), noTests)},
    };
    LinkProcess link;
    StoreOrder(link, {u"KENSAKIKICD"_s, u"1650"_s, u"ORDERCD"_s, u"K0002"_s, u"KENSACNT"_s, u"2"_s,
                      u"KENSA1"_s, u"040"_s, u"KENSA2"_s, u"050"_s});
    Started(link);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Exchange(link, c.sent, c.expected);
        EXPECT_EQ(Drained(link, 300ms), "");
    }
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);
    EXPECT_EQ(LogLinesStarting(link, u"問合情報受信完了(Edit) -- 1650-"_s), 3);
    EXPECT_TRUE(link.deliveries().isEmpty());
}

// With OrderPT "4" the dialogue looks into OrderPath every 1000 rounds; an order file dropped
// while it runs is stored and deleted, and the next query is answered from it.
TEST(Coagulation1650, AnOrderFileDroppedWhileTheDialogueRunsIsTaken) {
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    CreateOrderStore(link);
    Started(link, OrderFolderKeys(link));
    DropOrderFile(link, u"1650_0416.csv"_s, u"K0005"_s, u"1650"_s, {u"PT"_s, u"APTT"_s});

    ASSERT_TRUE(link.waitForLog(u"オーダデータ取得完了(Edit)"_s, 20000));
    EXPECT_FALSE(QFile::exists(link.native(u"orders/1650_0416.csv"_s)));
    Exchange(link, Message("R", "K0005"),
             "<ACK>" + Reply("R01203K0005          ", "040      050      "));
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);
}
