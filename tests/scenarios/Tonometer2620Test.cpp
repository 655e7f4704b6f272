// The tonometer against the running process: blocks cut into several reads, one ACK CR after
// each block, one delivered result file, an empty work folder and the main log in order.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline::test;

namespace {

struct Played {
    QStringList records;
    QStringList log;
};

// Plays a print-out block by block, each cut into reads of 7 bytes, and waits for ACK CR after
// each; then closes the process as its parent would.
Played PlayPrintOut(LinkProcess& link, const QString& fixture) {
    Played played;
    const auto blocks = TonometerBlocks(ReadFixture(u"tonometer/"_s + fixture));
    link.line.line.setRate(9600);
    link.line.line.setChunks(7, std::chrono::milliseconds(15));
    for (const QByteArray& block : blocks) {
        EXPECT_TRUE(link.line.line.send(orbline::sim::Bytes(block.begin(), block.end())))
            << link.line.line.error();
        EXPECT_EQ(link.line.line.receive(2, std::chrono::seconds(5)), Notation("<ACK><CR>"));
    }
    EXPECT_TRUE(link.waitForDeliveries(1));
    // Nothing more than one ACK CR per block came back.
    EXPECT_TRUE(link.line.line.drain(std::chrono::milliseconds(200)).empty());
    EXPECT_EQ(link.line.line.record().size(), blocks.size() * 2);

    EXPECT_EQ(link.close(), 0);
    const QStringList files = link.deliveries();
    EXPECT_EQ(files.size(), 1);
    if (!files.isEmpty())
        played.records = link.readDelivery(files.first()).split(u"\r\n"_s, Qt::SkipEmptyParts);
    EXPECT_EQ(link.workFiles(), QStringList());
    played.log = link.logMessages();
    return played;
}

}  // namespace

// Each print-out of tests/fixtures/tonometer through the process. The main log is compared for
// one of each layout: the events in order, with the sample number of the edit in the last.
TEST(Tonometer2620, EachPrintOutBecomesOneResultFileAndTheLogTellsItsDialogue) {
    struct Case {
        QString fixture;
        QString keys;
        QString head;
        QStringList tails;
        int blocksLogged;
    };
    const Case cases[] = {
        {u"default-both-eyes.bin"_s,
         QString(),
         u"20250415,164500,,123"_s,
         {u"2620010,IOP-R,,,,,15.3,mmHg"_s, u"2620020,IOP-L,,,,,16.3,mmHg"_s,
          u"2620030,C.IOP-R,,,,,14.8,mmHg"_s, u"2620040,C.IOP-L,,,,,15.5,mmHg"_s,
          u"2620050,CCT-R,,,,,546,um"_s, u"2620060,CCT-L,,,,,551,um"_s},
         4},
        {u"ft-both-eyes.bin"_s,
         u"FT01Format=1\r\n"_s,
         u"20250416,093000,,123"_s,
         {u"2620010,IOP-R,,,,,15,"_s, u"2620020,IOP-L,,,,,17,"_s},
         2},
        // No date line: today, and no time.
        {u"default-no-date.bin"_s,
         QString(),
         u"20250416,,,A-0042"_s,
         {u"2620010,IOP-R,,,,,12.5,mmHg"_s, u"2620020,IOP-L,,,,,13.0,mmHg"_s},
         0},
        // The rows with empty right values give no record.
        {u"default-left-only.bin"_s,
         QString(),
         u"20250416,100500,,456"_s,
         {u"2620020,IOP-L,,,,,18.5,mmHg"_s, u"2620060,CCT-L,,,,,560,um"_s},
         0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fixture.toStdString());
        LinkProcess link;
        StartInstrument(link, u"2620"_s, u"TOMEY"_s, c.keys);
        const Played played = PlayPrintOut(link, c.fixture);
        QStringList records;
        for (const QString& tail : c.tails)
            records.append(c.head + u",2620,TOMEY,000000,"_s + tail + u",MIN,,,"_s);
        EXPECT_EQ(played.records, records);
        // One block file per block, control characters and all. Their numbers count every read
        // that ended in CR, so after the first they jump where a read ended inside a block.
        const auto blocks = TonometerBlocks(ReadFixture(u"tonometer/"_s + c.fixture));
        EXPECT_EQ(QDir(link.native(u"c2620"_s)).entryList(QDir::Files).size(), blocks.size());
        QFile first(link.native(u"c2620/c2620_0001.txt"_s));
        EXPECT_TRUE(first.open(QIODevice::ReadOnly));
        EXPECT_EQ(first.readAll(), blocks.front() + "\r\n");
        if (c.blocksLogged == 0) continue;

        QStringList log{u"プログラム開始 -- 2620--"_s + kStamp,
                        u"通信条件(Condition) 1:baud=9600 parity=なし data=8 stop=1:なし:1000"_s,
                        u"受信開始(Wait) -- 2620--"_s + kStamp};
        for (int i = 0; i < c.blocksLogged; ++i) log.append(u"データ受信中 -- 2620"_s + kStamp);
        log << u"受信完了(Edit) -- 2620--"_s + kStamp << u"出力完了(Write) -- 2620-123-"_s + kStamp
            << u"プログラム終了(Query) -- 2620"_s + kStamp
            << u"プログラム終了(kaijyo) -- 2620"_s + kStamp << u"接続終了 -- 2620"_s + kStamp;
        EXPECT_EQ(played.log, log);
    }
}

// The buffer has no bound of its own: a text grows until a CR with ETX or EOT before it ends it,
// however long the line stays without one, and the whole text is one block.
TEST(Tonometer2620, ATextWithoutABlockEndGrowsUntilOneComesAndIsOneBlock) {
    LinkProcess link;
    StartInstrument(link, u"2620"_s, u"TOMEY"_s);
    auto& line = link.line.line;
    line.setRate(115200);
    // A CR with the ETX in the middle of the text is no block end: no reply.
    ASSERT_TRUE(line.send(Notation("  TOMEY<ETX> TONOMETER<CR>")));
    EXPECT_TRUE(line.drain(std::chrono::milliseconds(300)).empty());
    orbline::sim::Bytes noise(20000, 'x');
    ASSERT_TRUE(line.send(noise)) << line.error();
    ASSERT_TRUE(line.send(Notation("<ETX><CR>")));
    EXPECT_EQ(line.receive(2, std::chrono::seconds(5)), Notation("<ACK><CR>"));
    ASSERT_TRUE(line.send(Notation("<EOT><CR>")));
    EXPECT_EQ(line.receive(2, std::chrono::seconds(5)), Notation("<ACK><CR>"));
    EXPECT_TRUE(link.waitForLog(u"出力データなし"_s));
    EXPECT_EQ(link.close(), 0);

    QFile block(link.native(u"c2620/c2620_0002.txt"_s));
    ASSERT_TRUE(block.open(QIODevice::ReadOnly));
    EXPECT_EQ(block.size(), 19 + 20000 + 2 + 2);  // the texts, ETX CR, and the file's CR LF
}
