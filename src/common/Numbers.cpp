#include "common/Numbers.h"

#include "common/RuntimeError.h"
#include "common/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// A numeric text as sign, significant digits and exponent: the value is digits * 10^exponent,
// with no leading or trailing zero in digits. Zero has no digits.
struct Decimal {
    bool negative = false;
    std::string digits;
    std::int64_t exponent = 0;

    bool isZero() const { return digits.empty(); }
    // Digits in front of the point: the value lies in [10^(magnitude-1), 10^magnitude).
    std::int64_t magnitude() const { return static_cast<std::int64_t>(digits.size()) + exponent; }
    // The digit of weight 10^power, '0' outside the significant digits.
    char digitAt(std::int64_t power) const {
        const std::int64_t index = magnitude() - 1 - power;
        if (index < 0 || index >= static_cast<std::int64_t>(digits.size())) return '0';
        return digits[static_cast<std::size_t>(index)];
    }
};

// Exponents are saturated here while they are read; anything this far out is beyond the
// double range or zero anyway, and the saturation keeps the arithmetic in 64 bits.
constexpr std::int64_t kExponentCap = 1'000'000'000'000;
// Below 10^-400 a value is zero, as a double would hold it.
constexpr std::int64_t kTinyMagnitude = -400;
// 2^1024 - 2^970, the midpoint between the largest double and 2^1024: from here on a
// conversion to double rounds to infinity, i.e. overflows.
constexpr char kDoubleOverflow[] =
    "17976931348623158079372897140530341507993413271003782693617377898044496829276475094664901797"
    "75872070963302864166928879109465555478519404026306574886715058206819089020007083836762738548"
    "45817711531764475730270069855571366959622842914819860834936475292719074168444365510704342711"
    "559699508093042880177904174497792";
constexpr std::int64_t kDoubleOverflowDigits = sizeof(kDoubleOverflow) - 1;
static_assert(kDoubleOverflowDigits == 309);

bool IsAsciiDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

std::optional<Decimal> Parse(const QString& text) {
    const QString t = Trim(text);
    const qsizetype n = t.size();
    qsizetype i = 0;
    Decimal value;
    if (i < n && (t[i] == u'+' || t[i] == u'-')) {
        value.negative = t[i] == u'-';
        ++i;
    }
    std::string mantissa;
    std::int64_t fractionDigits = 0;
    bool sawPoint = false;
    for (; i < n; ++i) {
        const QChar c = t[i];
        if (IsAsciiDigit(c)) {
            mantissa.push_back(static_cast<char>(c.unicode()));
            if (sawPoint) ++fractionDigits;
        } else if (c == u'.' && !sawPoint) {
            sawPoint = true;
        } else {
            break;
        }
    }
    if (mantissa.empty()) return std::nullopt;

    std::int64_t exponent = 0;
    if (i < n && (t[i] == u'E' || t[i] == u'e')) {
        ++i;
        bool negativeExponent = false;
        if (i < n && (t[i] == u'+' || t[i] == u'-')) {
            negativeExponent = t[i] == u'-';
            ++i;
        }
        const qsizetype firstDigit = i;
        for (; i < n && IsAsciiDigit(t[i]); ++i) {
            if (exponent < kExponentCap) exponent = exponent * 10 + (t[i].unicode() - u'0');
        }
        if (i == firstDigit) return std::nullopt;
        if (negativeExponent) exponent = -exponent;
    }
    if (i != n) return std::nullopt;

    const std::size_t first = mantissa.find_first_not_of('0');
    if (first == std::string::npos) return value;  // zero, whatever its sign
    const std::size_t last = mantissa.find_last_not_of('0');
    value.digits = mantissa.substr(first, last - first + 1);
    value.exponent =
        exponent - fractionDigits + static_cast<std::int64_t>(mantissa.size() - 1 - last);
    if (value.magnitude() <= kTinyMagnitude) value.digits.clear();
    return value;
}

bool ExceedsDouble(const Decimal& value) {
    if (value.isZero()) return false;
    const std::int64_t magnitude = value.magnitude();
    if (magnitude != kDoubleOverflowDigits) return magnitude > kDoubleOverflowDigits;
    for (std::int64_t k = 0; k < kDoubleOverflowDigits; ++k) {
        const char d = value.digitAt(magnitude - 1 - k);
        if (d != kDoubleOverflow[k]) return d > kDoubleOverflow[k];
    }
    return true;  // equal to the midpoint (rounds to even, i.e. away) or above it
}

QString Latin1(const std::string& s) {
    return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size()));
}

// The digits of the integer part, without leading zeros ("" for a zero integer part).
std::string IntegerDigits(const Decimal& value) {
    std::string out;
    for (std::int64_t power = value.magnitude() - 1; power >= 0; --power)
        out.push_back(value.digitAt(power));
    return out;
}

