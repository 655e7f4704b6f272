// The charts of the tympanometer 1671: pure functions of the repaired lines, and of the ear
// files for a pair. Arithmetic is in double; every number is written as the shortest text of
// a single-precision value, as the chart readers have always received it.

#include "edits/MdlEdit016.h"

#include "common/Numbers.h"
#include "common/RuntimeError.h"
#include "common/Text.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

constexpr int kPressureRows = 1001;
constexpr float kStartPressure = 200.0f;
constexpr float kDefaultStep = 1.5f;
constexpr int kHeadLines = 9;
constexpr double kComplianceFloor = -0.1;

double NumberOrThrow(const QString& text) {
    const std::optional<double> value = ToDouble(text);
    if (!value) throw RuntimeError(errors::TypeMismatch());
    return *value;
}

QString RoundedText(double value, std::int16_t digits) {
    return SingleText(static_cast<float>(RoundDigits(value, digits)));
}

// The fields of a line; the ETX that ends it is no part of the last sample.
QStringList Fields(const QString& line) {
    QString text = line;
    if (text.endsWith(QChar(0x03))) text.chop(1);
    return Split(text, u","_s);
}

// The equivalent volume in mL, unrounded.
double Pvt(const QString& line) {
    return ToDouble(Mid(line, 68, 4)).value_or(0.0) / 1000.0;
}

float Step(const QString& line) {
    const std::optional<double> hundredths = ToDouble(Mid(line, 30, 4));
    return hundredths ? static_cast<float>(*hundredths / 100.0) : kDefaultStep;
}

// How the texts of an ear differ between a single-ear chart and an ear file of a pair.
struct EarTexts {
    QString first;
    QString third;
    QString eighth;
    QString ninth;
    QString before;  // around the value column
    QString after;
};

enum class Layout { SingleEar, EarFile };

EarTexts TextsOf(Layout layout, bool right) {
    const QString rightEighth = u"PRES ,COMPLIANCE[ml],"_s;
    const QString rightNinth = u"[daPa], RIGHT ,,"_s;
    const QString leftEighth = u"PRES ,,"_s;
    const QString leftNinth = u"[daPa], LEFT  ,"_s;
    if (layout == Layout::SingleEar) {
        if (right)
            return {u"RS-M1,0.00,"_s, u",RIGHT,"_s, rightEighth, rightNinth, u","_s, u",,"_s};
        return {u"RS-M1,0.00,"_s, u",,LEFT"_s, leftEighth, leftNinth, u",,"_s, u","_s};
    }
    if (right) return {u"RS-M1,0.00,"_s, u", RIGHT,"_s, rightEighth, rightNinth, u","_s, u","_s};
    return {u"RS-M1,,"_s, u", LEFT ,"_s, leftEighth, leftNinth, u","_s, u","_s};
}

QStringList EarChart(const QString& line, Layout layout) {
    const EarTexts t = TextsOf(layout, Mid(line, 34, 1) == u"R"_s);
    const QStringList fields = Fields(line);
    const QString staticCompliance = Trim(CheckedField(fields, 1));
    const auto value = [&t](const QString& label, const QString& number, const QString& unit) {
        return label + t.before + number + t.after + unit;
    };
    QStringList chart{
        t.first,
        u"TYMPANOMETRY,,"_s,
        t.third,
        value(u"PVT."_s, RoundedText(Pvt(line), 2), u"[mL]"_s),
        IsNumeric(staticCompliance)
            ? value(u"S.C."_s, RoundedText(NumberOrThrow(staticCompliance) / 1000.0, 2), u"[mL]"_s)
            : u"S.C.,,[mL]"_s,
        value(u"PEAK."_s, CheckedField(fields, 2), u"[daPa]"_s),
        u"GRAD.,"_s + CheckedField(fields, 3) + u",[daPa]"_s,
        t.eighth,
        t.ninth,
    };
    const PressureTable1671 table = ReadPressureTable1671(line);
    // From the free row down to row 0: low pressure first.
    for (auto row = table.rows.rbegin(); row != table.rows.rend(); ++row) {
        if (layout == Layout::EarFile && row->pressure.isEmpty()) continue;
        chart << row->pressure + t.before + row->compliance + t.after;
    }
    return chart;
}

