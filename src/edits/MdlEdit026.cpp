#include "edits/MdlEdit026.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/ResultDelivery.h"

#include <QStringView>

#include <cstdint>
#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Item {
    QStringView code;
    QStringView name;
};

// Positions 1 to 6 of the item table.
constexpr Item kItems[] = {
    {u"2620010", u"IOP-R"},   {u"2620020", u"IOP-L"}, {u"2620030", u"C.IOP-R"},
    {u"2620040", u"C.IOP-L"}, {u"2620050", u"CCT-R"}, {u"2620060", u"CCT-L"},
};

// The measurement a value line of the default layout belongs to; set by the section's title
// line and forgotten at the start of each block.
enum class Section { None, Iop, CorrectedIop, Cct };

QString Without(QString text, QChar c) {
    return text.remove(c);
}

bool Holds(const QString& line, QStringView part) {
    return line.contains(part, Qt::CaseSensitive);
}

void AppendRow(ScanState2620& state, int item, const QString& value) {
    if (static_cast<qsizetype>(state.rows.size()) >= kMaxRows2620)
        throw RuntimeError(errors::SubscriptOutOfRange());
    const Item& it = kItems[item - 1];
    state.rows.push_back({state.date, state.time, state.sampleId, it.code.toString(),
                          it.name.toString(), value, state.unit, u"000000"_s});
}

void ScanFtLine(const QString& line, const ScanInputs2620& inputs, ScanState2620& state) {
    if (const qsizetype maker = InStr(line, u"TOMEY"_s); maker > 0) {
        const qsizetype p = maker + 12;
        state.sampleId = ApplyIdEntryRule(SampleNumberAsRead(Mid(line, p, 6)), inputs.sampleRule);
        state.date = Without(u"20"_s + Mid(line, p + 6, 8), u'.');
        state.time = Without(Mid(line, p + 15, 5) + u"00"_s, u':');
        return;
    }
    if (Holds(line, u"@NT") || Holds(line, u"<STANDARD>") || Holds(line, u"<BY TIME>") ||
        Holds(line, u"<BY RELIAB"))
        return;
    if (const qsizetype at = InStr(line, u"TR"_s); at > 0) {
        AppendRow(state, 1, Trim(Mid(line, at + 2, 2)));
        return;
    }
    if (const qsizetype at = InStr(line, u"TL"_s); at > 0)
        AppendRow(state, 2, Trim(Mid(line, at + 2, 2)));
}

void ScanDefaultLine(const QString& line, const ScanInputs2620& inputs, Section& section,
                     ScanState2620& state) {
    if (const qsizetype slash = InStr(line, u"/"_s); slash > 0) {
        const qsizetype p = slash - 4;
        if (p < 1) {
            // No room for a year in front of the slash: not a date of ours.
            state.date = inputs.today;
            state.time = u"000000"_s;
        } else {
            state.date = Without(Mid(line, p, 10), u'/');
            state.time = Without(Mid(line, p + 11, 5) + u"00"_s, u':');
        }
        return;
    }
    if (Holds(line, u"No.") || Holds(line, u"ID")) {
        QString read = u"0"_s;
        if (const qsizetype colon = InStr(line, u":"_s); colon > 0)
            read = SampleNumberAsRead(Mid(line, colon + 1, 20));
        state.sampleId = ApplyIdEntryRule(read, inputs.sampleRule);
        return;
    }
    if (Holds(line, u"<STANDARD>") || Holds(line, u"<BY TIME>") || Holds(line, u"<BY RELIAB"))
        return;
    std::optional<Section> title;
    if (Holds(line, u"[IOP]"))
        title = Section::Iop;
    else if (Holds(line, u"[C.IOP]"))
        title = Section::CorrectedIop;
    else if (Holds(line, u"[CCT]"))
        title = Section::Cct;
    if (title) {
        section = *title;
        state.unit = Trim(Mid(line, 16, 4));
        return;
    }
    if (Mid(line, 4, 5) == u"RIGHT"_s) return;  // the column header

    const QString right = Mid(line, 4, 5);
    const QString left = Mid(line, 13, 5);
    switch (section) {
        case Section::Iop:
            // Only the average carries a bracket; single readings are not reported.
            if (!Holds(line, u"[")) return;
            AppendRow(state, 1, right);
            AppendRow(state, 2, left);
            return;
        case Section::CorrectedIop:
            // The corrected pressure is printed once, without a bracket: every line counts.
            AppendRow(state, 3, right);
            AppendRow(state, 4, left);
            return;
        case Section::Cct:
            if (!Holds(line, u"[")) return;
            AppendRow(state, 5, right);
            AppendRow(state, 6, left);
            return;
        case Section::None:
            return;
    }
}

