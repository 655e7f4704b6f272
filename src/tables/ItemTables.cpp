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

}  // namespace

std::span<const Item0980> Items0980() {
    return kItems0980;
}

std::span<const MeasuredItem1190> MeasuredItems1190() {
    return kMeasured1190;
}

}  // namespace orbline
