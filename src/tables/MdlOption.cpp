#include "tables/MdlOption.h"

#include "common/Logging.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "common/TextFile.h"

#include <QStringList>

#include <cstdint>
#include <iterator>
#include <limits>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Built-in rows for a site without its own file. The test code of the k-th row is the
// instrument code followed by k * 10 in three digits.
struct Option2140Row {
    const char16_t* number;
    const char16_t* name;
};
// HPAb stands before 生食 here, the other way round from the 2140 edit's own table. The
// numbers 87 to 94 are folded by the 2140 order lookup.
constexpr Option2140Row kOption2140[] = {
    {u"1", u"TP"},     {u"2", u"ALB"},    {u"3", u"T-BIL"}, {u"4", u"D-BIL"},  {u"5", u"LDH"},
    {u"6", u"AST"},    {u"7", u"ALT"},    {u"8", u"ALP"},   {u"9", u"LAP"},    {u"10", u"r-GTP"},
    {u"11", u"ChE"},   {u"12", u"ZTT"},   {u"13", u"TTT"},  {u"14", u"T-CHO"}, {u"15", u"TG"},
    {u"16", u"HDL-C"}, {u"17", u"LDL-C"}, {u"18", u"UA"},   {u"19", u"BUN"},   {u"20", u"CRE"},
    {u"21", u"AMY"},   {u"22", u"U-AMY"}, {u"23", u"CPK"},  {u"24", u"Ca"},    {u"25", u"GLU"},
    {u"26", u"SAA"},   {u"27", u"CRP"},   {u"37", u"HPAb"}, {u"46", u"生食"},  {u"87", u"Na"},
    {u"88", u"K"},     {u"89", u"Cl"},    {u"90", u"L"},    {u"91", u"H"},     {u"92", u"I"},
    {u"93", u"A/G"},   {u"94", u"AI"}};

struct Data1730Row {
    const char16_t* name;
    const char16_t* number;
};
// A-HCV II really has the number 99999.
constexpr Data1730Row kData1730[] = {
    {u"TSH", u"1"},       {u"T4", u"2"},           {u"FT4", u"125"},    {u"T3", u"5"},
    {u"FT3", u"124"},     {u"CPEPTID", u"7"},      {u"ACTH", u"8"},     {u"TNT-HSST", u"9"},
    {u"E2", u"137"},      {u"TESTO", u"11"},       {u"PROG", u"138"},   {u"PRL", u"13"},
    {u"LH", u"14"},       {u"FSH", u"15"},         {u"CORT", u"128"},   {u"HCGSTAT", u"17"},
    {u"TNT-HS", u"18"},   {u"CKMBSTAT", u"21"},    {u"CKMB", u"23"},    {u"MYO", u"24"},
    {u"MYOSTAT", u"25"},  {u"PRO-BNP", u"27"},     {u"CEA", u"30"},     {u"AFP", u"31"},
    {u"TPSA", u"32"},     {u"CA15-3", u"33"},      {u"CA125", u"34"},   {u"CA19-9", u"35"},
    {u"CA72-4", u"36"},   {u"CYFRA", u"37"},       {u"FERR", u"38"},    {u"FPSA", u"39"},
    {u"A-HBS", u"41"},    {u"A-HCV", u"102"},      {u"A-HBE", u"43"},   {u"HBEAG", u"44"},
    {u"A-HBC", u"45"},    {u"A-HBCIGM", u"46"},    {u"A-HAV", u"47"},   {u"A-HAVIGM", u"48"},
    {u"PCT", u"51"},      {u"HIVCOM", u"88"},      {u"IL6", u"59"},     {u"B12", u"141"},
    {u"FOL", u"152"},     {u"DIGO", u"62"},        {u"IGE", u"63"},     {u"INSULIN", u"65"},
    {u"OSTEOC", u"66"},   {u"CROSSL", u"67"},      {u"PTH", u"68"},     {u"TG", u"126"},
    {u"A-TG", u"71"},     {u"A-TPO", u"72"},       {u"A-TSHR", u"73"},  {u"HCGB", u"76"},
    {u"NSE", u"77"},      {u"A-CCP", u"81"},       {u"HGH", u"89"},     {u"HBSAG", u"90"},
    {u"PTH 1-84", u"93"}, {u"A-HCV II", u"99999"}, {u"TP1NP", u"19"},   {u"ProGRP", u"112"},
    {u"SCC", u"139"},     {u"hCT", u"105"},        {u"PROG1", u"12"},   {u"SFLT-1", u"83"},
    {u"PLGF", u"82"},     {u"TCL", u"107"},        {u"CSA", u"116"},    {u"SRL", u"118"},
    {u"EVL", u"103"},     {u"HBSAG-QN", u"140"},   {u"A-HBS2", u"117"}, {u"Syphilis", u"136"},
    {u"HTLV", u"142"},    {u"AMH", u"113"}};

