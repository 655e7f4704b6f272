#include "common/AnsiCodec.h"
#include "common/Text.h"
#include "orders/OrderFileLines.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace orbline;
using namespace orbline::test;

// Read in pieces as small as one byte, a file gives the lines the whole file gives: a CR LF
// or a code-page pair cut between two pieces is still one line end, one character.
TEST(OrderFileLines, PiecesGiveTheLinesOfTheWholeFile) {
    TestSite site;
    QRandomGenerator random(7);
    const char alphabet[] = {'a', ',', '\r', '\n', '\x82', '\xa0'};
    for (int round = 0; round < 300; ++round) {
        QByteArray bytes;
        const int length = random.bounded(30);
        for (int i = 0; i < length; ++i) bytes += alphabet[random.bounded(6)];
        site.writeFile(u"f.csv"_s, bytes);
        const QStringList whole = SplitLines(DecodeAnsi(bytes), LineEnds::CrLfOrCrOrLf);
        for (const qint64 piece : {1, 2, 3, 64 * 1024}) {
            OrderFileLines file(site.path(u"f.csv"_s), piece);
            QStringList lines;
            while (const auto line = file.next()) lines.append(*line);
            ASSERT_EQ(lines, whole) << bytes.toHex(' ').toStdString() << " in pieces of " << piece;
            EXPECT_TRUE(file.readToEnd());
        }
    }
    OrderFileLines missing(site.path(u"none.csv"_s));
    EXPECT_FALSE(missing.next());
    EXPECT_FALSE(missing.readToEnd());
}
