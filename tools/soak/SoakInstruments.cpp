#include "SoakInstruments.h"

using namespace Qt::StringLiterals;

namespace orbline::soak {

const std::vector<SoakInstrument>& SoakInstruments() {
    static const std::vector<SoakInstrument> instruments = {
        {u"0855"_s, u"urine-0855.sim"_s, u"UA"_s, 8, false, QString(), false},
        {u"0980"_s, u"glycohaemoglobin-0980.sim"_s, u"HLC"_s, 1, false, u"HbA1c"_s, false},
        {u"0990"_s, u"glucose-0990.sim"_s, u"GM"_s, 2, false, QString(), false},
        {u"1160"_s, u"aia-1160.sim"_s, u"AIA"_s, 1, false, QString(), false},
        {u"1190"_s, u"haematology-1190.sim"_s, u"XN-550"_s, 21, false, u"WBC"_s, false},
        {u"1650"_s, u"coagulation-1650.sim"_s, u"CA-50"_s, 2, false, u"PT"_s, false},
        {u"1660"_s, u"cobas-1660.sim"_s, u"COBAS"_s, 7, false, u"Na"_s, true},
        {u"1671"_s, u"tympanometer-1671.sim"_s, u"TYMP"_s, 1, true, QString(), false},
        {u"1730"_s, u"immunoassay-1730.sim"_s, u"E411"_s, 7, false, u"TSH"_s, false},
        {u"2140"_s, u"chemistry-2140.sim"_s, u"BM-2140"_s, 3, false, QString(), false},
        {u"2620"_s, u"tonometer-2620.sim"_s, u"TOMEY"_s, 6, false, QString(), false},
        {u"2990"_s, u"chemistry-2990.sim"_s, u"BM-2990"_s, 3, false, QString(), false},
    };
    return instruments;
}

QString SoakPrefix(const QString& code) {
    return u"S"_s + code;
}

}  // namespace orbline::soak
