#include "tables/ItemTables.h"

namespace orbline {

namespace {

constexpr Item0980 kItems0980[] = {
    {u"HbA1c", u"010"},      {u"IFCC", u"020"},       {u"HbF", u"030"},
    {u"GLU", u"040"},        {u"PeakHbA1ab", u"050"}, {u"PeakHbF", u"060"},
    {u"Peak#C", u"070"},     {u"PeakHbA1c", u"080"},  {u"PeakA0", u"090"},
    {u"TimeBottom", u"100"}, {u"TimeBase", u"110"},   {u"TimeBefore", u"120"},
    {u"TimeAfter", u"130"},  {u"TimeGain", u"140"},   {u"AreaTotal", u"150"},
    {u"NGSP", u"160"},
};

constexpr MeasuredItem1190 kMeasured1190[] = {
    {u"WBC", u"1190010"},    {u"RBC", u"1190020"},    {u"HGB", u"1190030"},
    {u"HCT", u"1190040"},    {u"MCV", u"1190050"},    {u"MCH", u"1190060"},
    {u"MCHC", u"1190070"},   {u"PLT", u"1190080"},    {u"NEUT%", u"1190090"},
    {u"LYMPH%", u"1190100"}, {u"MONO%", u"1190110"},  {u"EO%", u"1190120"},
    {u"BASO%", u"1190130"},  {u"NEUT#", u"1190140"},  {u"LYMPH#", u"1190150"},
    {u"MONO#", u"1190160"},  {u"EO#", u"1190170"},    {u"BASO#", u"1190180"},
    {u"RDW-SD", u"1190190"}, {u"RDW-CV", u"1190200"}, {u"PDW", u"1190210"},
    {u"MPV", u"1190220"},    {u"P-LCR", u"1190230"},  {u"PCT", u"1190240"},
};

// PT ratio and PT-INR come with two decimals, every other value with one.
constexpr ResultItem1650 kResult1650[] = {
    {u"041", u"PT", u"1650010", u"sec", 1},       {u"042", u"PT%", u"1650020", u"%", 1},
    {u"043", u"PT比", u"1650030", u"", 2},        {u"044", u"PT-INR", u"1650040", u"", 2},
    {u"051", u"APTT", u"1650050", u"sec", 1},     {u"062", u"Fbg", u"1650060", u"mg/dL", 1},
    {u"082", u"TTO", u"1650070", u"%", 1},        {u"092", u"HpT", u"1650080", u"%", 1},
    {u"122", u"因子定量Ⅱ", u"1650090", u"%", 1},  {u"152", u"因子定量Ⅴ", u"1650100", u"%", 1},
    {u"172", u"因子定量Ⅶ", u"1650110", u"%", 1},  {u"182", u"因子定量Ⅷ", u"1650120", u"%", 1},
    {u"192", u"因子定量Ⅸ", u"1650130", u"%", 1},  {u"202", u"因子定量Ⅹ", u"1650140", u"%", 1},
    {u"212", u"因子定量ⅩⅠ", u"1650150", u"%", 1}, {u"222", u"因子定量ⅩⅡ", u"1650160", u"%", 1},
    {u"302", u"AT3", u"1650170", u"%", 1},        {u"312", u"APL", u"1650180", u"ug/mL", 1},
    {u"322", u"Plg", u"1650190", u"%", 1},        {u"332", u"BCPC", u"1650200", u"%", 1},
    {u"602", u"SFDP", u"1650210", u"ug/mL", 1},   {u"612", u"DD", u"1650220", u"ug/mL", 1},
    {u"622", u"PFDP", u"1650230", u"ug/mL", 1},
};

}  // namespace

std::span<const Item0980> Items0980() {
    return kItems0980;
}

std::span<const MeasuredItem1190> MeasuredItems1190() {
    return kMeasured1190;
}

std::span<const ResultItem1650> ResultItems1650() {
    return kResult1650;
}

}  // namespace orbline
