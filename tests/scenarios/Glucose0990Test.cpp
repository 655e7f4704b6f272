// The blood glucose meter 0990 against the running process: every frame answered with the
// accepting or the refusing frame, the refused ones logged with their code, a transmission
// broken off by an idle frame, and the result files of a transmission delivered together.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QThread>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

namespace {

const QString kStamp = u":2025-04-16 09:30:15"_s;
const std::string kAccepted = "<STX><ACK>0CA<ETX>";
const std::string kRefused = "<STX><NAK>0BB<ETX>";

// The meter's checksum: 256 less the byte sum from the kind up to the checksum, two hex digits.
std::string Sum(const std::string& inner) {
    unsigned sum = 0;
    for (const std::uint8_t b : Notation(inner)) sum += b;
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", (256 - sum % 256) % 256);
    return digits;
}

// A frame: STX, kind and body, checksum, ETX.
std::string G(const std::string& inner) {
    return "<STX>" + inner + Sum(inner) + "<ETX>";
}

// A text field padded with DEL to its 16 characters, as the meter sends it.
std::string Padded(const std::string& text) {
    std::string padded = text;
    for (std::size_t i = text.size(); i < 16; ++i) padded += "<x7F>";
    return padded;
}

// A measurement with the comment last, so that its padding keeps the checksum digit out.
std::string Bd(const std::string& pidField, const std::string& value, const std::string& judge,
               const std::string& comment = {}) {
    return G("D1WBD|SNB=0001|" + pidField + "|SID=01|TMP=23|BGD=" + value + "|BGR=0|JDG=" + judge +
             "|BTY=1|DAT=250416|TIM=091500|CMT=" + Padded(comment));
}

std::string Pid(const std::string& id) {
    return "PID=" + Padded(id);
}

const std::string kEnq = G("<ENQ>1");
const std::string kEot = G("<EOT>1");
const std::string kIdle = G("<SYN>1WSY");
const std::string kHeader = G("D1WBH|DAT=250416|TIM=093000|MSN=GM001234|VER=1.02|CNT=3");

// What the main log says between the start of the wait and the end of the process.
QStringList DialogueLog(const LinkProcess& link) {
    QStringList log = link.logMessages();
    const qsizetype from = log.indexOf(u"受信開始(Wait) -- 0990--"_s + kStamp);
    const qsizetype to = log.indexOf(u"プログラム終了(Query) -- 0990"_s + kStamp);
    return from < 0 || to < from ? log : log.mid(from + 1, to - from - 1);
}

// The records of each delivered file, in the order of their serials.
QList<QStringList> DeliveredFiles(const LinkProcess& link) {
    QList<QStringList> files;
    QStringList names = link.deliveries();
    names.sort();
    for (const QString& name : names)
        files.append(link.readDelivery(name).split(u"\r\n"_s, Qt::SkipEmptyParts));
    return files;
}

QString Record(const QString& id, const QString& item, const QString& flag, const QString& value,
               const QString& unit) {
    return u"20250416,091500,0,"_s + id + u",0990,GM,000000,"_s + item + u","_s + flag + u",,,,"_s +
           value + u","_s + unit + u",MIN,,,"_s;
}

void Start(LinkProcess& link) {
    link.timeScale = u"0.1"_s;
    StartInstrument(link, u"0990"_s, u"GM"_s);
}

void Close(LinkProcess& link) {
    link.requestClose();
    EXPECT_EQ(link.finish(), 0);
}

}  // namespace

