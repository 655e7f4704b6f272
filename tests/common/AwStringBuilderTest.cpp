#include "common/AwStringBuilder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(AwStringBuilder, GrowsByDoublingAndEmptiesByLength) {
    AwStringBuilder b;
    QString expected;
    for (int i = 0; i < 200; ++i) {
        const QString piece = u"%1,"_s.arg(i);
        b.Append(piece);
        expected += piece;
    }
    EXPECT_EQ(b.ToString(), expected);
    EXPECT_EQ(b.Length(), expected.size());
    b.SetLength(0);
    EXPECT_EQ(b.ToString(), QString());
    b.Append(u"new"_s);
    EXPECT_EQ(b.ToString(), u"new"_s);
}

TEST(AwStringBuilder, OneTextLongerThanTheDoubledRoomIsCutButCounted) {
    AwStringBuilder b;
    const QString big(600, u'x');
    b.Append(big);  // room becomes 510: 90 characters are lost
    EXPECT_EQ(b.Length(), 600);
    EXPECT_EQ(b.ToString(), QString(510, u'x'));
    b.Append(u"ab"_s);  // room doubles to 1020; the lost 90 read as blanks
    EXPECT_EQ(b.ToString(), QString(510, u'x') + QString(90, u' ') + u"ab"_s);
}
