// The glycohaemoglobin analyser 0980 against the running process: a result message, order
// queries with and without an order, the order phase under refusals and noise, and an order
// file taken by the poll while the dialogue runs.

#include "orders/OrderTestSupport.h"
#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

const std::string kHeader = Frame("1H|\\^&|||HLC-723G11^01.02|||||||||1.0<CR>");

// A query for the key, as the instrument sends it when a tube is loaded.
std::string Query(const std::string& key) {
    return "<ENQ>" + kHeader + Frame("2Q|1|" + key + "^01^005||||20250416093000<CR>") +
           Frame("3L|1|N<CR>") + "<EOT>";
}

// The host's answer frames, numbered from `first`, each ending in ETB but the terminator.
std::string HeaderFrame(int no, bool repeated) {
    return Frame(std::to_string(no) + "H|$^&|||HLC-723G11^01.02" + (repeated ? " " : "") +
                     "|||||||||1.0<CR>",
                 "<ETB>");
}
std::string PatientFrame(int no) {
    return Frame(std::to_string(no) + "P|1<CR>", "<ETB>");
}
std::string OrderFrame(int no, const std::string& key, const std::string& test) {
    return Frame(std::to_string(no) + "O|1|" + key + "^01^005||^^^" + test + "|R||||||||||<CR>",
                 "<ETB>");
}
std::string TerminatorFrame(int no) {
    return Frame(std::to_string(no) + "L|1|N<CR>");
}

}  // namespace

TEST(Astm0980, AResultMessageInSeveralReadsBecomesOneResultFile) {
    LinkProcess link;
    StartInstrument(link, u"0980"_s, u"HLC"_s);
    SendAcked(link, "<ENQ>" + kHeader +
                        Frame("2P|1<CR>O|1|001234^Ward3|7||||||||||||||||||2025041608150000<CR>") +
                        Frame("3R|1|^^^HbA1cValue|5.60|%|||||||202504160925<CR>"
                              "R|2|^^^ADCount1|1234|<CR>") +
                        Frame("4R|3|^^^NGSP|5.6|%<CR>R|4|^^^GLU|<LT>3.0|mg/dL<CR>") +
                        Frame("5L|1|N<CR>") + "<EOT>");
    ASSERT_TRUE(link.waitForDeliveries(1));
    // The EOT piece gets no answer, and a message without a query takes no line.
    EXPECT_EQ(Drained(link, 300ms), "");
    EXPECT_EQ(link.close(), 0);

    const QString head = u"20250416,092500,,1234,0980,HLC,000007,"_s;
    const QString tail = u",MIN,,,,,,,,,,Ward3"_s;
    EXPECT_EQ(DeliveredRecords(link),
              QStringList({head + u"0980010,HbA1c,,,,,5.60,%"_s + tail,
                           head + u"0980160,NGSP,,,,,5.6,%"_s + tail,
                           head + u"0980040,GLU,,,,,＜3.0,mg/dL"_s + tail}));
    // The delivery name burns one serial more than the work file's.
    EXPECT_TRUE(link.deliveries().value(0).endsWith(u"00003~KVB.csv"_s));
    const QStringList log = link.logMessages();
    EXPECT_TRUE(log.contains(u"データ受信中 -- 0980"_s + kStamp));
    EXPECT_TRUE(log.contains(u"出力完了(Write) -- 0980-1234-"_s + kStamp));
    EXPECT_EQ(link.workFiles(), QStringList());
}

namespace {

// The answer to a query: ENQ after the EOT, then header, patient, order and terminator on
// each ACK, and EOT after the last ACK. The order's own test comes back, here a code the
// instrument's table does not name; a key without an order gets "HbA1c" (the tests below).
void ExpectQueryAnsweredFromItsOrder(LinkProcess& link) {
    StartInstrument(link, u"0980"_s, u"HLC"_s);
    SendAcked(link, Query("K-0001"));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", HeaderFrame(1, false));
    Exchange(link, "<ACK>", PatientFrame(2));
    Exchange(link, "<ACK>", OrderFrame(3, "K-0001", ""));
    Exchange(link, "<ACK>", TerminatorFrame(4));
    Exchange(link, "<ACK>", "<EOT>");
    // The completion line follows the EOT; a close request could overtake it.
    EXPECT_TRUE(link.waitForLog(u"問合情報送信完了"_s));
    EXPECT_EQ(link.close(), 0);
    const QStringList log = link.logMessages();
    EXPECT_TRUE(log.contains(u"データデータ要求送信中 -- 0980"_s + kStamp));
    EXPECT_TRUE(log.contains(u"問合情報送信完了(Edit/ETB) -- 0980-0-0"_s + kStamp))
        << log.join(u'\n').toStdString();
    EXPECT_EQ(link.deliveries(), QStringList());
}

}  // namespace

TEST(Astm0980, AQueryIsAnsweredWithTheTestOfItsOrder) {
    LinkProcess link;
    // Stored without the "-": the lookup takes it out of the key.
    StoreOrder(link, {u"KENSAKIKICD"_s, u"0980"_s, u"ORDERCD"_s, u"K0001"_s, u"KENSACNT"_s, u"1"_s,
                      u"KENSA1"_s, u"0980020"_s});
    ExpectQueryAnsweredFromItsOrder(link);
}

