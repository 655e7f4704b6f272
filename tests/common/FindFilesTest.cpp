#include "common/FindFiles.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

TEST(Pattern, TheFourRules) {
    struct Case {
        QString name;
        QString pattern;
        bool match;
    };
    const Case cases[] = {
        {u"1650_a.csv"_s, u"1650*.csv"_s, true}, {u"1650.csv"_s, u"1650*.csv"_s, true},
        {u"1660.csv"_s, u"1650*.csv"_s, false},  {u"1650.csvx"_s, u"1650*.csv"_s, false},
        {u"ab.csv"_s, u"a?.csv"_s, true},        {u"a.csv"_s, u"a?.csv"_s, false},
        {u"r7.txt"_s, u"r#.txt"_s, true},        {u"rx.txt"_s, u"r#.txt"_s, false},
        {u"b.txt"_s, u"[a-c].txt"_s, true},      {u"b.txt"_s, u"[!a-c].txt"_s, false},
        {u"*.txt"_s, u"[*].txt"_s, true},        {u"-.txt"_s, u"[-x].txt"_s, true},
        {u"[.txt"_s, u"[.txt"_s, true},          {QString(), u"*"_s, true},
        {u"abc"_s, u"a*b*c*"_s, true},           {u"受付uke.txt"_s, u"*uke.txt"_s, true},
    };
    for (const Case& c : cases)
        EXPECT_EQ(MatchesPattern(c.name, c.pattern), c.match)
            << c.name.toStdString() << " ~ " << c.pattern.toStdString();
}

TEST(FindFilesDeep, OwnFilesFirstThenEachSubfolderCaseNotCounting) {
    TestSite site;
    site.writeFile(u"o/B1650.csv"_s, "x");
    site.writeFile(u"o/a1650.CSV"_s, "x");
    site.writeFile(u"o/1660.csv"_s, "x");
    site.writeFile(u"o/z/1650_9.csv"_s, "x");
    site.writeFile(u"o/a/1650_2.csv"_s, "x");
    site.writeFile(u"o/a/deeper/1650_3.csv"_s, "x");
    const QString root = site.path(u"o"_s);
    EXPECT_EQ(
        FindFilesDeep(root, u"*1650*.CSV"_s),
        (QStringList{root + u"\\a1650.CSV"_s, root + u"\\B1650.csv"_s, root + u"\\a\\1650_2.csv"_s,
                     root + u"\\a\\deeper\\1650_3.csv"_s, root + u"\\z\\1650_9.csv"_s}));
    EXPECT_TRUE(FindFilesDeep(site.path(u"missing"_s), u"*"_s).isEmpty());
}
