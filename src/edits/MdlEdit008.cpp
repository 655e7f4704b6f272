#include "edits/MdlEdit008.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"

#include <QStringView>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Test0855 {
    QStringView name;
    QStringView gradeName;
    QStringView valueCode;
    QStringView gradeCode;
};

// In the order the records are written.
constexpr Test0855 kTests[] = {
    {u"GLU", u"GLU(定性)", u"0850010", u"0850150"},
    {u"PRO", u"PRO(定性)", u"0850020", u"0850160"},
    {u"BIL", u"BIL(定性)", u"0850030", u"0850170"},
    {u"URO", u"URO(定性)", u"0850040", u"0850180"},
    {u"PH", u"PH(定性)", u"0850050", u"0850190"},
    {u"S.G.", u"S.G.(定性)", u"0850060", u"0850200"},
    {u"BLD", u"BLD(定性)", u"0850070", u"0850210"},
    {u"KET", u"KET(定性)", u"0850080", u"0850220"},
    {u"NIT", u"NIT(定性)", u"0850090", u"0850230"},
    {u"LEU", u"LEU(定性)", u"0850100", u"0850240"},
    {u"CRE", u"CRE(定性)", u"0850110", u"0850250"},
    {u"ALB", u"ALB(定性)", u"0850120", u"0850260"},
    {u"A/C", u"A/C(定性)", u"0850130", u"0850270"},
    {u"P/C", u"P/C(定性)", u"0850140", u"0850280"},
};

constexpr QStringView kModels[] = {u"VPU-4210", u"VPU-4010", u"VAE-4020"};

// Shorter frames carry no print line.
constexpr qsizetype kShortestFrame = 6;

// Behind a test name at p: the mark at p + 6, the grade, the value and the unit.
constexpr qsizetype kMarkOffset = 6;
constexpr qsizetype kGradeOffset = 7;
constexpr qsizetype kValueOffset = 13;
constexpr qsizetype kUnitOffset = 19;
constexpr qsizetype kFieldWidth = 6;

bool IsKnownModel(const QString& model) {
    for (QStringView known : kModels)
        if (model == known) return true;
    return false;
}

// The printed grade as the laboratory system takes it; URO prints its normal as "N".
QString Grade(const QString& printed, bool uro) {
    QString grade = Trim(printed);
    if (grade == u"NORMAL"_s || grade == u"NEG."_s) grade = uro ? u"N"_s : u"-"_s;
    // The marked forms go first, so that their "*" does not stay behind a plus.
    static constexpr std::pair<QStringView, QStringView> kReplacements[] = {
        {u"<", u"＜"},     {u">", u"＞"}, {u"1+*", u"+"}, {u"2+*", u"++"}, {u"3+*", u"+++"},
        {u"4+*", u"++++"}, {u"1+", u"+"}, {u"2+", u"++"}, {u"3+", u"+++"}, {u"4+", u"++++"},
    };
    for (const auto& [from, to] : kReplacements) grade.replace(from.toString(), to.toString());
    return grade;
}

QString SampleSeqOf(const QString& printed) {
    return IsNumeric(printed) ? FormatNumber(printed, u"000000"_s) : printed;
}

}  // namespace

QString ReportText0855(const QStringList& frames) {
    QString text;
    for (const QString& frame : frames)
        if (frame.size() >= kShortestFrame) text += frame;
    return text;
}

Edit0855 ResultLines0855(const QStringList& frames, const EditSettings& settings) {
    Edit0855 edit;
    const QString tail = u","_s + settings.instrumentCode + u","_s + settings.instrumentName;
    if (frames.isEmpty() || frames.first().isEmpty()) {
        edit.lines = u"ERROR:受信データなし。"_s + tail + u"\r\n"_s;
        return edit;
    }
    const QString text = ReportText0855(frames);
    const QString model = Mid(text, 2, 8);
    if (!IsKnownModel(model)) {
        edit.lines = u"ERROR:検査機器が違います。"_s + model + tail + u"\r\n"_s;
        return edit;
    }
    edit.sampleId =
        ApplyIdEntryRule(SampleNumberAsRead(Trim(Mid(text, 20, 13))), settings.sampleRule);
    ResultFields fields{.KensaDate = Mid(text, 34, 10).remove(u'/'),
                        .KensaTime = QString(Mid(text, 45, 5) + u"00"_s).remove(u':'),
                        .RunMark = settings.runMarkDefault,
                        .SampleId = edit.sampleId,
                        .InstrumentCode = settings.instrumentCode,
                        .InstrumentName = settings.instrumentName,
                        .SampleSeq = SampleSeqOf(Mid(text, 54, 4))};
    for (const Test0855& test : kTests) {
        const QString name = test.name.toString();
        // The first place wins, even one in the header: the printout has no fields to go by.
        const qsizetype p = InStr(text, name);
        if (p == 0) continue;
        const QString value = Trim(Mid(text, p + kValueOffset, kFieldWidth));
        if (!value.isEmpty()) {
            fields.ItemName = name;
            fields.ItemCode = test.valueCode.toString();
            fields.ResultValue = FormatOwnDecimals(value);
            fields.ResultUnit = Trim(Mid(text, p + kUnitOffset, kFieldWidth));
            fields.JudgeFlag.clear();
            edit.lines += ResultRecordLine(fields) + u"\r\n"_s;
            edit.recordBuilt = true;
        }
        const QString grade = Trim(Mid(text, p + kGradeOffset, kFieldWidth));
        if (!grade.isEmpty()) {
            fields.ItemName = test.gradeName.toString();
            fields.ItemCode = test.gradeCode.toString();
            fields.ResultValue = Grade(grade, test.name == u"URO");
            fields.ResultUnit.clear();
            const bool marked = Trim(Mid(text, p + kMarkOffset, 1)) == u"*"_s;
            fields.JudgeFlag = marked ? u"H"_s : QString();
            edit.lines += ResultRecordLine(fields) + u"\r\n"_s;
            edit.recordBuilt = true;
        }
    }
    return edit;
}

void EditResult0855(std::int16_t lastIndex) {
    try {
        RunContext& c = Ctx();
        const QString stamp = NowText(u"YYYYMMDDHHMMSS"_s);
        QStringList frames;
        for (std::int16_t i = 0; i <= lastIndex; ++i) {
            frames.append(c.ReceiveBuffer.checked(i));
            SlogOut(frames.back(), InstrumentCodeNumber(), stamp, i);
        }
        const EditSettings settings = EditSettingsFromContext();
        const Edit0855 edit = ResultLines0855(frames, settings);
        c.SampleId = edit.sampleId;
        c.RunMark = edit.recordBuilt ? settings.runMarkDefault : u"0"_s;
        // Written aside and moved in whole: the laboratory system never sees a file grow.
        QString workPath;
        MakeOutFile(c.JyusinWKPath, workPath);
        if (!WriteNewText(workPath, edit.lines)) throw RuntimeError(errors::PathNotFound());
        // A known model without a test the edit reads still gives its (empty) file.
        DeliverWorkFileAsIs(workPath);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
