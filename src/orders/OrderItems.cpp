#include "orders/OrderItems.h"

#include "common/RunContext.h"
#include "tables/ItemTables.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

const std::vector<OrderItem>& Rows1650() {
    static const std::vector<OrderItem> rows = {
        {u"PT"_s, u"040"_s},   {u"APTT"_s, u"050"_s}, {u"Fbg"_s, u"060"_s},  {u"TTO"_s, u"080"_s},
        {u"HpT"_s, u"090"_s},  {u"Ⅱ"_s, u"120"_s},    {u"Ⅴ"_s, u"150"_s},    {u"Ⅶ"_s, u"170"_s},
        {u"Ⅷ"_s, u"180"_s},    {u"Ⅸ"_s, u"190"_s},    {u"Ⅹ"_s, u"200"_s},    {u"ⅩⅠ"_s, u"210"_s},
        {u"ⅩⅡ"_s, u"220"_s},   {u"AT3"_s, u"300"_s},  {u"APL"_s, u"310"_s},  {u"Plg"_s, u"320"_s},
        {u"BCPC"_s, u"330"_s}, {u"+Fbg"_s, u"500"_s}, {u"-Fbg"_s, u"520"_s}, {u"SFDP"_s, u"600"_s},
        {u"DD"_s, u"610"_s},   {u"PFDP"_s, u"620"_s}, {u"+DD"_s, u"700"_s},  {u"+SFD"_s, u"710"_s},
        {u"+PFD"_s, u"720"_s},
    };
    return rows;
}

const std::vector<OrderItem>& Rows1190() {
    static const std::vector<OrderItem> rows = [] {
        std::vector<OrderItem> all;
        for (const MeasuredItem1190& item : MeasuredItems1190())
            all.push_back({item.name.toString(), item.code.toString()});
        return all;
    }();
    return rows;
}

// HbA1c, the one test of 0980 an order asks for, with the code InstrumentCode + its suffix.
OrderItem HbA1c(const QString& instrumentCode) {
    const Item0980& item = Items0980().front();
    return {item.name.toString(), instrumentCode + item.suffix.toString()};
}

