#pragma once
// The built-in item tables that both the result edits and the order intake read, so that a
// code in an order and the code in a result come from one row.

#include <QStringView>

#include <span>

namespace orbline {

// An item of the glycohaemoglobin analyser 0980. Its code is InstrumentCode + suffix: "0980010"
// for HbA1c.
struct Item0980 {
    QStringView name;
    QStringView suffix;
};
// The 16 items; the setting HbA1c has no part in them. HbA1c comes first: it is the one test an
// order file can ask for.
std::span<const Item0980> Items0980();

// A measured item of the haematology analyser 1190.
struct MeasuredItem1190 {
    QStringView name;
    QStringView code;
};
// The 24 measured items, positions 1 to 24.
std::span<const MeasuredItem1190> MeasuredItems1190();

// A result item of the coagulation analyser 1650. The instrument sends its own three-digit code
// and the value without a decimal point: the item's decimals say where the point goes.
struct ResultItem1650 {
    QStringView resultCode;
    QStringView name;
    QStringView code;
    QStringView unit;
    int decimals;
};
// The 23 result items. They are not the codes an order asks for (040, 050, ...).
std::span<const ResultItem1650> ResultItems1650();

// An item of the cobas analysers 1660 and 1730, as their order files name it and as the 1660
// results are named.
struct Item1660 {
    QStringView name;
    QStringView code;
};
// The 206 items, row 1 first. FERR stands twice (rows 34 and 188) and TG (row 197) shares 4282
// with TG-J: a search by name or by code finds the first.
std::span<const Item1660> Items1660();

}  // namespace orbline
