#include "app/Launch.h"
#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/RunContext.h"
#include "support/LinkProcess.h"
#include "support/TestSite.h"
#include "tables/MdlOption.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// A table file as the laboratory writes it: code page 932, CR LF.
QByteArray SiteFile(const QStringList& lines) {
    return EncodeAnsi(lines.join(u"\r\n"_s) + u"\r\n"_s);
}

QStringList Row(const BoundedTable& table, qsizetype row, qsizetype columns) {
    QStringList cells;
    for (qsizetype column = 0; column < columns; ++column)
        cells.append(table.get(row, column).value_or(u"<none>"_s));
    return cells;
}

QStringList Item1730(qsizetype index) {
    const RunContext& ctx = Ctx();
    return {ctx.ItemNames.get(index).value_or(u"<none>"_s),
            ctx.ItemCodes.get(index).value_or(u"<none>"_s),
            ctx.ItemUnits.get(index).value_or(u"<none>"_s)};
}

}  // namespace

TEST(Option2140, MissingFileGivesTheBuiltInRowsOnly) {
    TestSite site;
    Ctx().OptionTable2140.put(40, 0, u"stale"_s);
    LoadOption2140();
    const BoundedTable& table = Ctx().OptionTable2140;
    EXPECT_EQ(Ctx().OptionCount2140, 37);
    // HPAb before 生食, the codes "2140" and ten times the row.
    EXPECT_EQ(Row(table, 28, 3), (QStringList{u"37"_s, u"HPAb"_s, u"2140280"_s}));
    EXPECT_EQ(Row(table, 29, 3), (QStringList{u"46"_s, u"生食"_s, u"2140290"_s}));
    EXPECT_EQ(table.get(40, 0), QString());
}

TEST(Option2140, SiteFileRowsAreTakenAsTheyStand) {
    TestSite site;
    site.writeFile(u"KV_OPTION2140.DAT"_s, SiteFile({u" 1 , TP , 2140010 , spare"_s, QString(),
                                                     u"'27,CRP,2140270"_s, u"46,生食"_s,
                                                     // A lone LF does not end a line.
                                                     u"5,LDH,2140050\n6,AST"_s}));
    LoadOption2140();
    const BoundedTable& table = Ctx().OptionTable2140;
    EXPECT_EQ(Ctx().OptionCount2140, 5);
    EXPECT_EQ(Row(table, 1, 4), (QStringList{u"1"_s, u"TP"_s, u"2140010"_s, QString()}));
    EXPECT_EQ(Row(table, 2, 3), (QStringList{QString(), QString(), QString()}));
    // No comments in this file: the quote stays in the key.
    EXPECT_EQ(Row(table, 3, 3), (QStringList{u"'27"_s, u"CRP"_s, u"2140270"_s}));
    EXPECT_EQ(Row(table, 4, 3), (QStringList{u"46"_s, u"生食"_s, QString()}));
    EXPECT_EQ(Row(table, 5, 3), (QStringList{u"5"_s, u"LDH"_s, u"2140050\n6"_s}));
    // No merge with the built-in rows.
    EXPECT_EQ(Row(table, 6, 3), (QStringList{QString(), QString(), QString()}));

    // Present but empty: no rows at all, not the built-in ones.
    site.writeFile(u"KV_OPTION2140.DAT"_s, QByteArray());
    LoadOption2140();
    EXPECT_EQ(Ctx().OptionCount2140, 0);
    EXPECT_EQ(Row(table, 1, 3), (QStringList{QString(), QString(), QString()}));
}

TEST(MasterTables, RowsPastTheBoundLoseTheirFieldsWhileTheCountGrows) {
    TestSite site;
    QStringList lines;
    for (int n = 1; n <= 1002; ++n) lines.append(u"%1,N%1,C%1"_s.arg(n));
    site.writeFile(u"KV_OPTION2140.DAT"_s, SiteFile(lines));
    site.writeFile(u"KV_DATA1730.DAT"_s, SiteFile(lines.mid(0, 502)));

    LoadOption2140();
    EXPECT_EQ(Ctx().OptionCount2140, 1002);
    EXPECT_EQ(Row(Ctx().OptionTable2140, 1000, 3),
              (QStringList{u"1000"_s, u"N1000"_s, u"C1000"_s}));

    LoadData1730();
    EXPECT_EQ(Ctx().ItemCount, 502);
    EXPECT_EQ(Item1730(500), (QStringList{u"500"_s, u"N500"_s, u"C500"_s}));
}

