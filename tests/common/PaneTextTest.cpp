#include "common/Form.h"
#include "common/FormLists.h"
#include "common/PaneText.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// The form as the start command leaves it: HiddenChar is the character of code 128.
void PaneForm() {
    Form().HiddenChar = QString(QChar(0x80));
    BuildCodeTables();
}

QByteArray Counting(int n) {
    QByteArray bytes;
    for (int i = 0; i < n; ++i) bytes.append(static_cast<char>(i));
    return bytes;
}

}  // namespace

TEST(FormatBinary, EachModeAndItsLines) {
    TestSite site;
    PaneForm();
    QString sixteen;
    for (int i = 0; i < 16; ++i)
        sixteen += QString::number(i, 16).toUpper().rightJustified(2, u'0') + u' ';
    QString twelve;
    for (int i = 0; i < 12; ++i) twelve += QString::number(i).rightJustified(3, u'0') + u' ';
    const QString hidden = Form().HiddenChar;
    const struct {
        QByteArray bytes;
        qsizetype mode;
        QString text;
    } cases[] = {
        {Counting(17), 0, sixteen + u"\r\n10 "_s},
        {Counting(16), 0, sixteen + u"\r\n"_s},
        {Counting(13), 1, twelve + u"\r\n012 "_s},
        {QByteArray("A\x01\x80\x00z", 5), 2, u"A\u0001"_s + hidden + hidden + u"z"_s},
        // ISO: "C" with its parity bit, "A" without; 0xC1 is no ISO character and shows nothing.
        {QByteArray("\xC3\x41\xC1"), 3, u"CA"_s},
        // EIA: letters come back upper case, 0x80 is LF, 0xFF is no EIA character.
        {QByteArray("\x73\x80\xFF\x61"), 4, u"C\nA"_s},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FormatBinary(c.bytes, GetByteArrayLength(c.bytes), false, c.mode), c.text)
            << c.mode;
    // Only count bytes are shown.
    EXPECT_EQ(FormatBinary(Counting(17), 2, false, 0), u"00 01 "_s);
}

TEST(FormatBinary, TheContinueFlagStartsTheLineFromTheReceiveBuilder) {
    TestSite site;
    PaneForm();
    Form().receiveText.Append(QString(45, u'x'));
    EXPECT_EQ(FormatBinary("AB", 2, true, 0), u"41 \r\n42 "_s);
    EXPECT_EQ(FormatBinary("AB", 2, false, 0), u"41 42 "_s);
}

TEST(FormatBinary, IsCutAtTheBuffer) {
    TestSite site;
    PaneForm();
    const QByteArray many(20000, 'A');
    EXPECT_EQ(FormatBinary(many, GetByteArrayLength(many), false, 0).size(), 51200);
    EXPECT_EQ(FormatBinary(many, GetByteArrayLength(many), false, 2).size(), 20000);
}

// Text typed in a tape mode is stored in that code and shown back as ASCII.
TEST(ConvertToBinary, TapeModesCarryTheTextIntoIsoOrEia) {
    TestSite site;
    PaneForm();
    EXPECT_EQ(ConvertToBinary(u"CA!"_s, 3), QByteArray("\xC3\x41\x21"));
    // A character EIA does not have gives the byte 0; HiddenChar gives no byte.
    EXPECT_EQ(ConvertToBinary(u"Ca!\u0080\n"_s, 4), QByteArray("\x73\x61\x00\x80", 4));
    for (const qsizetype mode : {2, 3, 4}) {
        const QByteArray bytes = ConvertToBinary(u"G01 X-1.5"_s, mode);
        EXPECT_EQ(FormatBinary(bytes, GetByteArrayLength(bytes), false, mode), u"G01 X-1.5"_s);
    }
    const QByteArray lower = ConvertToBinary(u"x+y"_s, 4);
    EXPECT_EQ(FormatBinary(lower, GetByteArrayLength(lower), false, 4), u"X+Y"_s);
}