// One ear file as the merge reads it. A row is held while the other side catches up.
struct EarSide {
    QStringList lines;
    qsizetype next = 0;
    QStringList fields{};
    bool ended = false;
    bool held = false;
    bool begun = false;
    int pressure = 0;
    QString compliance{};
    QString lastWritten{};

    void read() {
        if (next >= lines.size()) {
            ended = true;
            fields.clear();
            return;
        }
        fields = Split(lines[next++], u","_s);
        const QString first = fields.value(0);
        if (!IsNumeric(first)) return;
        const std::optional<std::int32_t> whole = ToInt32(first);
        if (!whole) throw RuntimeError(errors::Overflow());
        pressure = *whole;
        QString value = CheckedField(fields, 1);
        const std::optional<double> number = ToDouble(value);
        if (number && *number < kComplianceFloor)
            value = SingleText(static_cast<float>(kComplianceFloor));
        fields[1] = value;
        compliance = value;
    }
    // An ended side lies above every pressure, so the other side drains.
    bool below(const EarSide& other) const {
        return !ended && (other.ended || pressure < other.pressure);
    }
};

QString KindWord(const QString& kind) {
    if (kind == u"3"_s) return u"KVB-0500-"_s;
    if (kind == u"4"_s) return u"KVB-1000-"_s;
    if (kind == u"5"_s) return u"KVB-2000-"_s;
    if (kind == u"6"_s) return u"KVB-4000-"_s;
    return {};
}

}  // namespace

int PointCount1671(const QString& line) {
    const std::optional<std::int32_t> count = ToInt32(Mid(line, 27, 3));
    if (!count) throw RuntimeError(errors::TypeMismatch());
    return *count - 1;
}

PressureTable1671 ReadPressureTable1671(const QString& line) {
    const QStringList fields = Fields(line);
    const double pvt = Pvt(line);
    const float step = Step(line);
    const int points = PointCount1671(line);
    PressureTable1671 table;
    float pressure = kStartPressure;
    float lastPressure = kStartPressure;
    for (qsizetype i = 4; i < fields.size(); ++i) {
        const QString& sample = fields[i];
        if (sample.isEmpty() || sample.startsWith(u'/')) continue;
        if (table.PressureRowCount >= kPressureRows)
            throw RuntimeError(errors::SubscriptOutOfRange());
        table.rows.push_back(
            {SingleText(pressure), RoundedText(NumberOrThrow(sample) / 1000.0 - pvt, 3)});
        ++table.PressureRowCount;
        lastPressure = pressure;
        pressure -= step;
    }
    // The -200 row takes the free row; PressureRowCount stays where it is.
    PressureRow1671 freeRow;
    if ((points == 269 || points == 270) && table.PressureRowCount > 0 && lastPressure > -200.0f)
        freeRow = {SingleText(-200.0f), table.rows.back().compliance};
    if (table.PressureRowCount >= kPressureRows) throw RuntimeError(errors::SubscriptOutOfRange());
    table.rows.push_back(freeRow);
    return table;
}

QStringList SingleEarChart1671(const QString& line) {
    return EarChart(line, Layout::SingleEar);
}

QStringList EarFile1671(const QString& line) {
    return EarChart(line, Layout::EarFile);
}

