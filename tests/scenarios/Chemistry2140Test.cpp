// The chemistry analysers 2140 and 2990 against the running process: polls, messages of one and
// two frames, a frame split over two reads inside the frame wait, bad frames and inquiries, each
// with the one frame that goes back, the delivered records and the log lines.

#include "support/AstmInstrument.h"

#include "common/AnsiCodec.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

const std::string kPositive = "<STX>><ETX>";
const std::string kNegative = "<STX>?<ETX>";
const std::string kPoll = "<STX>><ETX>";

// The frame wait becomes 500 ms: a frame of 100 bytes takes about 100 ms at 9600 baud.
void Start(LinkProcess& link, const QString& code, const QString& extraKeys = QString()) {
    link.timeScale = u"0.5"_s;
    StartInstrument(link, code, u"BM-"_s + code, u"LogMeisai=1\r\n"_s + extraKeys);
}

// The records of every delivered file, in the order of their names.
QStringList AllRecords(const LinkProcess& link) {
    QStringList files = link.deliveries();
    files.sort();
    QStringList records;
    for (const QString& file : files)
        records += link.readDelivery(file).split(u"\r\n"_s, Qt::SkipEmptyParts);
    return records;
}

int Logged(const QStringList& log, const QString& text) {
    return static_cast<int>(log.filter(text).size());
}

}  // namespace

// Polls, a bad frame and two messages, one of two frames with a poll between them and one split
// over two reads that arrive within the wait: each frame gets one reply and each message one file.
TEST(Chemistry2140, PollsMessagesAndABadFrame) {
    LinkProcess link;
    Start(link, u"2140"_s);
    const std::string split =
        ChemistryFrame(':', "00777", {ItemGroup("2", "4.0"), ItemGroup("93", "1.5", '?')});
    const std::pair<std::string, std::string> exchanges[] = {
        {kPoll, kPositive},
        {"ABC<ETX>", kNegative},
        {ChemistryFrame('1', "0000000012345", {ItemGroup("1", "1.20"), ItemGroup("99", "000123")}),
         kPositive},
        {kPoll, kPositive},
        {ChemistryFrame(':', "0000000012345", {ItemGroup("37", "  <LT>0.5", 'Q')}, "0417201130"),
         kPositive},
    };
    for (const auto& [sent, expected] : exchanges) Exchange(link, sent, expected);
    const orbline::sim::Bytes bytes = Notation(split);
    ASSERT_TRUE(link.line.line.send({bytes.begin(), bytes.begin() + 30}));
    QThread::msleep(100);
    ASSERT_TRUE(link.line.line.send({bytes.begin() + 30, bytes.end()}));
    EXPECT_EQ(Received(link, 3), kPositive);
    ASSERT_TRUE(link.waitForDeliveries(2));
    EXPECT_EQ(Drained(link, 600ms), "");
    EXPECT_EQ(link.close(), 0);

    // Every row of a message takes the identifier, date and time of its last frame.
    const QString first = u"20200417,113000,0,12345,2140,BM-2140,000000,"_s;
    const QString second = u"20200416,092500,0,777,2140,BM-2140,000000,"_s;
    EXPECT_EQ(AllRecords(link),
              QStringList({first + u"2140010,TP,,,,,1.20,,MIN,,,"_s,
                           first + u"99未登録,99未登録,,,,,123,,MIN,,,"_s,
                           first + u"2140290,HPAb,,,,,＜0.5,,MIN,,,セルブランク異常"_s,
                           second + u"2140020,ALB,,,,,4.0,,MIN,,,"_s,
                           second + u"2140360,A/G,,,,,1.5,,MIN,,,?"_s}));
    const QStringList log = link.logMessages();
    EXPECT_EQ(Logged(log, u"ANY受信 2140-"_s), 1);
    EXPECT_EQ(Logged(log, u"受信チェックエラー CD=(10) 2140-"_s), 1);
    EXPECT_EQ(Logged(log, u"データ受信中 -- 2140-"_s), 2);
    EXPECT_EQ(Logged(log, u"検査名設定なし -- CD：99 2140-12345-0:"_s), 1);
    EXPECT_EQ(Logged(log, u"出力完了(Write) -- 2140-"_s), 2);
    // One detail line for each of the six reads, the split frame being one of them.
    EXPECT_EQ(Logged(log, u"詳細ログ(001) -- "_s), 6);
    EXPECT_EQ(Logged(log, u"詳細ログ(002) -- "_s), 3);
}

