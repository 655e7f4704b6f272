#pragma once
// The simulator's scripts, one for each instrument code, with the name the settings give the
// instrument and the records its result file holds.

#include <QString>

#include <array>
#include <ostream>

namespace orbline::test {

struct ScriptCase {
    const char* script;
    const char* code;
    const char* name;
    qsizetype records;
    // The work folder that holds the pieces of the result message when the script ends; none
    // where a query or nothing follows the result.
    const char* pieceFolder;
};

inline constexpr std::array<ScriptCase, 12> kScriptCases{{
    {"tonometer-2620.sim", "2620", "TOMEY", 6, "c2620"},
    {"glycohaemoglobin-0980.sim", "0980", "HLC", 1, ""},
    {"aia-1160.sim", "1160", "AIA", 1, ""},
    {"haematology-1190.sim", "1190", "XN-550", 21, ""},
    {"coagulation-1650.sim", "1650", "CA-50", 2, ""},
    {"cobas-1660.sim", "1660", "COBAS", 7, ""},
    {"immunoassay-1730.sim", "1730", "E411", 7, ""},
    {"chemistry-2140.sim", "2140", "BM-2140", 3, ""},
    {"chemistry-2990.sim", "2990", "BM-2990", 3, ""},
    {"urine-0855.sim", "0855", "UA", 8, ""},
    {"tympanometer-1671.sim", "1671", "TYMP", 1, "c1671"},
    {"glucose-0990.sim", "0990", "GM", 2, "c990"},
}};

// gtest names a case by its script.
inline void PrintTo(const ScriptCase& c, std::ostream* out) {
    *out << c.script;
}

}  // namespace orbline::test
