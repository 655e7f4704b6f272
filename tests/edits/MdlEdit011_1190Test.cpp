// Result edit 1190: the parse and the result lines from literal texts. The scenarios
// (Astm1190Test) run the outer step with a result message and a query.

#include "common/RuntimeError.h"
#include "edits/MdlEdit011.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

// "code,name,judge,value,unit,comment" of each line of the message's records.
QStringList Items(const QStringList& records, const QString& outIp = u"0"_s) {
    const QString lines = ResultLines1190(ParseMessage1190({records.join(u"\r\n"_s)}, {}),
                                          {u"1190"_s, u"XN"_s, u"1"_s, {}, outIp});
    QStringList items;
    for (const QString& line : lines.split(u"\r\n"_s, Qt::SkipEmptyParts))
        items << QStringList{line.section(u',', 7, 9), line.section(u',', 13, 14),
                             line.section(u',', 18)}
                     .join(u',');
    return items;
}

}  // namespace

// The flag text without "N" sets the judge or the comment; the time of the first row stands
// for every line.
TEST(ResultLines1190, FlagTextsAndTheTimeOfTheFirstRow) {
    const QStringList flags{u"H"_s, u"L"_s, u">"_s, u"A"_s, u"W"_s, u"HN"_s, u"HL"_s, u" L "_s};
    QStringList records{u"O|1||12^1^55|^^^^WBC"_s, u"R|1|^^^^RBC^1|2.6|||||||||20240627135407"_s};
    for (const QString& flag : flags) records << u"R|1|^^^^WBC^1|8.130|10*3/uL||"_s + flag;
    QStringList judged;
    for (const QString& item : Items(records).mid(1))
        judged << item.section(u',', 2, 2) + item.section(u',', 5);
    EXPECT_EQ(judged, (QStringList{u"H"_s, u"L"_s, u"直線性保証外"_s, u"解析、ハードエラー"_s,
                                   u"低信頼性"_s, u"H"_s, u""_s, u"L"_s}));

    const QString lines = ResultLines1190(ParseMessage1190({records.join(u"\r"_s)}, {}),
                                          {u"1190"_s, u"XN"_s, u"1"_s, {}, u"0"_s});
    EXPECT_TRUE(lines.startsWith(u"20240627,135407,1,55,1190,XN,000012,1190020,RBC,"_s));
    EXPECT_EQ(lines.count(u"20240627,135407,"_s), flags.size() + 1);
}

// An item that is not measured is dropped with OutIP "0"; with "1" a named flag becomes an item
// of its group, valued by its own name, its unit and flag text dropped.
TEST(ResultLines1190, OutIpForItemsThatAreNotMeasured) {
    const QStringList records{u"R|1|^^^^WBC^1|8.13|10*3/uL||N||F"_s,
                              u"R|2|^^^^Neutrophilia|x|10*3/uL||W||F"_s, u"R|3|^^^^Unknown|40"_s,
                              u"R|4|^^^^PLT_Clumps(S)?|0"_s};
    const QString wbc = u"1190010,WBC,,8.13,10*3/uL,"_s;
    EXPECT_EQ(Items(records), QStringList{wbc});
    EXPECT_EQ(Items(records, u"1"_s), (QStringList{wbc, u"1190270,WBC Abnormal_3,,Neutrophilia,,"_s,
                                                   u"1190590,PLT Suspect_2,,PLT_Clumps(S)?,,"_s}));
    // A number with its point past position 32767 breaks the lines off, here before any line.
    Message1190 broken;
    broken.rows = {{u"WBC"_s, QString(32768, u'1') + u".5"_s, {}, {}, {}}};
    bool lineBuilt = false;
    EXPECT_THROW(ResultLines1190(broken, {}, &lineBuilt), RuntimeError);
    EXPECT_FALSE(lineBuilt);
}

// Only the first O record with a number sets it. "・" and U+F8F0 (the byte A0) are taken out,
// as they come through the code page from the port.
TEST(Parse1190, SampleNumberComesFromTheFirstOrderRecord) {
    EXPECT_EQ(ParseMessage1190({u"O|1||12^1^ 0012B34M・5\uF8F0 ^B|^^^^WBC\rO|2||7^1^999^B|"_s}, {})
                  .sampleId,
              u"0012345"_s);
    EXPECT_EQ(ParseMessage1190({u"O|1||5^1^  ^B|\rO|2||5^1^889|"_s}, {}).sampleId, u"889"_s);
    EXPECT_EQ(ParseMessage1190({u"O|1||5^1^889|\rO|2||5"_s}, {}).sampleId, u"0"_s);
    EXPECT_EQ(ParseMessage1190({u"O|1||5^1^889|"_s}, {u"0"_s, u"F9"_s}).sampleId, u"F9"_s);
}

// The last of Q and R records decides: an R record after a query makes a result message. A
// component of a later Q record overwrites when present, even empty, and only then.
TEST(Parse1190, AQueryAndItsComponents) {
    const Message1190 m = ParseMessage1190({u"H|\\^&\rQ|1|3^2^ 0387 ^B||ALL\rQ|2|9^\rL|1"_s}, {});
    ASSERT_TRUE(m.query.has_value());
    EXPECT_EQ((QStringList{m.query->key, m.query->third, m.query->first, m.query->second}),
              (QStringList{u"0387"_s, u" 0387 "_s, u"9"_s, u""_s}));
    EXPECT_FALSE(ParseMessage1190({u"Q|1|3^2^0387\rR|1|^^^^WBC|1"_s}, {}).query.has_value());
    EXPECT_TRUE(ParseMessage1190({u"R|1|^^^^WBC|1\rQ|1|3^2^0387"_s}, {}).query.has_value());
}

TEST(Parse1190, RowsPastAHundredAreLost) {
    QStringList records;
    for (int i = 1; i <= 102; ++i) records << u"R|%1|^^^^PLT^1|%1"_s.arg(i);
    const Message1190 m = ParseMessage1190({records.join(u"\r"_s)}, {});
    ASSERT_EQ(m.rows.size(), kMaxRows1190);
    EXPECT_EQ(m.rows.back().value, u"100"_s);
}
