// The cobas analyser 1660 against the running process: the real cobas captures as results, each
// frame in several reads; a query answered with one message in one frame or two under refusals
// (without an order: the simulator's cobas-1660 script); order files of both folders taken.

#include "support/AstmInstrument.h"

#include "SimScript.h"

#include <gtest/gtest.h>

#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;
namespace sim = orbline::sim;

namespace {

// Each frame in three reads, 60 ms apart, each well past the host's 10 ms wait: the host
// acknowledges a frame once, when its CR LF has come.
void SendInThreeReads(LinkProcess& link, const std::string& transmission) {
    for (const sim::Bytes& piece : sim::CutIntoFrames(Notation(transmission))) {
        const std::size_t third = piece.size() / 3;
        const std::size_t cuts[] = {0, third, 2 * third, piece.size()};
        for (int i = 0; i < 3; ++i) {
            if (cuts[i] == cuts[i + 1]) continue;
            ASSERT_TRUE(link.line.line.send(
                sim::Bytes(piece.begin() + cuts[i], piece.begin() + cuts[i + 1])));
            if (cuts[i + 1] < piece.size()) {
                EXPECT_EQ(Drained(link, 60ms), "") << "inside " << sim::Visible(piece);
            }
        }
        if (piece == Notation("<EOT>")) return;
        EXPECT_EQ(Received(link, 1), "<ACK>") << "after " << sim::Visible(piece);
    }
}

const std::string kHeader =
    "1H|\\^&|||RODEO|||||COBAS^1|TSDWN^REPLY|P|1<CR>P|1|||||||U||||||0^Y<CR>";

// The answer to the e411 query: the identifier right-aligned in 22 characters, the rack and
// position handed back, the tests, the kind of order and the kana name.
std::string Answer(const std::string& tests, const std::string& kind, const std::string& kana) {
    return kHeader + "O|1|            0000000387|587^0^2^^S1^SC|" + tests + "|R||||||A||||" + kind +
           "||||||||||O<CR>C|1|I|" + kana + "^^^^|G<CR>L|1|N<CR>";
}

// Tests 951, 952, ... in the lookup's notation, the last one 891 when asked, and the store's
// columns for them.
std::string Tests(int count, bool with891, QStringList& columns) {
    std::string tests;
    columns << u"KENSACNT"_s << QString::number(count);
    for (int i = 1; i <= count; ++i) {
        const int code = i == count && with891 ? 891 : 950 + i;
        tests += (i == 1 ? "^^^0" : "\\^^^0") + std::to_string(code) + "^";
        columns << u"KENSA"_s + QString::number(i) << QString::number(code);
    }
    return tests;
}

}  // namespace

// The frames are cut inside fields by the instrument's ETB, and the edit reads each frame as
// its own lines: a record cut at a frame's end loses its rest, and the line that carries the
// rest is skipped by its kind letter. The <3.00 value with LL comes out full-width, low and
// with the panic text.
TEST(Cobas1660, TheCobasCapturesAreDeliveredWithEachFrameJoinedOverItsReads) {
    struct Case {
        const char* capture;
        QString head;  // date, time, run mark, sample, code, name and sequence of every record
        QStringList items;
    };
    const QString panic = u"パニック値以下かテクニカルレンジ以下"_s;
    const QString alarm = u"異常（データアラーム 23・26・27 以外）"_s;
    const Case cases[] = {
        {"cobas-e411-result-three-frames.bin",
         u"20190110,163045,0,2327,1660,COBAS,000159,"_s,
         {u"8,8,1.95,,"_s, u"7,T3,,,"_s, u"6,6,132.1,,"_s, u"5,5,-1^0.282,,"_s,
          u"4,FT4,-1^0.707,,"_s, u"3,3,＜3.00,L,"_s + panic, u"1,TSH,,,"_s}},
        // One frame of 619 characters, flags A and L.
        {"cobas-c311-result-long-frame.bin",
         u"20240203,132011,0,11625CL-PL-24-0370         1004,1660,COBAS,R1,"_s,
         {u"685,685,22.4,,"_s + alarm, u"687,687,15.0,,"_s, u"712,712,4.1,L,"_s, u"158,158,301,,"_s,
          u"735,735,1.6,,"_s, u"717,717,5.85,,"_s, u"690,690,34,,"_s + alarm}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.capture);
        LinkProcess link;
        StartInstrument(link, u"1660"_s, u"COBAS"_s);
        SendInThreeReads(link, Capture(c.capture));
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_EQ(Drained(link, 300ms), "");
        EXPECT_EQ(link.close(), 0);
        const QStringList records = DeliveredRecords(link);
        EXPECT_EQ(RecordFields(records, {7, 8, 13, 9, 18}), c.items);
        for (const QString& record : records)
            EXPECT_TRUE(record.startsWith(c.head)) << record.toStdString();
    }
}

