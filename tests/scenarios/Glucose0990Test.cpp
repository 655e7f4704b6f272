// The blood glucose meter 0990 against the running process, in one session: every frame answered
// with the accepting or the refusing frame, the refused ones logged with their code, the files of
// a transmission delivered together, and a transmission broken off by an idle frame.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QThread>

#include <cstdio>
#include <sstream>

using namespace Qt::StringLiterals;
using namespace orbline::test;
using namespace std::chrono_literals;

namespace {

// STX, the text, 256 less its byte sum in two hex digits, ETX.
std::string G(const std::string& inner) {
    unsigned sum = 0;
    for (const std::uint8_t b : Notation(inner)) sum += b;
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", (256 - sum % 256) % 256);
    return "<STX>" + inner + digits + "<ETX>";
}

std::string Bd(const std::string& pid, const std::string& value, const std::string& judge,
               std::string comment = {}) {
    // Padded with DEL to 16 and last, the comment keeps the checksum digit out.
    for (std::size_t n = comment.size(); n < 16; ++n) comment += "<x7F>";
    return G("D1WBD|SNB=0001|" + pid + "|SID=01|BGD=" + value + "|JDG=" + judge +
             "|DAT=250416|TIM=091500|CMT=" + comment);
}

QString Record(const QString& id, const QString& flag, const QString& value,
               const QString& item = u"0990010,血糖"_s, const QString& unit = u"mg/dL"_s) {
    return u"20250416,091500,0,"_s + id + u",0990,GM,000000,"_s + item + u","_s + flag + u",,,,"_s +
           value + u","_s + unit + u",MIN,,,"_s;
}

}  // namespace

TEST(Glucose0990, RefusalsDeliveryTogetherAndABrokenOffTransmission) {
    const std::string ok = "<STX><ACK>0CA<ETX>", no = "<STX><NAK>0BB<ETX>";
    const std::string enq = G("<ENQ>1"), eot = G("<EOT>1"), idle = G("<SYN>1WSY");
    const std::string header = G("D1WBH|DAT=250416|TIM=093000|MSN=GM001234|CNT=3");
    // Code and frame text, one row for each refusal a line can give, before the ENQ frame (-1:
    // accepted) and inside; 0: refused without a line. Texts with an STX are sent as they stand.
    // No ETX is no frame for the reader; one numeric character is a digit: no 110, 131 or 132.
    std::istringstream rows(
        "121:D1WBD 100:z<STX><ENQ>1CA<ETX> 120:X1WBD 124:<ENQ>12 137:<SYN>1RSY 138:<SYN>1WSX "
        "-1:<ENQ>1 122:<ENQ>1 123:D1 135:D1XBD 136:D1WZZ 130:DxWBD 133:<STX>D1WBDBE<ETX> "
        "134:<STX>D1WBDAF<ETX> 0:D1RSD");
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StartInstrument(link, u"0990"_s, u"GM"_s);
    QStringList log;
    const QString stamp = u":2025-04-16 09:30:15"_s;
    for (std::string row; rows >> row;) {
        const int code = std::stoi(row);
        const std::string text = row.substr(row.find(':') + 1);
        Exchange(link, text.find("<STX>") != std::string::npos ? text : G(text),
                 code < 0 ? ok : no);
        if (code < 0) log.append(u"データ受信中 -- 0990--"_s + stamp);
        if (code > 0) log.append(u"受信チェックエラー CD=(%1)0990--"_s.arg(code) + stamp);
    }
    // A frame in two reads is answered at its ETX; each measurement is a file of its own.
    const std::string first = Bd("PID=1234567890123456789", " 125", "0", "meal");  // 16 taken
    ASSERT_TRUE(link.line.line.send(Notation(first.substr(0, 20))));
    EXPECT_EQ(Drained(link, 300ms), "");
    Exchange(link, first.substr(20), ok);
    Exchange(link, header, ok);
    QList<QStringList> expected{
        {Record(u"1234567890123456"_s, {}, u"125"_s),
         Record(u"1234567890123456"_s, {}, u"meal"_s, u"0990020,コメント"_s, {})}};
    for (int i = 2; i <= 12; ++i) {
        Exchange(link, Bd("PID=000" + std::to_string(i) + "     ", "  58", "1", "  "), ok);
        expected.append({Record(QString::number(i), u"L"_s, u"58"_s)});
    }
    Exchange(link, Bd("RTY=0", ">600", "2"), ok);
    expected.append({Record(u"0"_s, u"H"_s, u"＞600"_s)});
    Exchange(link, eot, ok);
    // No file is delivered before all are written: from the first on, none is missing.
    qsizetype delivered = 0;
    for (int round = 0; round < 20000 && delivered < expected.size(); ++round) {
        const qsizetype waiting = link.workFiles().size();
        delivered = link.deliveries().size();
        ASSERT_TRUE(delivered == 0 || delivered + waiting >= expected.size()) << round;
        QThread::usleep(200);
    }
    // An empty transmission; then one broken off by an idle frame, after which a data frame has
    // no ENQ before it; only the first idle frame of the process is logged.
    for (const std::string& frame : {enq, header, eot, enq, Bd("PID=111", " 200", "2"), idle})
        Exchange(link, frame, ok);
    Exchange(link, Bd("PID=111", " 200", "2"), no);
    for (const std::string& frame : {idle, enq, Bd("PID=222", " 100", "0"), eot})
        Exchange(link, frame, ok);
    expected.append({Record(u"222"_s, {}, u"100"_s)});
    ASSERT_TRUE(link.waitForDeliveries(static_cast<int>(expected.size())));
    EXPECT_EQ(link.close(), 0);

    QList<QStringList> files;
    QStringList names = link.deliveries();
    names.sort();
    for (const QString& name : names)
        files.append(link.readDelivery(name).split(u"\r\n"_s, Qt::SkipEmptyParts));
    EXPECT_EQ(files, expected);
    EXPECT_EQ(link.workFiles(), QStringList());
    EXPECT_EQ(QDir(link.native(u"c990"_s)).entryList(QDir::Files).size(), 3);
    for (const char* line : {"出力完了(Write) -- 0990-0-0", "データ受信中 -- 0990-0-0",
                             "出力完了(Write) -- 0990-0-0", "データ受信中 -- 0990-0-0",
                             "[SYN]データ受信 -- 0990-0-0", "受信チェックエラー CD=(121)0990-0-0",
                             "データ受信中 -- 0990-0-0", "出力完了(Write) -- 0990-222-0"})
        log.append(QString::fromUtf8(line) + stamp);
    const QStringList all = link.logMessages();
    const qsizetype from = all.indexOf(u"受信開始(Wait) -- 0990--"_s + stamp);
    const qsizetype to = all.indexOf(u"プログラム終了(Query) -- 0990"_s + stamp);
    EXPECT_EQ(all.mid(from + 1, to - from - 1), log);
}
