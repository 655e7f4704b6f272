#include "edits/MdlEdit009.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/PieceFiles.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

constexpr QChar kDel{0x7F};

// The meter pads its text fields with DEL; the value is trimmed once they are gone.
QString TextValue(const QString& value) {
    return Trim(QString(value).remove(kDel));
}

// A field is a three-character tag, a separator, and the value from position 5.
void ReadField(const QString& field, Measurement0990& row, const SampleRule& rule) {
    const QString tag = Left(field, 3);
    const auto value = [&](qsizetype width) { return Mid(field, 5, width); };
    if (tag == u"PID"_s)
        row.sampleId = ApplyIdEntryRule(SampleNumberAsRead(TextValue(value(16))), rule);
    else if (tag == u"BGD"_s)
        row.value = value(4);
    else if (tag == u"JDG"_s)
        row.judgement = value(1);
    else if (tag == u"DAT"_s)
        row.kensaDate = u"20"_s + value(6);
    else if (tag == u"TIM"_s)
        row.kensaTime = value(6);
    else if (tag == u"CMT"_s)
        row.comment = TextValue(value(16));
    // SNB, OID, SID, TMP, BGR, BTY, RTY and QCS are the meter's own and go nowhere.
}

QString JudgeFlagOf(const QString& judgement) {
    if (judgement == u"1"_s) return u"L"_s;
    if (judgement == u"2"_s) return u"H"_s;
    return QString();
}

}  // namespace

std::vector<Measurement0990> ParseFrames0990(const QStringList& frameTexts,
                                             const SampleRule& rule) {
    std::vector<Measurement0990> rows;
    // A record with no PID still gets the identifier of the rule.
    const Measurement0990 fresh{.sampleId = ApplyIdEntryRule(u"0"_s, rule)};
    for (const QString& text : frameTexts) {
        for (const QString& line : SplitLines(text, LineEnds::CrOrCrLf)) {
            if (Mid(line, 2, 1) != u"D"_s) continue;
            // Cutting ETX and one checksum digit leaves the other digit at the end of the body;
            // the fixed widths of the values keep it out of what is read.
            const QString frame = Left(line, line.size() - 2);
            const QString type = Trim(Mid(frame, 5, 2));
            if (type != u"BD"_s) continue;
            if (rows.size() == kMaxMeasurements0990)
                throw RuntimeError(errors::SubscriptOutOfRange());
            rows.push_back(fresh);
            for (const QString& field : Split(Mid(frame, 7), u"|"_s))
                ReadField(field, rows.back(), rule);
        }
    }
    return rows;
}

QString ResultLines0990(const Measurement0990& m, const EditSettings& settings) {
    ResultFields fields{.KensaDate = m.kensaDate,
                        .KensaTime = m.kensaTime,
                        .SampleId = m.sampleId,
                        .InstrumentCode = settings.instrumentCode,
                        .InstrumentName = settings.instrumentName,
                        .ItemCode = u"0990010"_s,
                        .ItemName = u"血糖"_s,
                        .JudgeFlag = JudgeFlagOf(m.judgement),
                        .ResultValue = FormatOwnDecimals(m.value),
                        .ResultUnit = u"mg/dL"_s};
    QString lines = ResultRecordLine(fields) + u"\r\n"_s;
    const QString comment = Trim(m.comment);
    if (comment.isEmpty()) return lines;
    fields.ItemCode = u"0990020"_s;
    fields.ItemName = u"コメント"_s;
    fields.JudgeFlag.clear();
    fields.ResultValue = comment;
    fields.ResultUnit.clear();
    return lines + ResultRecordLine(fields) + u"\r\n"_s;
}

void EditResult0990(std::int16_t& pieceCount) {
    try {
        RunContext& c = Ctx();
        c.SampleId = u"0"_s;
        c.RunMark = u"0"_s;
        const EditSettings settings = EditSettingsFromContext();
        const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        const std::vector<Measurement0990> rows =
            ParseFrames0990(ReadPieceTexts(u"c990"_s, u"c990"_s, pieceCount, stamp,
                                           {.strip = {}, .onError = OnError::ErrorExit}),
                            settings.sampleRule);
        // Every file is complete before the first is delivered: the laboratory system sees the
        // measurements of a transmission all at once, and a failure on the way delivers none.
        QStringList workPaths;
        for (const Measurement0990& row : rows) {
            QString workPath;
            MakeOutFile(c.JyusinWKPath, workPath);
            if (!WriteNewText(workPath, ResultLines0990(row, settings)))
                throw RuntimeError(errors::PathNotFound());
            workPaths.append(workPath);
        }
        for (const QString& workPath : workPaths)
            if (!MoveToDeliveryName(workPath)) throw RuntimeError(errors::PathNotFound());
        if (!rows.empty()) c.SampleId = rows.back().sampleId;
        LogEvent(u"出力完了(Write) -- "_s, u"出力完了(Write) -- "_s, LogForm::Full);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
