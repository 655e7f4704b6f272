#pragma once
// Numbers as the system writes them: the "numeric" test, masks, and the helpers that build
// masks from a value's own shape. Values stay text; the mask formatter works on the decimal
// digits of the text, so no value passes through a double and a long specimen number stays
// exact.

#include <QString>

#include <cstdint>
#include <optional>

namespace orbline {

// After Trim: optional "+" or "-", digits with at most one "." and at least one digit, and an
// optional exponent ("E" or "e", optional sign, at least one digit). Nothing else.
bool IsNumeric(const QString& text);

// The plain decimal text of a numeric text: no sign for a positive value, no leading zeros
// (one "0" stays before the point), no trailing zeros behind the point, no point without
// decimals, no exponent. "0012345" gives "12345", "-0.50" gives "-0.5", "1E3" gives "1000".
// A text that is not numeric, or a value beyond the double range, comes back unchanged; a value
// below 1E-400 is "0".
QString PlainDecimalText(const QString& text);

// Formats a numeric text with a mask of "0" (digit always shown), "#" (digit shown only if
// significant), "." (the point) and "," (thousands grouping in the integer part). Rounding is
// half away from zero at the mask's last decimal. A text that is not numeric comes through
// unchanged; the empty text stays empty. A mask of "#" only formats zero as the empty text.
// A value too large for a double (beyond 1E308) comes back unchanged, as a failed conversion.
QString FormatNumber(const QString& text, const QString& mask);

// Half away from zero at digits decimals, in double arithmetic (see the note in the source).
double RoundDigits(double value, std::int16_t digits);
// The shortest decimal text that reads back as the same single-precision number, never with an
// exponent: 0.5f is "0.5", -0.1f is "-0.1", 200.0f is "200". Minus zero is "0".
QString SingleText(float value);
// Position (from 1) of the first ".", or 0 if there is none or it is the last character.
std::int16_t DecimalPointPos(const QString& text);
// A mask of the given length with the point at pointPos: "." there, "0" behind it and just in
// front of it, "#" elsewhere; all "#" when pointPos is 0.
QString MakeNumberMask(std::int16_t length, std::int16_t pointPos);

// A result value with the mask of its own shape (MakeNumberMask of its length and point), so it
// keeps the decimals it was sent with; a plain "0" gives the empty text. Text that is not
// numeric comes back unchanged.
QString FormatOwnDecimals(const QString& value);

// Conversions of a setting to a number. Absent when the text is not numeric or the number does
// not fit. Integers round half to even, as the runtime's conversion does.
std::optional<std::int32_t> ToInt32(const QString& text);

// Adds 1 to a 16-bit counter. Past the range the addition fails and is passed over, so the
// counter stays at its last value.
void CountUp(std::int16_t& counter);
std::optional<float> ToSingle(const QString& text);
std::optional<double> ToDouble(const QString& text);

}  // namespace orbline
