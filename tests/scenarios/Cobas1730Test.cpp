// The immunoassay analyser 1730 against the running process: the real cobas captures as
// results, and a query answered with four records in four frames under refusals, also with an
// order record long enough for two frames.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
namespace sim = orbline::sim;

namespace {

// A query for the patient K0001; the place fields come back in the order record.
const std::string kQuery = "<ENQ>" + Frame("1H|\\^&|||cobas-e411^1|||||host|TSREQ^REAL|P|1<CR>") +
                           Frame("2Q|1|^K0001^A^B^C^^E^F||ALL||||||||A<CR>") + Frame("3L|1|N<CR>") +
                           "<EOT>";

// The order record of the answer: the time is the moment the loop began.
std::string OrderRecord(const std::string& tests) {
    return "3O|1|K0001|A^B^C^^E^F|" + tests + "|R|20250416093015|||||N||||||||||||||Q|||||<CR>";
}

// Tests 4201, 4202, ... with the second code 12, and the store's columns for them.
std::string Tests(int count, QStringList& columns) {
    std::string tests;
    columns << u"KENSACNT"_s << QString::number(count);
    for (int i = 1; i <= count; ++i) {
        const QString n = QString::number(i);
        tests += (i == 1 ? "^^^" : "\\^^^") + std::to_string(4200 + i) + "^12";
        columns << u"KENSA"_s + n << QString::number(4200 + i) << u"KENSA"_s + n + u"_2"_s
                << u"12"_s;
    }
    return tests;
}

void StartWithOrder(LinkProcess& link, const QStringList& columns) {
    StoreOrder(link, columns);
    StartInstrument(link, u"1730"_s, u"E411"_s);
    SendAcked(link, kQuery);
    EXPECT_EQ(Received(link, 1), "<ENQ>");
}

}  // namespace

// A frame is what one read brings; the edit strips the first and the last character of each
// piece, so a record cut by a frame's end keeps the frame's tail, and the next frame's number
// stays in front of its first line, which is skipped. The O record's date is its field 6,
// empty in these captures; a result's own date replaces it.
TEST(Cobas1730, TheCobasCapturesAreDelivered) {
    struct Case {
        const char* capture;
        QString head;
        QStringList items;
    };
    const QString alarm = u"異常（データアラーム 23・26・27 以外）"_s;
    const Case cases[] = {
        // The value of a record cut by the ETB keeps the ETB and the checksum; the date of a
        // result carries to the results after it.
        {"cobas6000-batch-result.bin",
         u"0,S3854156A,1730,E411,000000,"_s,
         {u",,286//not,286//not,,,,,-1^\x17"
          u"38,,MIN,,,"_s,
          u"20230521,115659,111//not,111//not,,,,,-1^0.188,COI,MIN,,,"_s,
          u"20230521,115535,515//not,515//not,,,,,-1^0.493,COI,MIN,,,"_s,
          u"20230521,115535,149//not,149//not,,,,,-1^0.054,COI,MIN,,,"_s}},
        // One frame of 619 characters; the sample number is taken as it came.
        {"cobas-c311-result-long-frame.bin",
         u",,0,11625CL-PL-24-0370         1004,1730,E411,R1,"_s,
         {u"685/,685/,,,,,22.4,U/l,MIN,,,"_s + alarm, u"687/,687/,,,,,15.0,U/l,MIN,,,"_s,
          u"712/,712/,L,,,,4.1,umol/l,MIN,,,"_s, u"158/,158/,,,,,301,U/l,MIN,,,"_s,
          u"735/,735/,,,,,1.6,umol/l,MIN,,,"_s, u"717/,717/,,,,,5.85,mmol/l,MIN,,,"_s,
          u"690/,690/,,,,,34,umol/l,MIN,,,"_s + alarm}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.capture);
        LinkProcess link;
        StartInstrument(link, u"1730"_s, u"E411"_s);
        SendAcked(link, Capture(c.capture));
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_EQ(Drained(link, 300ms), "");
        EXPECT_EQ(link.close(), 0);
        const QStringList records = DeliveredRecords(link);
        QStringList items;
        for (const QString& record : records) {
            EXPECT_TRUE(record.contains(c.head)) << record.toStdString();
            items.append(QString(record).remove(c.head));
        }
        EXPECT_EQ(items, c.items);
    }
}

// Header, patient, order and terminator, each on the ACK to the one before, then EOT on the ACK
// to the terminator. A refused record is not sent again: ENQ goes out, its ACK brings the next
// record. Without an order: the simulator's immunoassay-1730 script and the lookup tests.
TEST(Cobas1730, AQueryIsAnsweredInFourFramesAndARefusedRecordIsNotSentAgain) {
    LinkProcess link;
    QStringList columns{u"KENSAKIKICD"_s, u"1730"_s, u"KANJYAINFO"_s, u"K0001"_s};
    const std::string tests = Tests(2, columns);
    StartWithOrder(link, columns);
    Exchange(link, "<ACK>", Frame("1H|\\^&||||||||||P||<CR>"));
    Exchange(link, "<ACK>", Frame("2P|1<CR>"));
    Exchange(link, "<ACK>", Frame(OrderRecord(tests)));
    Exchange(link, "<NAK>", "<ENQ>");
    Exchange(link, "<ACK>", Frame("4L|1|F<CR>"));
    Exchange(link, "<ACK>", "<EOT>");
    EXPECT_EQ(link.close(), 0);
    EXPECT_TRUE(link.logMessages().contains(
        u"問合情報送信完了(Edit/ETX) -- 1730-0-0:2025-04-16 09:30:15"_s));
}

// An order record of 240 characters or more goes in two frames; after the second, every ACK
// brings the second frame again and the terminator never goes out, until three refusals end
// the phase (noise counts as a refusal like NAK). Past character 477 the record is lost.
TEST(Cobas1730, ALongOrderRecordTakesTwoFramesAndItsSecondRepeats) {
    for (const int count : {20, 40}) {
        SCOPED_TRACE(count);
        LinkProcess link;
        QStringList columns{u"KENSAKIKICD"_s, u"1730"_s, u"KANJYAINFO"_s, u"K0001"_s};
        const sim::Bytes record = Notation(OrderRecord(Tests(count, columns)));
        ASSERT_GE(record.size(), 240U);
        EXPECT_EQ(record.size() > 477, count == 40);
        StartWithOrder(link, columns);
        Exchange(link, "<ACK>", Frame("1H|\\^&||||||||||P||<CR>"));
        Exchange(link, "<ACK>", Frame("2P|1<CR>"));
        const auto part = [&](std::size_t from, std::size_t to) {
            return sim::Visible(
                sim::Bytes(record.begin() + static_cast<long>(from),
                           record.begin() + static_cast<long>(std::min(to, record.size()))));
        };
        Exchange(link, "<ACK>", Frame(part(0, 237), "<ETB>"));
        const std::string second = Frame("2" + part(237, 477));
        Exchange(link, "<ACK>", second);
        Exchange(link, "<ACK>", second);
        Exchange(link, "noise", "<ENQ>");
        Exchange(link, "<ACK>", second);
        Exchange(link, "<NAK>", "<ENQ>");
        Exchange(link, "<NAK>", "<EOT>");
        EXPECT_EQ(link.close(), 0);
    }
}