// Inquiries answered from the order store: the echo of positions 2 to 42, " 88", the flags of
// the ordered items, "100000" and the kana name in 30 columns. A name in double-byte characters
// goes out as blanks and keeps its byte length; an identifier without an order, or none at all,
// is refused.
TEST(Chemistry2140, InquiriesAnsweredFromTheOrderStore) {
    LinkProcess link;
    // TP (1), T-BIL (3) and Na, which shares position 87 with K and Cl.
    StoreOrder(link, {u"KENSAKIKICD"_s, u"2140"_s, u"KANJYAINFO"_s, u"A100"_s, u"KANJYAKANA"_s,
                      u"ﾔﾏﾀﾞ"_s, u"KENSACNT"_s, u"3"_s, u"KENSA1"_s, u"2140010"_s, u"KENSA2"_s,
                      u"2140030"_s, u"KENSA3"_s, u"2140300"_s});
    StoreOrder(link, {u"KENSAKIKICD"_s, u"2140"_s, u"KANJYAINFO"_s, u"B200"_s, u"KANJYAKANA"_s,
                      u"ヤマダ"_s, u"KENSACNT"_s, u"1"_s, u"KENSA1"_s, u"2140020"_s});
    Start(link, u"2140"_s);

    const auto echo = [](const std::string& id) {
        const std::string inquiry = ChemistryFrame(';', id, {});
        return inquiry.substr(5, inquiry.size() - 10);
    };
    std::string flagsA(88, '0');
    flagsA[0] = flagsA[2] = flagsA[86] = '1';
    std::string flagsB(88, '0');
    flagsB[1] = '1';
    const std::pair<std::string, std::string> exchanges[] = {
        {ChemistryFrame(';', "A100", {}), "<STX>" + echo("A100") + " 88" + flagsA + "100000" +
                                              "<xD4><xCF><xC0><xDE>" + std::string(26, ' ') +
                                              "<ETX>"},
        {ChemistryFrame(';', "B200", {}),
         "<STX>" + echo("B200") + " 88" + flagsB + "100000" + std::string(33, ' ') + "<ETX>"},
        {ChemistryFrame(';', "C300", {}), kNegative},
        {ChemistryFrame(';', "", {}), kNegative},
    };
    for (const auto& [sent, expected] : exchanges) Exchange(link, sent, expected);
    EXPECT_EQ(Drained(link, 600ms), "");
    EXPECT_EQ(link.close(), 0);

    const QStringList log = link.logMessages();
    EXPECT_EQ(Logged(log, u"オーダデータ受信(SPE) -- 2140-"_s), 4);
    EXPECT_EQ(Logged(log, u"オーダデータ送信(SPE) -- 2140-"_s), 2);
    EXPECT_EQ(Logged(log, u"オーダデータ送信エラー CD=(6) 2140-C300-"_s), 1);
    EXPECT_EQ(Logged(log, u"オーダデータ送信エラー CD=(1) 2140--"_s), 1);
    EXPECT_TRUE(link.deliveries().isEmpty());
}

// The twin without an order exchange: every frame, an inquiry and a bad one too, gets the
// positive reply, and each data frame is logged with its number. Its items are named through
// KV_KENSAKOMOKU2990.DAT, where a comment line takes no row and the first of two rows with one
// number wins; without the file every item is unregistered.
TEST(Chemistry2990, EveryFrameAcknowledgedAndItemsNamedThroughItsTable) {
    const QString table = u"'項目 2990\r\nx,1,TP,g/dL\r\nx,5,LDH\r\nx,5,AST\r\n"_s;
    const std::pair<QString, QStringList> cases[] = {
        {table, {u"2990010,TP"_s, u"2990050,LDH"_s, u"7未登録,7未登録"_s}},
        {QString(), {u"1未登録,1未登録"_s, u"5未登録,5未登録"_s, u"7未登録,7未登録"_s}},
    };
    for (const auto& [file, names] : cases) {
        LinkProcess link;
        if (!file.isEmpty()) {
            QFile dat(link.native(u"KV_KENSAKOMOKU2990.DAT"_s));
            ASSERT_TRUE(dat.open(QIODevice::WriteOnly));
            dat.write(orbline::EncodeAnsi(file));
        }
        Start(link, u"2990"_s);
        const std::pair<std::string, std::string> exchanges[] = {
            {kPoll, kPositive},
            {ChemistryFrame(';', "A100", {}), kPositive},
            {"ABC<ETX>", kPositive},
            {ChemistryFrame('1', "42", {ItemGroup("1", "6.5"), ItemGroup("5", "180")}), kPositive},
            {ChemistryFrame(':', "42", {ItemGroup("7", "0.30")}), kPositive},
        };
        for (const auto& [sent, expected] : exchanges) Exchange(link, sent, expected);
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_EQ(link.close(), 0);

        EXPECT_EQ(RecordFields(DeliveredRecords(link), {3, 7, 8, 13}),
                  QStringList({u"42,"_s + names[0] + u",6.5"_s, u"42,"_s + names[1] + u",180"_s,
                               u"42,"_s + names[2] + u",0.30"_s}));
        const QStringList log = link.logMessages();
        EXPECT_EQ(Logged(log, u"オーダデータ受信(SPE) (未対応)-- 2990-"_s), 1);
        EXPECT_EQ(Logged(log, u"受信チェックエラー CD=(10) 2990-"_s), 1);
        EXPECT_EQ(Logged(log, u"データ受信 -- 1 2990-"_s), 1);
        EXPECT_EQ(Logged(log, u"データ受信 -- 2 2990-"_s), 1);
    }
}