static_assert(std::size(kOption2140) == 37);
static_assert(std::size(kData1730) == 78);

QString BuiltInCode(const QString& instrument, qsizetype row) {
    return instrument + PadLeftFixed(QString::number(row * 10), 3, u"0"_s);
}

// The file's lines, decoded from the code page. A file that cannot be opened has no lines.
// A line ends at CR or CR LF; a lone LF stays in the line, as the old line input kept it.
QStringList ReadTableLines(const QString& path) {
    const auto text = ReadAllText(path);
    return text ? SplitLines(*text, LineEnds::CrOrCrLf) : QStringList();
}

// The row number is 16 bits like the counts: an add that would overflow fails and is passed
// over, so a huge file cannot turn the count negative.
void NextRow(std::int16_t& row) {
    if (row < std::numeric_limits<std::int16_t>::max()) ++row;
}

// Fields 0 to columns - 1, trimmed. A field that is not there leaves its cell alone, and a row
// past the bound is dropped by put().
void StoreRow(BoundedTable& table, qsizetype row, const QStringList& fields, qsizetype columns) {
    for (qsizetype column = 0; column < columns; ++column)
        if (const auto field = FieldAt(fields, column)) table.put(row, column, Trim(*field));
}

void StoreField(BoundedArray<QString>& list, qsizetype index, const QStringList& fields,
                qsizetype column) {
    if (const auto field = FieldAt(fields, column)) list.put(index, Trim(*field));
}

// The console gets one more blank than the main log.
void LogText(const QString& text) {
    GLogEdit(u"0"_s, text + u" "_s);
    QString line = text;
    GLogWrite(u"0"_s, line);
}

}  // namespace

QString Option2140Path() {
    return Ctx().AppPath + u"\\KV_OPTION2140.DAT"_s;
}

QString KensaKomoku2990Path() {
    return Ctx().AppPath + u"\\"_s + u"KV_KENSAKOMOKU2990.DAT"_s;
}

QString Data1730Path() {
    return Ctx().AppPath + u"\\KV_DATA1730.DAT"_s;
}

void LoadOption2140() {
    RunContext& ctx = Ctx();
    ctx.OptionTable2140.clear();
    ctx.OptionCount2140 = 0;

    // A site file replaces the built-in rows entirely; they are never merged.
    if (!FileExists(Option2140Path())) {
        qsizetype row = 0;
        for (const Option2140Row& item : kOption2140) {
            ++row;
            ctx.OptionTable2140.put(row, 0, QString::fromUtf16(item.number));
            ctx.OptionTable2140.put(row, 1, QString::fromUtf16(item.name));
            ctx.OptionTable2140.put(row, 2, BuiltInCode(u"2140"_s, row));
        }
        ctx.OptionCount2140 = static_cast<std::int16_t>(row);
        return;
    }

    std::int16_t row = 0;
    for (const QString& line : ReadTableLines(Option2140Path())) {
        NextRow(row);
        StoreRow(ctx.OptionTable2140, row, Split(line, u","_s), 3);
    }
    ctx.OptionCount2140 = row;
}

void LoadKensaKomoku2990() {
    RunContext& ctx = Ctx();
    if (!FileExists(KensaKomoku2990Path())) {
        ctx.KensaKomokuTable2990.clear();
        ctx.KensaKomokuCount2990 = 0;
        LogText(u"検査項目データなし -- "_s);
        return;
    }

    ctx.KensaKomokuCount2990 = 0;
    std::int16_t row = 0;
    for (const QString& line : ReadTableLines(KensaKomoku2990Path())) {
        // Judged on the raw line: a blank in front makes it a data row.
        if (line.startsWith(u'\'')) continue;
        NextRow(row);
        StoreRow(ctx.KensaKomokuTable2990, row, Split(line, u","_s), 4);
    }
    ctx.KensaKomokuCount2990 = row;
    LogText(u"検査項目データ受信 -- "_s + QString::number(row) + u" "_s);
}

void LoadData1730() {
    RunContext& ctx = Ctx();
    if (!FileExists(Data1730Path())) {
        qsizetype index = 0;
        for (const Data1730Row& item : kData1730) {
            ++index;
            ctx.ItemNames.put(index, QString::fromUtf16(item.name));
            ctx.ItemCodes.put(index, QString::fromUtf16(item.number));
            ctx.ItemUnits.put(index, BuiltInCode(u"1730"_s, index));
        }
        ctx.ItemCount = static_cast<std::int16_t>(index);
        return;
    }

    ctx.ItemCount = 0;
    std::int16_t row = 0;
    for (const QString& line : ReadTableLines(Data1730Path())) {
        NextRow(row);
        const QStringList fields = Split(line, u","_s);
        StoreField(ctx.ItemNames, row, fields, 0);
        StoreField(ctx.ItemCodes, row, fields, 1);
        StoreField(ctx.ItemUnits, row, fields, 2);
    }
    ctx.ItemCount = row;
}

}  // namespace orbline
