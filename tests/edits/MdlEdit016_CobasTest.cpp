// Result edits 1660 and 1730: the parses and the result lines from literal texts. The real
// cobas captures go through the whole edits in the dialogues' scenarios.

#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "edits/MdlEdit016.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// An O record with the sample number in field 2, a date in field 6 (1730) and in field 22 (1660).
QString Order(const QString& id) {
    return u"O|1|%1|159^0^1|||20240606060606"_s.arg(id) + QString(16, u'|') + u"20220222222222"_s;
}

QString R(const QString& tail) {
    return u"R|1|^^^4207/1|5|U/l|"_s + tail;
}

}  // namespace

// Field 6 by the flag table; a missing field clears both columns, and a flag not in the table
// leaves a new row's columns empty, whatever the row before held.
TEST(ParseCobas, FlagTable) {
    const QString records =
        QStringList{R(u"|L"_s), R(u"|H"_s), R(u"|N"_s), R(u"| LL "_s), R(u"|HH"_s),
                    R(u"|A"_s), R(u"|W"_s), R({}),      R(u"|<"_s)}
            .join(u'\r');
    for (const CobasMessage& m : {ParseMessage1660({records}, {}), ParseMessage1730({records})}) {
        QStringList judged;
        for (const CobasRow& row : m.rows) judged << row.judge + row.alarm;
        EXPECT_EQ(judged.join(u','),
                  u"L,H,,Lパニック値以下かテクニカルレンジ以下,"
                  u"Hパニック値以上かテクニカルレンジ以上,"
                  u"異常（データアラーム 23・26・27 以外）,,,"_s);
    }
}

// 1660 drops leading zeros as text and applies the fixed number; 1730 takes the number as it
// stands. Each reads its own date field.
TEST(ParseCobas, SampleNumberSeqAndDate) {
    QStringList got;
    for (const QString& id :
         {u"000123"_s, u"A-12"_s, u" ^ "_s, u" ^00・12\uF8F0 "_s, u"00012345678901234567890"_s}) {
        const QString text = Order(id) + u"\r"_s + R({});
        got << ParseMessage1660({text}, {}).rows.at(0).sampleId + u"/"_s +
                   ParseMessage1730({text}).rows.at(0).sampleId;
    }
    EXPECT_EQ(got, (QStringList{u"123/000123"_s, u"A-12/A-12"_s, u"0/0"_s, u"12/0012"_s,
                                u"12345678901234567890/00012345678901234567890"_s}));
    const QString text = Order(u"7"_s) + u"\r"_s + R({});
    EXPECT_EQ(ParseMessage1660({text}, {u"0"_s, u"F9"_s}).sampleId, u"F9"_s);
    EXPECT_EQ(ParseMessage1660({text}, {}).rows.at(0).kensaTime, u"222222"_s);
    EXPECT_EQ(ParseMessage1730({text}).rows.at(0).kensaDate, u"20240606"_s);
}

// The query's places sit one "^" part lower in 1730; the last of Q and R records decides.
TEST(ParseCobas, QueryPlacesAndTheLastRecordDecides) {
    const QString q = u"Q|1|^^0000000387^587^0^2^^S1^SC||ALL"_s;
    EXPECT_EQ(ParseMessage1660({q}, {}).query,
              (CobasQuery{u"0000000387"_s, {u"587"_s, u"0"_s, u"2"_s, u"S1"_s, u"SC"_s}}));
    EXPECT_EQ(ParseMessage1730({u"Q|1|^ 387 ^587^0^2^^S1^SC"_s}).query,
              (CobasQuery{u"387"_s, {u"587"_s, u"0"_s, u"2"_s, u"S1"_s, u"SC"_s}}));
    EXPECT_FALSE(ParseMessage1660({q + u"\r"_s + R({})}, {}).query.has_value());
    EXPECT_TRUE(ParseMessage1730({R({}) + u"\r"_s + q}).query.has_value());
}