QStringList MergedChart1671(const QString& rightText, const QString& leftText, int points) {
    EarSide r{.lines = SplitLines(rightText, LineEnds::CrLfOrLf)};
    EarSide l{.lines = SplitLines(leftText, LineEnds::CrLfOrLf)};
    QStringList chart;
    int lastPressure = 0;
    for (int lineNo = 0;; ++lineNo) {
        if (!r.held) r.read();
        if (!l.held) l.read();
        if (r.ended && l.ended) break;
        if (lineNo < kHeadLines) {
            chart << CheckedField(r.fields, 0) + u","_s + CheckedField(r.fields, 1) + u","_s +
                         CheckedField(l.fields, 1) + u","_s + CheckedField(r.fields, 2);
            continue;
        }
        const bool rightOnly = r.below(l);
        const bool leftOnly = l.below(r);
        const int pressure = leftOnly ? l.pressure : r.pressure;
        QString rightValue = r.begun ? r.lastWritten : QString();
        QString leftValue = l.begun ? l.lastWritten : QString();
        if (!leftOnly) rightValue = r.lastWritten = r.compliance;
        if (!rightOnly) leftValue = l.lastWritten = l.compliance;
        if (!rightOnly && !leftOnly) r.begun = l.begun = true;
        r.held = leftOnly;
        l.held = rightOnly;
        chart << QString::number(pressure) + u","_s + rightValue + u","_s + leftValue + u","_s;
        lastPressure = pressure;
    }
    const QString closing = points > 300 && lastPressure > 200 ? u"400,"_s : u"200,"_s;
    chart << closing + r.lastWritten + u","_s + l.lastWritten + u","_s;
    return chart;
}

QStringList ReflexChart1671(const QStringList& lines, const QString& sampleId) {
    QStringList chart;
    QStringList earsHeaded;
    QString lastKind;
    for (const QString& line : lines) {
        const QString ear = Mid(line, 34, 1);
        const QString volumeRead = Mid(line, 71, 4);
        std::optional<double> volume = ToDouble(volumeRead);
        if (volume) volume = RoundDigits(*volume / 1000.0, 4);
        if ((ear == u"R"_s || ear == u"L"_s) && !earsHeaded.contains(ear)) {
            earsHeaded << ear;
            chart << u"RS-M1,RION"_s
                  << (ear == u"R"_s ? u"Reflex,R,【右耳】"_s : u"Reflex,L,【左耳】"_s)
                  << u"ID,"_s + sampleId << u"YMD,20"_s + Mid(line, 18, 6)
                  << u"時間変化,"_s + Mid(line, 30, 4) << u"圧力,"_s + Mid(line, 35, 4) + u",daPa"_s
                  << u"等価容積,"_s +
                         (volume ? SingleText(static_cast<float>(*volume)) : volumeRead) + u",mL"_s;
        }
        // The last field holds the ETX, never a group.
        const QStringList fields = Split(line, u","_s);
        for (qsizetype i = 4; i + 1 < fields.size(); ++i) {
            const QString& group = fields[i];
            if (group.size() != 7) continue;
            const QString kind = Mid(group, 1, 1);
            lastKind = kind;
            if (i == 4) {
                chart
                    << u"連番,元データ,刺激音種類,刺激音レベル,提示及び同期／反対側,データ,/1000,差"_s;
                if (!KindWord(kind).isEmpty()) chart << KindWord(kind) + ear + u"-START"_s;
            }
            const QString side = Mid(group, 3, 1) == u"2"_s ? u"1"_s : Mid(group, 3, 1);
            const QString data = Mid(group, 4, 4);
            QString scaled = data;
            QString difference;
            if (const std::optional<double> value = ToDouble(data)) {
                const double thousandths = RoundDigits(*value / 1000.0, 4);
                scaled = SingleText(static_cast<float>(thousandths));
                // With no readable volume there is nothing to take the difference from.
                if (volume) difference = RoundedText(thousandths - *volume, 4);
            }
            chart << FormatNumber(QString::number(i), u"0000"_s) + u","_s + group + u","_s + kind +
                         u","_s + Mid(group, 2, 1) + u","_s + side + u","_s + data + u","_s +
                         scaled + u","_s + difference;
        }
        chart << KindWord(lastKind) + ear + u"-END"_s;
    }
    return chart;
}

}  // namespace orbline