// 1660 and 1730. FERR stands twice (rows 34 and 188) and TG shares 4282 with TG-J: the first
// row wins, so 67 is never given out. That is how the table has always behaved.
const std::vector<OrderItem>& Rows1660() {
    static const std::vector<OrderItem> rows = {
        {u"9NACL"_s, u"951"_s},
        {u"CKNAC"_s, u"4207"_s},
        {u"A1CD2"_s, u"952"_s},
        {u"Cl"_s, u"991"_s},
        {u"A1-H2"_s, u"859"_s},
        {u"CO2-L"_s, u"3514"_s},
        {u"A1-H3"_s, u"851"_s},
        {u"CREJ2"_s, u"4233"_s},
        {u"A1-W2"_s, u"889"_s},
        {u"CREJ2U"_s, u"4286"_s},
        {u"A1-W3"_s, u"881"_s},
        {u"CREK"_s, u"4213"_s},
        {u"AAGP2"_s, u"3501"_s},
        {u"CREK3"_s, u"4285"_s},
        {u"ACETA"_s, u"4239"_s},
        {u"CRPLX"_s, u"4281"_s},
        {u"ALB2"_s, u"4211"_s},
        {u"CRPNX"_s, u"4291"_s},
        {u"ALBCP"_s, u"4297"_s},
        {u"CYSC"_s, u"4296"_s},
        {u"ALBU2"_s, u"4235"_s},
        {u"DBILV"_s, u"4214"_s},
        {u"ALPJ2"_s, u"4200"_s},
        {u"D-DI"_s, u"4295"_s},
        {u"ALTL"_s, u"4201"_s},
        {u"D-DI2"_s, u"3507"_s},
        {u"AMIK2"_s, u"4252"_s},
        {u"DIG"_s, u"4241"_s},
        {u"AMYL2"_s, u"4202"_s},
        {u"DIGIT"_s, u"4242"_s},
        {u"AMY-P"_s, u"4203"_s},
        {u"ETOH2"_s, u"4238"_s},
        {u"ASOX1"_s, u"4222"_s},
        {u"FERR"_s, u"4290"_s},
        {u"ASTL"_s, u"4204"_s},
        {u"FMC"_s, u"4300"_s},
        {u"AT"_s, u"4293"_s},
        {u"GA"_s, u"3519"_s},
        {u"BMGXS・血清"_s, u"4250"_s},
        {u"GALB"_s, u"3524"_s},
        {u"BMGXU・尿"_s, u"4251"_s},
        {u"GENT2"_s, u"4245"_s},
        {u"C3X1"_s, u"4227"_s},
        {u"GGTI2"_s, u"4229"_s},
        {u"C4X1"_s, u"4228"_s},
        {u"GLUC2"_s, u"4215"_s},
        {u"CA"_s, u"4212"_s},
        {u"GLUC3"_s, u"3518"_s},
        {u"CA_KN"_s, u"4278"_s},
        {u"H"_s, u"993"_s},
        {u"CARB2"_s, u"4244"_s},
        {u"HAPT2"_s, u"3502"_s},
        {u"CHE2"_s, u"4232"_s},
        {u"HB-H2"_s, u"849"_s},
        {u"CHEJ"_s, u"3522"_s},
        {u"HB-H3"_s, u"841"_s},
        {u"CHO・積水"_s, u"4267"_s},
        {u"HB-W2"_s, u"879"_s},
        {u"CKMB"_s, u"4205"_s},
        {u"HB-W3"_s, u"871"_s},
        {u"HDL-C・協和"_s, u"4275"_s},
        {u"RFX1"_s, u"4262"_s},
        {u"HDL-C・積水"_s, u"4269"_s},
        {u"RHD3"_s, u"861"_s},
        {u"HPFDP"_s, u"4294"_s},
        {u"RHI2"_s, u"869"_s},
        {u"I"_s, u"994"_s},
        {u"RPR"_s, u"4265"_s},
        {u"IgAX1"_s, u"4225"_s},
        {u"RPR_N"_s, u"3530"_s},
        {u"IgGX1"_s, u"4224"_s},
        {u"RWD3"_s, u"891"_s},
        {u"IgMX1"_s, u"4226"_s},
        {u"RWI2"_s, u"899"_s},
        {u"K"_s, u"990"_s},
        {u"SALI"_s, u"3506"_s},
        {u"KL-6"_s, u"3516"_s},
        {u"S-FE"_s, u"4263"_s},
        {u"L"_s, u"992"_s},
        {u"SI2"_s, u"2032"_s},
        {u"LACT2"_s, u"4292"_s},
        {u"SMS"_s, u"948"_s},
        {u"LAP"_s, u"4208"_s},
        {u"SUIBC"_s, u"4264"_s},
        {u"LDH-J"_s, u"4209"_s},
        {u"TBILV"_s, u"4219"_s},
        {u"LDL-C・協和"_s, u"4276"_s},
        {u"TC・協和"_s, u"4274"_s},
        {u"LDL-C・積水"_s, u"4270"_s},
        {u"TG・協和グリセロール値"_s, u"4273"_s},
        {u"LI"_s, u"4289"_s},
        {u"TG・積水"_s, u"4272"_s},
        {u"LIPC"_s, u"4210"_s},
        {u"TG-J・協和JSCC値"_s, u"4282"_s},
        {u"MG"_s, u"4216"_s},
        {u"THEO2"_s, u"4247"_s},
        {u"MG-2"_s, u"3527"_s},
        {u"TOBR2"_s, u"4257"_s},
        {u"MG-U"_s, u"4284"_s},
        {u"TP2"_s, u"4221"_s},
        {u"MGU-2"_s, u"3528"_s},
        {u"TPC3"_s, u"3505"_s},
        {u"MLHDL・協和"_s, u"4279"_s},
        {u"TPLA"_s, u"4266"_s},
        {u"MLLDL・協和"_s, u"4280"_s},
        {u"TPU3"_s, u"3504"_s},
        {u"MMP3"_s, u"3515"_s},
        {u"TPUC3"_s, u"4234"_s},
        {u"MMP3N"_s, u"3526"_s},
        {u"TRSF2"_s, u"3503"_s},
        {u"MPA"_s, u"3253"_s},
        {u"UA2"_s, u"4220"_s},
        {u"MYO"_s, u"4260"_s},
        {u"UN"_s, u"4277"_s},
        {u"MYO-2"_s, u"3513"_s},
        {u"VALP2"_s, u"4248"_s},
        {u"Na"_s, u"989"_s},
        {u"VANC2"_s, u"4249"_s},
        {u"NAG"_s, u"4283"_s},
        {u"ZTT"_s, u"4261"_s},
        {u"NAOHD"_s, u"947"_s},
        {u"ZTT_E"_s, u"4230"_s},
        {u"NAPA2"_s, u"4256"_s},
        {u"NH3L"_s, u"4217"_s},
        {u"PHNO2"_s, u"4287"_s},
        {u"PHNO3"_s, u"4258"_s},
        {u"PHNY2"_s, u"4246"_s},
        {u"PHOS2"_s, u"4218"_s},
        {u"PREA"_s, u"4298"_s},
        {u"PROC2"_s, u"4255"_s},
        {u"QUIN2"_s, u"4253"_s},
        {u"A-CCP"_s, u"202"_s},
        {u"FT4"_s, u"4"_s},
        {u"ACTH"_s, u"162"_s},
        {u"FT4 Ⅱ"_s, u"201"_s},
        {u"AFP Ⅱ"_s, u"50"_s},
        {u"HBEAG"_s, u"73"_s},
        {u"A-HAV"_s, u"88"_s},
        {u"HBSAG II"_s, u"250"_s},
        {u"A-HAVIGM"_s, u"85"_s},
        {u"HBSAG-QN"_s, u"145"_s},
        {u"A-HBC"_s, u"77"_s},
        {u"HCG STAT Ⅱ"_s, u"230"_s},
        {u"A-HBCIGM"_s, u"86"_s},
        {u"HCG-BETA Ⅱ"_s, u"148"_s},
        {u"A-HBE"_s, u"66"_s},
        {u"hCT"_s, u"502"_s},
        {u"A-HBS"_s, u"64"_s},
        {u"HGH"_s, u"263"_s},
        {u"A-HCV"_s, u"65"_s},
        {u"HIV-Combi"_s, u"104"_s},
        {u"A-HCV Ⅱ"_s, u"286"_s},
        {u"HVCOMPT"_s, u"111"_s},
        {u"A-TG"_s, u"133"_s},
        {u"IGE Ⅱ"_s, u"116"_s},
        {u"A-TPO"_s, u"137"_s},
        {u"IL6"_s, u"203"_s},
        {u"B12"_s, u"110"_s},
        {u"INSULIN"_s, u"120"_s},
        {u"CA125 Ⅱ"_s, u"53"_s},
        {u"LH"_s, u"20"_s},
        {u"CA15-3 Ⅱ"_s, u"52"_s},
        {u"MYO Ⅱ"_s, u"56"_s},
        {u"CA19-9 Ⅱ"_s, u"54"_s},
        {u"MYO-STAT Ⅱ"_s, u"163"_s},
        {u"CA72-4"_s, u"55"_s},
        {u"NSE"_s, u"155"_s},
        {u"CEA Ⅱ"_s, u"49"_s},
        {u"OSTEOC"_s, u"122"_s},
        {u"CK-MB Ⅱ"_s, u"43"_s},
        {u"PCT"_s, u"227"_s},
        {u"CK-MB STAT Ⅱ"_s, u"118"_s},
        {u"PLGF"_s, u"83"_s},
        {u"CORT"_s, u"24"_s},
        {u"PRL Ⅲ"_s, u"14"_s},
        {u"CPEPTID"_s, u"186"_s},
        {u"PRO-BNP Ⅱ"_s, u"91"_s},
        {u"CROSSL（β-CTx）"_s, u"127"_s},
        {u"PRO-BNP STAT Ⅱ"_s, u"173"_s},
        {u"CSA"_s, u"705"_s},
        {u"PROG Ⅱ"_s, u"16"_s},
        {u"Cyfra"_s, u"63"_s},
        {u"ProGRP"_s, u"557"_s},
        {u"DIGO"_s, u"115"_s},
        {u"PTH"_s, u"126"_s},
        {u"E2 Ⅲ"_s, u"12"_s},
        {u"SFLT-1"_s, u"96"_s},
        {u"FERR"_s, u"67"_s},
        {u"T3"_s, u"7"_s},
        {u"FOL Ⅲ"_s, u"205"_s},
        {u"T4 Ⅱ"_s, u"2"_s},
        {u"FPSA"_s, u"68"_s},
        {u"TCL"_s, u"556"_s},
        {u"FSH Ⅱ"_s, u"23"_s},
        {u"TESTO Ⅱ"_s, u"216"_s},
        {u"FT3"_s, u"10"_s},
        {u"TG"_s, u"4282"_s},
        {u"FT3 Ⅲ"_s, u"195"_s},
        {u"TG Ⅱ"_s, u"169"_s},
        {u"TNT-HS"_s, u"178"_s},
        {u"TNT-HS STAT"_s, u"107"_s},
        {u"TP1NP"_s, u"44"_s},
        {u"TPSA Ⅱ"_s, u"51"_s},
        {u"TRAb"_s, u"266"_s},
        {u"TSH"_s, u"1"_s},
        {u"whole-PTH"_s, u"273"_s},
    };
    return rows;
}