void WriteRows(const std::vector<Row2620>& rows, const EditSettings& settings) {
    RunContext& c = Ctx();
    const QString lines = ResultLines2620(rows, settings);
    // The log lines show the sample number of the last row, and the run mark once a line is
    // built.
    c.SampleId = rows.back().sampleId;
    if (!lines.isEmpty()) c.RunMark = settings.runMarkDefault;
    // The file exists even when every row was skipped: delivery then deletes it.
    WriteAndDeliverOrThrow(lines);
}

void RunEdit() {
    RunContext& c = Ctx();
    // What the log lines show until rows are written.
    c.SampleId = u"0"_s;
    c.RunMark = u"0"_s;
    const EditSettings settings = EditSettingsFromContext();
    const ScanInputs2620 inputs{c.FT01Format == u"1"_s, NowText(u"YYYYMMDD"_s),
                                settings.sampleRule};
    ScanState2620 state = StartScan2620(inputs);
    const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
    for (std::int16_t i = 0; i < c.BlockCount; ++i) {
        const QString& block = c.BlockList.checked(i);
        SlogOut(block, InstrumentCodeNumber(), stamp, i);
        ScanBlock2620(block, inputs, state);
    }
    if (state.rows.empty()) {
        LogNoOutput();
        return;
    }
    WriteRows(state.rows, settings);
}

}  // namespace

ScanState2620 StartScan2620(const ScanInputs2620& inputs) {
    ScanState2620 state;
    state.date = inputs.today;
    return state;
}

void ScanBlock2620(const QString& block, const ScanInputs2620& inputs, ScanState2620& state) {
    if (block.size() < (inputs.ftLayout ? 3 : 5)) return;
    Section section = Section::None;
    // Lines end in CR only; an LF stays at the start of the next line and shifts its columns.
    for (const QString& line : Split(block, u"\r"_s)) {
        if (inputs.ftLayout)
            ScanFtLine(line, inputs, state);
        else
            ScanDefaultLine(line, inputs, section, state);
    }
}

QString ResultLines2620(const std::vector<Row2620>& rows, const EditSettings& settings) {
    QString lines;
    for (const Row2620& row : rows) {
        const QString value = Trim(row.value);
        if (value.isEmpty()) continue;
        const ResultFields fields{.KensaDate = row.date,
                                  .KensaTime = row.time,
                                  .RunMark = settings.runMarkDefault,
                                  .SampleId = row.sampleId,
                                  .InstrumentCode = settings.instrumentCode,
                                  .InstrumentName = settings.instrumentName,
                                  .SampleSeq = row.seq,
                                  .ItemCode = Trim(row.itemCode).replace(u',', u'.'),
                                  .ItemName = Trim(row.itemName).replace(u',', u'.'),
                                  // Keeps the printed number of decimals.
                                  .ResultValue = FormatOwnDecimals(value),
                                  .ResultUnit = row.unit};
        lines += ResultRecordLine(fields) + u"\r\n"_s;
    }
    return lines;
}

void EditResult2620() {
    try {
        RunEdit();
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