// The value rounded half away from zero to decimals places, as its integer digits (no leading
// zeros) and exactly decimals fraction digits.
struct Rounded {
    std::string integer;
    std::string fraction;
    bool isZero() const {
        return integer.empty() && fraction.find_first_not_of('0') == std::string::npos;
    }
};

Rounded RoundTo(const Decimal& value, std::int64_t decimals) {
    std::string all = IntegerDigits(value);
    for (std::int64_t k = 1; k <= decimals; ++k) all.push_back(value.digitAt(-k));
    if (value.digitAt(-(decimals + 1)) >= '5') {
        std::size_t pos = all.size();
        while (pos > 0 && all[pos - 1] == '9') all[--pos] = '0';
        if (pos == 0) {
            all.insert(all.begin(), '1');
        } else {
            ++all[pos - 1];
        }
    }
    const std::size_t split = all.size() - static_cast<std::size_t>(decimals);
    Rounded r{all.substr(0, split), all.substr(split)};
    // A carry may have turned "" into "1"; a zero integer part has no digits.
    const std::size_t first = r.integer.find_first_not_of('0');
    r.integer = first == std::string::npos ? std::string() : r.integer.substr(first);
    return r;
}

bool IsPlaceholder(QChar c) {
    return c == u'0' || c == u'#';
}

// The integer part of the mask, right to left: each placeholder takes one digit from the right,
// the leftmost one takes all that are left, so the integer is never cut. "," anywhere in this
// part groups by thousands; other characters stand where they are.
QString FormatIntegerPart(const std::string& integer, const QString& mask) {
    qsizetype placeholders = 0;
    qsizetype forced = 0;
    bool grouping = false;
    for (const QChar c : mask) {
        if (IsPlaceholder(c)) ++placeholders;
        if (c == u',') grouping = true;
    }
    for (qsizetype i = 0, seen = 0; i < mask.size(); ++i) {
        if (!IsPlaceholder(mask[i])) continue;
        if (mask[i] == u'0') {
            forced = placeholders - seen;
            break;
        }
        ++seen;
    }
    std::string shown = integer;
    if (static_cast<qsizetype>(shown.size()) < forced) {
        shown.insert(0, static_cast<std::size_t>(forced) - shown.size(), '0');
    }

    QString reversed;
    std::size_t taken = 0;  // digits already placed, counted from the right
    const auto takeDigit = [&] {
        if (grouping && taken > 0 && taken % 3 == 0) reversed.append(u',');
        reversed.append(QLatin1Char(shown[shown.size() - 1 - taken]));
        ++taken;
    };
    if (placeholders == 0) {
        while (taken < shown.size()) takeDigit();
    }
    qsizetype placeholdersLeft = placeholders;
    for (qsizetype i = mask.size() - 1; i >= 0; --i) {
        const QChar c = mask[i];
        if (c == u',') continue;
        if (!IsPlaceholder(c)) {
            reversed.append(c);
            continue;
        }
        if (--placeholdersLeft == 0) {
            while (taken < shown.size()) takeDigit();
        } else if (taken < shown.size()) {
            takeDigit();
        }
    }
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

// The fraction part of the mask, left to right: a "#" place shows its digit unless it is a
// trailing zero.
QString FormatFractionPart(const std::string& fraction, const QString& mask) {
    std::vector<QChar> places;
    for (const QChar c : mask) {
        if (IsPlaceholder(c)) places.push_back(c);
    }
    std::size_t shown = fraction.size();
    while (shown > 0 && places[shown - 1] == u'#' && fraction[shown - 1] == '0') --shown;

    QString out;
    std::size_t place = 0;
    for (const QChar c : mask) {
        if (c == u',') continue;
        if (!IsPlaceholder(c)) {
            out.append(c);
            continue;
        }
        if (place < shown) out.append(QLatin1Char(fraction[place]));
        ++place;
    }
    return out;
}

std::string ScientificText(const Decimal& value) {
    std::string s = value.negative ? "-" : "";
    s += value.digits;
    s += 'e';
    s += std::to_string(value.exponent);
    return s;
}

// Conversion of a numeric text for settings; std::from_chars rounds correctly and ignores the
// process locale (a German locale would otherwise take "1.5" for fifteen).
template <typename Float>
std::optional<Float> ToFloating(const QString& text) {
    const std::optional<Decimal> value = Parse(text);
    if (!value) return std::nullopt;
    if (value->isZero()) return Float(0);
    const std::string s = ScientificText(*value);
    Float result{};
    const std::from_chars_result r = std::from_chars(s.data(), s.data() + s.size(), result);
    if (r.ec == std::errc::result_out_of_range) {
        // Out of range on the small side is an underflow: the value is zero.
        if (value->magnitude() <= 0) return Float(0);
        return std::nullopt;
    }
    if (r.ec != std::errc() || r.ptr != s.data() + s.size()) return std::nullopt;
    return result;
}

}  // namespace

bool IsNumeric(const QString& text) {
    return Parse(text).has_value();
}