// The message goes in one frame below 240 characters; from 240 on in two, the first of 237
// characters with ETB, the second numbered "2" up to character 477, past which the rest is
// lost. Refusals (a NAK, noise) bring ENQ again and the ACK to it the message; the third
// ends the phase with EOT.
TEST(Cobas1660, AQueryIsAnsweredWithOneMessageInOneFrameOrTwo) {
    struct Case {
        const char* name;
        int tests;        // of the stored order
        bool with891;     // an order of test 891 is of kind "4"
        QString kana;     // 8 characters: 239 in all with 9 tests
        int refusals;     // replies other than ACK before the message
        bool noiseFirst;  // the first refusal is noise, not NAK
    };
    const QString kana = u"ﾔﾏﾀﾞ ﾀﾛｳ"_s;
    const Case cases[] = {
        {"two tests", 2, false, kana, 0, false},
        {"239 characters, noise and a NAK", 9, true, kana, 2, true},
        {"240 characters", 9, true, kana + u"ｽ"_s, 0, false},
        {"past 477", 40, true, kana, 0, false},
        {"three refusals", 2, false, kana, 3, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LinkProcess link;
        QStringList columns{u"KENSAKIKICD"_s, u"1660"_s,       u"ORDERCD"_s,
                            u"0000000387"_s,  u"KANJYAKANA"_s, c.kana};
        const std::string tests = Tests(c.tests, c.with891, columns);
        StoreOrder(link, columns);
        const std::string kanaBytes = "<xD4><xCF><xC0><xDE> <xC0><xDB><xB3>";
        const std::string message =
            Answer(tests, c.with891 ? "4" : "1", c.kana == kana ? kanaBytes : kanaBytes + "<xBD>");
        // The detail lines of the one case that sends two frames.
        const bool twoFrames = Notation(message).size() >= 240;
        StartInstrument(link, u"1660"_s, u"COBAS"_s, twoFrames ? u"LogMeisai=1\r\n"_s : QString());
        SendAcked(link, Capture("cobas-e411-query.bin"));
        EXPECT_EQ(Received(link, 1), "<ENQ>");
        for (int i = 1; i <= c.refusals; ++i) {
            const bool last = i == 3;
            Exchange(link, i == 1 && c.noiseFirst ? "xyz" : "<NAK>", last ? "<EOT>" : "<ENQ>");
        }
        if (c.refusals < 3) {
            const sim::Bytes text = Notation(message);
            if (text.size() < 240) {
                Exchange(link, "<ACK>", Frame(message));
            } else {
                const auto at = [&](std::size_t from, std::size_t to) {
                    return sim::Visible(sim::Bytes(text.begin() + static_cast<long>(from),
                                                   text.begin() + static_cast<long>(to)));
                };
                Exchange(link, "<ACK>", Frame(at(0, 237), "<ETB>"));
                Exchange(link, "<ACK>",
                         Frame("2" + at(237, std::min<std::size_t>(477, text.size()))));
            }
            Exchange(link, "<ACK>", "<EOT>");
        }
        EXPECT_EQ(link.close(), 0);
        QStringList details;
        for (const QString& line : link.logMessages())
            if (line.startsWith(u"詳細ログ"_s)) details.append(line.section(u" -- "_s, 0, 0));
        const QStringList piece{u"詳細ログ(001)"_s, u"詳細ログ(002)"_s};
        const QString reply = u"詳細ログ(003)"_s;
        QStringList expected;
        if (twoFrames) {
            for (int i = 0; i < 3; ++i) expected += piece;  // ENQ, the one frame, EOT
            expected +=
                {reply, u"詳細ログ(004)"_s, u"詳細ログ"_s, reply, u"詳細ログ(006)"_s, reply};
        }
        EXPECT_EQ(details, expected);
    }
}

// With OrderPT "4" both order folders are looked into every 1000 idle rounds, each with its
// own count, and the next query is answered from what they brought.
TEST(Cobas1660, OrderFilesOfBothFoldersAreTakenWhileTheDialogueRuns) {
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    CreateOrderStore(link);
    StartInstrument(link, u"1660"_s, u"COBAS"_s, OrderFolderKeys(link));
    DropOrderFile(link, u"orders/1660_a.csv"_s, u"K1"_s, u"1660"_s, {u"Na"_s});
    DropOrderFile(link, u"orders2/1660_b.csv"_s, u"0000000387"_s, u"1660"_s, {u"RWD3"_s});
    for (int i = 0; i < 200 && OrderRowsFor(link, u"0000000387"_s) < 1; ++i) QThread::msleep(100);
    EXPECT_EQ(OrderRowsFor(link, u"K1"_s), 1);
    EXPECT_EQ(OrderRowsFor(link, u"0000000387"_s), 1);
    SendAcked(link, Capture("cobas-e411-query.bin"));
    EXPECT_EQ(Received(link, 1), "<ENQ>");
    Exchange(link, "<ACK>", Frame(Answer("^^^0891^", "4", "")));
    Exchange(link, "<ACK>", "<EOT>");
    EXPECT_EQ(link.close(), 0);
}