// The same with DbConnect the address of a database on the test server.
TEST(Astm0980, AQueryIsAnsweredFromAnOrderOnTheServer) {
    if (TestServerAddress().isEmpty()) GTEST_SKIP() << "no test server: KV_ORBLINE_TEST_PG";
    OrderSite store(nullptr, true);
    store.order(u"20250416"_s, u"1"_s, u"0980"_s, u"K0001"_s, {u"0980020"_s});
    LinkProcess link;
    link.userKeys = u"DbConnect="_s + store.serverAddress() + u"\r\n"_s;
    ExpectQueryAnsweredFromItsOrder(link);
}

// Refusals count over the whole phase. A NAK to the ENQ sends nothing; one to the header
// repeats it with the blank behind the sender; to the patient and the order record they are
// sent again; the third refusal, here noise, ends the phase with EOT and no completion line,
// and the next ENQ is a normal reception again.
TEST(Astm0980, RefusalsRepeatTheFrameAndTheThirdEndsThePhase) {
    LinkProcess link;
    CreateOrderStore(link);
    StartInstrument(link, u"0980"_s, u"HLC"_s);
    SendAcked(link, Query("K-0003"));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<NAK>", "");
    Exchange(link, "<ACK>", HeaderFrame(1, false));
    Exchange(link, "<NAK>", HeaderFrame(2, true));
    Exchange(link, "<ACK>", PatientFrame(3));
    Exchange(link, "<ACK>", OrderFrame(4, "K-0003", "HbA1c"));
    Exchange(link, "<ACK>", TerminatorFrame(5));
    Exchange(link, "<ACK>", "<EOT>");

    SendAcked(link, Query("K-0004"));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", HeaderFrame(1, false));
    Exchange(link, "<ACK>", PatientFrame(2));
    Exchange(link, "<NAK>", PatientFrame(3));
    Exchange(link, "<ACK>", OrderFrame(4, "K-0004", "HbA1c"));
    Exchange(link, "<NAK>", OrderFrame(5, "K-0004", "HbA1c"));
    Exchange(link, "<ACK>", TerminatorFrame(6));
    Exchange(link, "x7#q", "<EOT>");

    Exchange(link, "<ENQ>", "<ACK>");
    EXPECT_EQ(link.close(), 0);
    const QStringList log = link.logMessages();
    EXPECT_EQ(log.filter(u"問合情報送信完了"_s).size(), 1);
    EXPECT_EQ(log.filter(u"データデータ要求送信中"_s).size(), 2);
}

// A key long enough to need two frames for the order record: a NAK after the first part sends
// nothing, and its ACK then brings the second part with the next frame number.
TEST(Astm0980, ALongOrderRecordGoesInTwoFramesAndARefusedFirstPartWaits) {
    LinkProcess link;
    CreateOrderStore(link);
    StartInstrument(link, u"0980"_s, u"HLC"_s);
    const std::string key(230, 'K');
    SendAcked(link, Query(key));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", HeaderFrame(1, false));
    Exchange(link, "<ACK>", PatientFrame(2));
    const std::string record = "3O|1|" + key + "^01^005||^^^HbA1c|R||||||||||<CR>";
    // The first frame carries 235 characters: "3O|1|" and the key.
    Exchange(link, "<ACK>", Frame(record.substr(0, 235), "<ETB>"));
    Exchange(link, "<NAK>", "");
    Exchange(link, "<ACK>", Frame("4" + record.substr(235)));
    Exchange(link, "<ACK>", TerminatorFrame(5));
    Exchange(link, "<ACK>", "<EOT>");
    EXPECT_EQ(link.close(), 0);
}

// With OrderPT "4" the dialogue looks into OrderPath every 1000 idle rounds; an order file
// dropped while it runs is stored and deleted, and the next query is answered from it.
TEST(Astm0980, AnOrderFileDroppedWhileTheDialogueRunsIsTaken) {
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StoreOrder(link, {u"ORDERCD"_s, u"unrelated"_s});
    StartInstrument(link, u"0980"_s, u"HLC"_s, OrderFolderKeys(link));
    DropOrderFile(link, u"orders/0980_0416.csv"_s, u"K0005"_s, u"0980"_s, {u"HbA1c"_s});

    ASSERT_TRUE(link.waitForLog(u"オーダデータ取得完了(Edit)"_s, 20000));
    EXPECT_FALSE(QFile::exists(link.native(u"orders/0980_0416.csv"_s)));
    EXPECT_EQ(OrderRowsFor(link, u"K0005"_s), 1);
    SendAcked(link, Query("K0005"));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", HeaderFrame(1, false));
    Exchange(link, "<ACK>", PatientFrame(2));
    Exchange(link, "<ACK>", OrderFrame(3, "K0005", "HbA1c"));
    EXPECT_EQ(link.close(), 0);
}