// A transmission of a header and three measurements: each frame accepted, each measurement a
// file of its own (the comment a second record in it), and one completion line carrying the
// identifier of the last measurement.
TEST(Glucose0990, EachMeasurementOfATransmissionBecomesAFileOfItsOwn) {
    LinkProcess link;
    Start(link);
    for (const std::string& frame :
         {kEnq, kHeader, Bd(Pid("1234567"), " 125", "0", "after meal"),
          Bd("PID=00042           ", "  58", "1"), Bd("RTY=0", ">600", "2", "  "), kEot})
        Exchange(link, frame, kAccepted);
    ASSERT_TRUE(link.waitForDeliveries(3));
    EXPECT_EQ(Drained(link, 300ms), "");
    Close(link);

    const QString glucose = u"0990010,血糖"_s;
    EXPECT_EQ(
        DeliveredFiles(link),
        QList<QStringList>({{Record(u"1234567"_s, glucose, {}, u"125"_s, u"mg/dL"_s),
                             Record(u"1234567"_s, u"0990020,コメント"_s, {}, u"after meal"_s, {})},
                            {Record(u"42"_s, glucose, u"L"_s, u"58"_s, u"mg/dL"_s)},
                            {Record(u"0"_s, glucose, u"H"_s, u"＞600"_s, u"mg/dL"_s)}}));
    EXPECT_EQ(link.workFiles(), QStringList());
    EXPECT_EQ(DialogueLog(link), QStringList({u"データ受信中 -- 0990--"_s + kStamp,
                                              u"出力完了(Write) -- 0990-0-0"_s + kStamp}));
    // Every accepted frame is stored, the ENQ and EOT frames too.
    EXPECT_EQ(QDir(link.native(u"c990"_s)).entryList(QDir::Files).size(), 6);
}

// Every refusal a line can give, each answered with the refusing frame and logged with its code
// (no ETX is no frame at all for the reader, and a single numeric character is a digit, so 110,
// 131 and 132 never come off a line). Refused frames are not stored and leave the count, so the
// transmission around them goes on; an RSD frame is refused without a line.
TEST(Glucose0990, EachRefusedFrameIsAnsweredAndLoggedWithItsCode) {
    struct Case {
        std::string frame;
        int code;  // 0: refused without a log line
    };
    const std::string good = Bd(Pid("77"), "  99", "0");
    std::string badFirstDigit = good;
    badFirstDigit[badFirstDigit.size() - 7] ^= 1;  // the digits stand before "<ETX>"
    std::string badSecondDigit = good;
    badSecondDigit[badSecondDigit.size() - 6] ^= 1;
    // Before the ENQ frame.
    const Case idle[] = {
        {G("D1WBD|PID=1"), 121},     {kEot, 121},           {"zz" + kEnq, 100},
        {G("X1WBD"), 120},           {G("<ENQ>12"), 124},   {G("<ENQ>A"), 130},
        {G("<SYN>1"), 123},          {G("<SYN>1RSY"), 137}, {G("<SYN>1WSX"), 138},
        {"<STX><ENQ>1CB<ETX>", 134},
    };
    // Inside the transmission.
    const Case inside[] = {
        {kEnq, 122},
        {G("D1"), 123},
        {G("D1XBD|PID=1"), 135},
        {G("D1WZZ|PID=1"), 136},
        {G("DxWBD|PID=1"), 130},
        {badFirstDigit, 133},
        {badSecondDigit, 134},
        {G("D1RSD|PID=1"), 0},
    };
    LinkProcess link;
    Start(link);
    QStringList codes;
    const auto refuse = [&](const Case& c) {
        Exchange(link, c.frame, kRefused);
        if (c.code != 0) codes.append(u"受信チェックエラー CD=(%1)0990--"_s.arg(c.code) + kStamp);
    };
    for (const Case& c : idle) refuse(c);
    Exchange(link, kEnq, kAccepted);
    for (const Case& c : inside) refuse(c);
    // A frame in two reads: nothing goes back until its ETX.
    const orbline::sim::Bytes bytes = Notation(good);
    ASSERT_TRUE(link.line.line.send({bytes.begin(), bytes.begin() + 20}));
    EXPECT_EQ(Drained(link, 300ms), "");
    ASSERT_TRUE(link.line.line.send({bytes.begin() + 20, bytes.end()}));
    EXPECT_EQ(Received(link, 6), kAccepted);
    Exchange(link, kEot, kAccepted);
    ASSERT_TRUE(link.waitForDeliveries(1));
    Close(link);

    EXPECT_EQ(DeliveredRecords(link),
              QStringList({Record(u"77"_s, u"0990010,血糖"_s, {}, u"99"_s, u"mg/dL"_s)}));
    EXPECT_EQ(QDir(link.native(u"c990"_s)).entryList(QDir::Files).size(), 3);
    EXPECT_EQ(DialogueLog(link).filter(u"受信チェックエラー"_s), codes);
}

