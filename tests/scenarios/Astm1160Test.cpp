// The "AIA-" analyser 1160 against the running process: a result message with a record cut
// across two reads, and a query answered in full with an order.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
namespace sim = orbline::sim;

namespace {

const std::string kHeader = Frame("1H|\\^&|||AIA-360^1.10|||||||P|1<CR>");

}  // namespace

TEST(Astm1160, AResultRecordCutAcrossTwoReadsIsJoined) {
    LinkProcess link;
    StartInstrument(link, u"1160"_s, u"AIA"_s);
    SendAcked(link, "<ENQ>" + kHeader + Frame("2P|1<CR>") + Frame("3O|1|0042||^^^110^|R<CR>"));
    // The instrument's UART stalls inside the name field: two reads, each acknowledged.
    const sim::Bytes cut =
        Notation(Frame("4R|1|^^^110^|5.25|ng/mL|0.50 to 9.99|N||||||20250416092000<CR>"));
    const auto half = cut.begin() + 12;
    ASSERT_TRUE(link.line.line.send(sim::Bytes(cut.begin(), half)));
    EXPECT_EQ(Received(link, 1), "<ACK>");
    ASSERT_TRUE(link.line.line.send(sim::Bytes(half, cut.end())));
    EXPECT_EQ(Received(link, 1), "<ACK>");
    SendAcked(link, Frame("5R|2|^^^110^|0.8|ng/mL||H|||||<CR>") +
                        Frame("6R|1|^^^120^|<LT>0.1|U/mL||<LT>||||||20250416092500<CR>") +
                        Frame("7L|1<CR>") + "<EOT>");
    ASSERT_TRUE(link.waitForDeliveries(1));
    EXPECT_EQ(Drained(link, 300ms), "");
    EXPECT_EQ(link.close(), 0);

    // The last first result sets the time of all; the second result of test 110 is named after
    // the row before it; "H" carries over to the rows after it.
    const QString head = u"20250416,092500,,42,1160,AIA,,"_s;
    EXPECT_EQ(DeliveredRecords(link),
              QStringList({head + u"1100,110,,0.50,9.99,,5.25,ng/mL,MIN,,,"_s,
                           head + u"1101,110110,H,,,,0.8,ng/mL,MIN,,,"_s,
                           head + u"1200,120,H,,,,＜0.1,U/mL,MIN,,,測定レンジ外"_s}));
    EXPECT_TRUE(link.logMessages().contains(u"出力完了(Write) -- 1160-42-"_s + kStamp));
}

// With an order: header, patient, order, terminator, numbered 1 to 4 (without one, header and
// terminator alone: the simulator's aia-1160 script). A refused frame is not repeated: the
// host asks for the line again and the ACK to its ENQ counts for the refused frame.
TEST(Astm1160, AQueryIsAnsweredInFullAndARefusalAsksForTheLineAgain) {
    LinkProcess link;
    StoreOrder(link, {u"KENSAKIKICD"_s, u"1160"_s, u"ORDERCD"_s, u"K0002"_s, u"KENSACNT"_s, u"2"_s,
                      u"KENSA1"_s, u"110"_s, u"KENSA2"_s, u"120"_s});
    StartInstrument(link, u"1160"_s, u"AIA"_s);
    SendAcked(link,
              "<ENQ>" + kHeader + Frame("2Q|1|^K0002||ALL<CR>") + Frame("3L|1<CR>") + "<EOT>");
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", Frame("1H|\\^&<CR>"));
    Exchange(link, "<NAK>", "<ENQ>");
    Exchange(link, "<ACK>", Frame("2P|1||||^|||<CR>"));
    Exchange(link, "<ACK>", Frame("3O|1|K0002||^^^110^\\^^^120^|||||||||||Sp.1<CR>"));
    Exchange(link, "<ACK>", Frame("4L|1<CR>"));
    Exchange(link, "<ACK>", "<EOT>");
    // The completion line follows the EOT; a close request could overtake it.
    EXPECT_TRUE(link.waitForLog(u"問合情報送信完了"_s));
    EXPECT_EQ(link.close(), 0);
    const QStringList log = link.logMessages();
    EXPECT_TRUE(log.contains(u"問合情報送信完了(Edit/ETB) -- 1160--"_s + kStamp))
        << log.join(u'\n').toStdString();
    // The query's empty work file stays where it was made.
    EXPECT_EQ(link.workFiles().size(), 1);
}