// The names the lookups of 1190 and 0980 give for a stored code: the 1190 table and HbA1c.
const std::vector<OrderItem>& ItemNames() {
    static const std::vector<OrderItem> rows = [] {
        std::vector<OrderItem> all = Rows1190();
        all.push_back(HbA1c(u"0980"_s));
        return all;
    }();
    return rows;
}

// Keeps the codes in ItemCodes from entry 1, as the lookups read them there too.
void PutItemCodes(const std::vector<OrderItem>& rows) {
    qsizetype entry = 0;
    for (const OrderItem& row : rows) Ctx().ItemCodes.put(++entry, row.code);
}

}  // namespace

ItemTable FillItemTable(OrderItems which) {
    ItemTable table;
    switch (which) {
        case OrderItems::Items1650:
            table.rows = Rows1650();
            break;
        case OrderItems::Items1190:
            table.rows = Rows1190();
            PutItemCodes(table.rows);
            break;
        case OrderItems::Items0980:
            table.rows = {HbA1c(Ctx().InstrumentCode)};
            PutItemCodes(table.rows);
            break;
        case OrderItems::Items1660:
            table.rows = Rows1660();
            break;
        case OrderItems::Items1730:
            table.rows = Rows1660();
            table.rows.push_back({u"AMH"_s, u"113"_s});
            // The search keeps the count of the shared rows, so AMH is never found.
            table.searchedRows = Rows1660().size();
            return table;
    }
    table.searchedRows = table.rows.size();
    return table;
}

std::optional<QString> FindItemCode(const ItemTable& table, const QString& name) {
    const std::size_t count = std::min(table.searchedRows, table.rows.size());
    for (std::size_t i = 0; i < count; ++i)
        if (table.rows[i].name == name) return table.rows[i].code;
    return std::nullopt;
}

QString OrderItemName(const QString& code) {
    for (const OrderItem& item : ItemNames())
        if (item.code == code) return item.name;
    return QString();
}

}  // namespace orbline
