#include "edits/MdlEdit016.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/ResultDelivery.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString ErrorLine(const QString& text, const EditSettings& settings) {
    return text + u","_s + settings.instrumentCode + u","_s + settings.instrumentName;
}

QString SampleId1671(const QString& line, const SampleRule& rule) {
    return SampleNumberAsRead(ApplyIdEntryRule(SampleNumberAsRead(Mid(line, 5, 10)), rule));
}

QString FileText(const QStringList& lines) {
    return lines.join(u"\r\n"_s) + u"\r\n"_s;
}

QStringList LinesUsed(const QStringList& lines, Call1671 call) {
    switch (call) {
        case Call1671::OneEar:
            return lines.mid(0, 1);
        case Call1671::BothEars:
            return lines.mid(0, 2);
        case Call1671::Reflex:
            return lines;
    }
    return lines;
}

// The two lines go through their ear files, AppPath\1671-<id>-<ear>.csv, which are deleted
// again. Nothing when the right or the left file is missing (two lines of one ear).
std::optional<QStringList> MergeThroughEarFiles(const QString& first, const QString& second,
                                                const QString& sampleId) {
    const QString base = Ctx().AppPath + u"\\1671-"_s + sampleId + u"-"_s;
    QStringList paths{base + u"R.csv"_s, base + u"L.csv"_s};
    // A file left by an earlier run must never stand in for an ear this pair lacks.
    for (const QString& path : paths) DeleteFile(path);
    for (const QString& line : {first, second}) {
        const QString path = base + Mid(line, 34, 1) + u".csv"_s;
        if (!paths.contains(path)) paths << path;
        DeleteFile(path);
        if (!WriteNewText(path, FileText(EarFile1671(line))))
            throw RuntimeError(errors::PathNotFound());
    }
    std::optional<QString> right;
    std::optional<QString> left;
    if (FileExists(paths[0]) && FileExists(paths[1])) {
        right = ReadAllText(paths[0]);
        left = ReadAllText(paths[1]);
        if (!right || !left) throw RuntimeError(errors::FileNotFound());
    }
    for (const QString& path : paths) DeleteFile(path);
    if (!right) return std::nullopt;
    return MergedChart1671(*right, *left, PointCount1671(second));
}

// The chart is written whole in the work folder and then moved, since the laboratory system
// reads JyusinDataPath2 too: it never sees a part of a chart, nor loses one to a name taken.
QString DeliverChart(const QString& workPath, const QStringList& chart, const QString& prefix) {
    const QString chartWork = workPath + u".chart"_s;
    if (!WriteNewText(chartWork, FileText(chart))) throw RuntimeError(errors::PathNotFound());
    QString chartPath;
    if (!MoveToOutNameEx(chartWork, Ctx().JyusinDataPath2, prefix, &chartPath))
        throw RuntimeError(errors::PathNotFound());
    return chartPath;
}

QString ResultLines1671(const QStringList& lines, Call1671 call, const EditSettings& settings,
                        const QString& workPath) {
    if (const std::optional<QString> rejected = RejectedLine1671(lines, call, settings))
        return *rejected + u"\r\n"_s;
    RunContext& c = Ctx();
    const QString& first = lines.first();
    const QString sampleId = SampleId1671(first, settings.sampleRule);
    c.SampleId = sampleId;
    QString dateLine = first;
    QStringList chart;
    switch (call) {
        case Call1671::OneEar:
            chart = SingleEarChart1671(first);
            break;
        case Call1671::BothEars: {
            dateLine = lines.value(1);
            std::optional<QStringList> merged = MergeThroughEarFiles(first, dateLine, sampleId);
            if (!merged)
                return ErrorLine(u"ERROR:検査データ左右なし（システム障害）"_s, settings) +
                       u"\r\n"_s;
            chart = *merged;
            break;
        }
        case Call1671::Reflex:
            chart = ReflexChart1671(lines, sampleId);
            break;
    }
    const bool reflex = call == Call1671::Reflex;
    const ResultFields record{
        .KensaDate = u"20"_s + Mid(dateLine, 18, 6),
        .KensaTime = u"000000"_s,
        .RunMark = settings.runMarkDefault,
        .SampleId = sampleId,
        .InstrumentCode = settings.instrumentCode,
        .InstrumentName = reflex ? c.CrpName : settings.instrumentName,
        .Extra2 = DeliverChart(workPath, chart, reflex ? u"R"_s : u"T"_s),
    };
    c.RunMark = settings.runMarkDefault;
    return ResultRecordLine(record) + u"\r\n"_s;
}

}  // namespace

std::optional<QString> RejectedLine1671(const QStringList& lines, Call1671 call,
                                        const EditSettings& settings) {
    const QString first = lines.value(0);
    if (first.isEmpty()) return ErrorLine(u"ERROR:受信データなし。"_s, settings);
    const QString marker = Mid(first, 3, 1);
    if (marker != u"J"_s && marker != u"M"_s)
        return ErrorLine(u"ERROR:検査名が違います。 "_s + marker, settings);
    if (call == Call1671::BothEars) {
        const QString firstDate = Mid(first, 18, 6);
        const QString secondDate = Mid(lines.value(1), 18, 6);
        if (firstDate != secondDate)
            return ErrorLine(
                u"ERROR:検査日が左右で違います。　"_s + firstDate + u"-"_s + secondDate, settings);
    }
    return std::nullopt;
}

void EditResult1671(const QStringList& lines, Call1671 call) {
    try {
        const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        const std::int16_t code = InstrumentCodeNumber();
        for (const QString& line : LinesUsed(lines, call)) SlogOut(line, code, stamp, 1);
        const EditSettings settings = EditSettingsFromContext();
        WriteAndDeliverOrThrow([&](const QString& workPath) {
            return ResultLines1671(lines, call, settings, workPath);
        });
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