// An idle frame drops the open transmission: its measurement is never delivered, a data frame
// after it is refused as the start of a transmission, and only the next ENQ frame starts one.
// Only the first idle frame of the process is logged. A transmission without measurements
// delivers nothing and still logs its completion.
TEST(Glucose0990, AnIdleFrameDropsATransmissionThatWasBrokenOff) {
    const std::pair<std::string, std::string> exchanges[] = {
        {kEnq, kAccepted},
        {kHeader, kAccepted},
        {kEot, kAccepted},
        {kEnq, kAccepted},
        {Bd(Pid("111"), " 200", "2"), kAccepted},
        {kIdle, kAccepted},
        {Bd(Pid("111"), " 200", "2"), kRefused},
        {kIdle, kAccepted},
        {kEnq, kAccepted},
        {Bd(Pid("222"), " 100", "0"), kAccepted},
        {kEot, kAccepted},
    };
    LinkProcess link;
    Start(link);
    for (const auto& [sent, expected] : exchanges) Exchange(link, sent, expected);
    ASSERT_TRUE(link.waitForDeliveries(1));
    Close(link);

    EXPECT_EQ(DeliveredRecords(link),
              QStringList({Record(u"222"_s, u"0990010,血糖"_s, {}, u"100"_s, u"mg/dL"_s)}));
    EXPECT_EQ(
        DialogueLog(link),
        QStringList(
            {u"データ受信中 -- 0990--"_s + kStamp, u"出力完了(Write) -- 0990-0-0"_s + kStamp,
             u"データ受信中 -- 0990-0-0"_s + kStamp, u"[SYN]データ受信 -- 0990-0-0"_s + kStamp,
             u"受信チェックエラー CD=(121)0990-0-0"_s + kStamp,
             u"データ受信中 -- 0990-0-0"_s + kStamp, u"出力完了(Write) -- 0990-222-0"_s + kStamp}));
}

// Forty measurements: no file reaches the delivery folder before all forty are written, so from
// the first delivery on, the delivered and the waiting work files are never fewer than forty.
TEST(Glucose0990, TheFilesOfATransmissionAreDeliveredOnlyWhenAllAreWritten) {
    constexpr int kCount = 40;
    LinkProcess link;
    Start(link);
    Exchange(link, kEnq, kAccepted);
    for (int i = 1; i <= kCount; ++i)
        Exchange(link, Bd(Pid(std::to_string(i)), " 101", "0"), kAccepted);
    Exchange(link, kEot, kAccepted);
    qsizetype delivered = 0;
    for (int round = 0; round < 20000 && delivered < kCount; ++round) {
        const qsizetype waiting = link.workFiles().size();
        delivered = link.deliveries().size();
        if (delivered > 0) {
            ASSERT_GE(delivered + waiting, kCount) << "round " << round;
        }
        QThread::usleep(200);
    }
    ASSERT_EQ(delivered, kCount);
    Close(link);
    QStringList ids;
    for (const QStringList& records : DeliveredFiles(link))
        ids.append(records.size() == 1 ? records.first().section(u',', 3, 3) : u"?"_s);
    QStringList expected;
    for (int i = 1; i <= kCount; ++i) expected.append(QString::number(i));
    EXPECT_EQ(ids, expected);
}