// 1660 ends at what it can't read in a Q or O record and at a 101st result; 1730 loses the
// results past the 100th.
TEST(ParseCobas, WhatEachEditCannotRead) {
    QStringList results;
    for (int i = 0; i < 100; ++i) results << R({});
    EXPECT_NO_THROW(ParseMessage1660({results.join(u'\r')}, {}));
    results << R({});
    EXPECT_THROW(ParseMessage1660({results.join(u'\r')}, {}), RuntimeError);
    EXPECT_EQ(ParseMessage1730({results.join(u'\r')}).rows.size(), kMaxRowsCobas);
    EXPECT_THROW(ParseMessage1660({u"Q|1|^^0387^587^0^2^^S1"_s}, {}), RuntimeError);
    EXPECT_THROW(ParseMessage1660({u"O|1|42|159|x"_s}, {}), RuntimeError);
    EXPECT_THROW(ParseMessage1660({u"O|1|42"_s + QString(21, u'|')}, {}), RuntimeError);
    EXPECT_EQ(ParseMessage1730({u"O|1|42"_s}).sampleId, u"42"_s);
}

// Judge1 and Judge2 from a field 5 of two "^" parts or more, else neither.
TEST(ParseCobas, JudgesOf1730) {
    QStringList got;
    for (const CobasRow& row :
         ParseMessage1730({u"R|1|^^^1|1|u|1.23^S\rR|2|^^^2|2|u|1.23\rR|3|^^^3|3|u| 4 ^ 5 ^6"_s})
             .rows)
        got << row.judge1 + u"/"_s + row.judge2;
    EXPECT_EQ(got, (QStringList{u"1.23/S"_s, u"/"_s, u"4/5"_s}));
}

// Names by code from the 1660 table with TG's code of its own, from the 1730 table as loaded;
// the value keeps its own shape and gets full-width signs; RunMark stays "0".
TEST(ResultLinesCobas, NamesAndValues) {
    TestSite site;
    Ctx().InstrumentCode = u"1730"_s;
    LoadData1730();
    const EditSettings settings{u"1660"_s, u"COBAS"_s, u"1"_s, {}, {}};
    CobasMessage m;
    m.sampleSeq = u"000159"_s;
    const QStringList values{u"5"_s, u"12.30"_s, u"<0.10"_s, u">5"_s, u"-1.5"_s, u"1^2"_s};
    for (const QString& code : {u"4290"_s, u"4282"_s, u"67"_s, u"130"_s, u"113"_s, u"9999"_s})
        m.rows.push_back({.code = code, .value = values.at(m.rows.size()), .sampleId = u"42"_s});
    QStringList names1660, names1730;
    for (const QString& line : ResultLines1660(m, settings).split(u"\r\n"_s, Qt::SkipEmptyParts)) {
        names1660 << line.section(u',', 8, 8) + u"="_s + line.section(u',', 13, 13);
        EXPECT_TRUE(line.startsWith(u",,0,42,1660,COBAS,000159,"_s)) << line.toStdString();
    }
    for (const QString& line : ResultLines1730(m, settings, ItemTable1730()).split(u"\r\n"_s))
        names1730 << line.section(u',', 8, 8);
    EXPECT_EQ(names1660, (QStringList{u"FERR=5"_s, u"TG-J・協和JSCC値=12.30"_s, u"FERR=＜0.10"_s,
                                      u"TG=＞5"_s, u"113=-1.5"_s, u"9999=1^2"_s}));
    EXPECT_EQ(names1730.at(4), u"AMH"_s);
}

// A piece too short for the cut of nine is a run-time error: the process ends, nothing delivered.
TEST(Edit1660DeathTest, AShortPieceEndsTheProcess) {
    TestSite site;
    Ctx().InstrumentCode = u"1660"_s;
    Ctx().JyusinWKPath = site.path(u"wk"_s);
    Ctx().JyusinDataPath = site.path(u"data"_s);
    site.writeFile(u"c1660/c1660_0001.txt"_s, "\x05\r\n");
    site.writeFile(u"c1660/c1660_0002.txt"_s, "\x06\r\n");
    EXPECT_EXIT(EditResult1660(3), ::testing::ExitedWithCode(1), "");
    EXPECT_FALSE(site.exists(u"data"_s));
}