QString PlainDecimalText(const QString& text) {
    const std::optional<Decimal> value = Parse(text);
    // A value beyond the double range has no plain form here: written out it could run to
    // billions of digits ("1E999999999").
    if (!value || ExceedsDouble(*value)) return text;
    if (value->isZero()) return u"0"_s;
    std::string out = value->negative ? "-" : "";
    const std::string integer = IntegerDigits(*value);
    out += integer.empty() ? "0" : integer;
    const std::int64_t decimals = -value->exponent;
    if (decimals > 0) {
        out += '.';
        for (std::int64_t k = 1; k <= decimals; ++k) out.push_back(value->digitAt(-k));
    }
    return Latin1(out);
}

QString FormatNumber(const QString& text, const QString& mask) {
    const std::optional<Decimal> value = Parse(text);
    // Not numeric, or a conversion to double would overflow: the statement that formats it is
    // passed over at run time, so the text stays as it was.
    if (!value || ExceedsDouble(*value)) return text;
    // An empty mask is the general format: the number as it is, without a mask.
    if (mask.isEmpty()) return PlainDecimalText(text);

    const qsizetype point = mask.indexOf(u'.');
    const QString integerMask = point < 0 ? mask : mask.left(point);
    const QString fractionMask = point < 0 ? QString() : mask.mid(point + 1);
    std::int64_t decimals = 0;
    for (const QChar c : fractionMask) {
        if (IsPlaceholder(c)) ++decimals;
    }

    const Rounded rounded = RoundTo(*value, decimals);
    // A minus zero on a result would suggest a value below zero that is not there.
    QString out = value->negative && !rounded.isZero() ? u"-"_s : QString();
    out += FormatIntegerPart(rounded.integer, integerMask);
    if (point >= 0) {
        out += u'.';
        out += FormatFractionPart(rounded.fraction, fractionMask);
    }
    return out;
}

// The result edits this mirrors round in double arithmetic, representation error included:
// RoundDigits(1.005, 2) is 1 because 1.005 * 100 is 100.49999999999999. Exactness here would
// change results that have already been reported, so the arithmetic is kept as it is.
double RoundDigits(double value, std::int16_t digits) {
    const double factor = std::pow(10.0, digits);
    if (factor == 0.0) return 0.0;  // rounding at 10^400 and beyond leaves nothing of a double
    const double scaled = value * factor;
    if (!std::isfinite(scaled)) return value;  // no digits that far to the right to round away
    const double rounded =
        value < 0 ? std::trunc(scaled - 0.5) / factor : std::floor(scaled + 0.5) / factor;
    return rounded + 0.0;  // -0.0 becomes 0.0
}

QString SingleText(float value) {
    std::array<char, 64> buffer{};  // the longest fixed text of a float is 48 characters
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                            value + 0.0f, std::chars_format::fixed);
    if (error != std::errc()) return {};
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

std::int16_t DecimalPointPos(const QString& text) {
    const qsizetype at = text.indexOf(u'.');
    if (at < 0 || at == text.size() - 1) return 0;
    // The position is held in a 16-bit integer: beyond that the runtime overflows.
    if (at + 1 > std::numeric_limits<std::int16_t>::max()) throw RuntimeError(errors::Overflow());
    return static_cast<std::int16_t>(at + 1);
}

QString MakeNumberMask(std::int16_t length, std::int16_t pointPos) {
    QString mask;
    for (int i = 1; i <= length; ++i) {
        QChar place = u'#';
        if (pointPos != 0 && i == pointPos) {
            place = u'.';
        } else if (pointPos != 0 && (i > pointPos || i == pointPos - 1)) {
            place = u'0';
        }
        mask.append(place);
    }
    return mask;
}

std::optional<std::int32_t> ToInt32(const QString& text) {
    const std::optional<double> value = ToDouble(text);
    if (!value) return std::nullopt;
    // Half to even, as the runtime's integer conversion rounds.
    const double floor = std::floor(*value);
    const double rest = *value - floor;
    double rounded = floor;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(floor, 2.0) != 0.0)) rounded = floor + 1.0;
    if (rounded < static_cast<double>(std::numeric_limits<std::int32_t>::min()) ||
        rounded > static_cast<double>(std::numeric_limits<std::int32_t>::max())) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(rounded);
}

std::optional<float> ToSingle(const QString& text) {
    return ToFloating<float>(text);
}

std::optional<double> ToDouble(const QString& text) {
    return ToFloating<double>(text);
}

QString FormatOwnDecimals(const QString& value) {
    if (!IsNumeric(value)) return value;
    const auto length = static_cast<std::int16_t>(
        std::min<qsizetype>(value.size(), std::numeric_limits<std::int16_t>::max()));
    return FormatNumber(value, MakeNumberMask(length, DecimalPointPos(value)));
}

void CountUp(std::int16_t& counter) {
    if (counter < std::numeric_limits<std::int16_t>::max()) counter += 1;
}

}  // namespace orbline