// A missing file clears what was loaded before and logs its absence once; the site file has
// comments and Japanese names.
TEST(KensaKomoku2990, MissingFileOrSiteFileWithCommentsAndJapaneseNames) {
    TestSite site;
    Ctx().InstrumentCode = u"2990"_s;
    Ctx().KensaKomokuTable2990.put(1, 1, u"stale"_s);
    Ctx().KensaKomokuCount2990 = 1;
    const BoundedTable& table = Ctx().KensaKomokuTable2990;
    // Each load adds one line to the console (newest first) and one to the log.
    QString console;
    QString log;
    const auto logs = [&](const QString& line) {
        console.prepend(line + u" \r\n"_s);
        log.append(u"【検査： 2990-0-2025-04-16 09:30:15】"_s + line + u"\r\n"_s);
        EXPECT_EQ(Form().Txt_Log.text(), console);
        EXPECT_EQ(DecodeAnsi(site.readFile(u"Tesvane2990.log"_s)), log);
    };
    LoadKensaKomoku2990();
    EXPECT_EQ(Ctx().KensaKomokuCount2990, 0);
    EXPECT_EQ(table.get(1, 1), QString());
    logs(u"検査項目データなし -- "_s);

    site.writeFile(u"KV_KENSAKOMOKU2990.DAT"_s,
                   test::ReadFixture(u"tables/KV_KENSAKOMOKU2990.DAT"_s));
    LoadKensaKomoku2990();
    // Two comment lines take no row; the blank line (row 3) does.
    EXPECT_EQ(Ctx().KensaKomokuCount2990, 5);
    EXPECT_EQ(Row(table, 1, 4), (QStringList{u"1"_s, u"01"_s, u"総ビリルビン"_s, u"mg/dL"_s}));
    EXPECT_EQ(Row(table, 2, 5), (QStringList{u"1"_s, u"02"_s, u"ｸﾚｱﾁﾆﾝ"_s, u"mg/dL"_s, QString()}));
    // A blank before the quote: a data row.
    EXPECT_EQ(Row(table, 4, 4), (QStringList{u"'1"_s, u"03"_s, u"CA19-9 Ⅱ"_s, u"U/mL"_s}));
    EXPECT_EQ(Row(table, 5, 4), (QStringList{u"2"_s, u"04"_s, u"γ-GTP"_s, QString()}));
    logs(u"検査項目データ受信 -- 5 "_s);
}

TEST(Data1730, BuiltInRowsWhenMissingElseTheFileAlone) {
    TestSite site;
    LoadData1730();
    EXPECT_EQ(Ctx().ItemCount, 78);
    // The number goes into ItemCodes, the built-in code into ItemUnits.
    EXPECT_EQ(Item1730(62), (QStringList{u"A-HCV II"_s, u"99999"_s, u"1730620"_s}));

    site.writeFile(u"KV_DATA1730.DAT"_s,
                   SiteFile({u" TSH , 1 , 1730010 "_s, u"'FT4,125"_s, QString()}));
    LoadData1730();
    EXPECT_EQ(Ctx().ItemCount, 3);
    EXPECT_EQ(Item1730(1), (QStringList{u"TSH"_s, u"1"_s, u"1730010"_s}));
    EXPECT_EQ(Item1730(2).first(), u"'FT4"_s);
}

TEST(Data1730, LoadEventReadsTheTableFor1730Only) {
    {
        TestSite site;
        RunLoadEventStart(u"1730=0=TN="_s + site.path());
        EXPECT_EQ(Ctx().ItemCount, 78);
    }
    TestSite site;
    RunLoadEventStart(u"2140=0=TN="_s + site.path());
    EXPECT_EQ(Ctx().ItemCount, 0);
    EXPECT_EQ(Ctx().OptionCount2140, 0);
}
