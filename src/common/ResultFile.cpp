#include "common/ResultFile.h"

#include "common/Clock.h"
#include "common/FindFiles.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace orbline {

void ResetSampleAndItemFields() {
    RunContext& c = Ctx();
    c.RunMark = u"0"_s;
    c.SampleId = u"0"_s;
    c.SampleSeq = u"000000"_s;
    c.ItemCode.clear();
    c.ItemName.clear();
    c.Extra1.clear();
    c.ResultValue.clear();
    c.ResultUnit.clear();
    c.ResultKind = u"MIN"_s;
    c.Extra2.clear();
    c.Extra3.clear();
    c.ResultComment.clear();
}

void ResetResultFields() {
    ResetSampleAndItemFields();
    RunContext& c = Ctx();
    c.KensaDate.clear();
    c.KensaTime.clear();
    c.JudgeFlag.clear();
    c.Judge1.clear();
    c.Judge2.clear();
}

void CleanResultValue() {
    RunContext& c = Ctx();
    c.ResultValue = Trim(c.ResultValue).replace(u'<', u'＜').replace(u'>', u'＞');
}

QString ResultRecord() {
    CleanResultValue();
    RunContext& c = Ctx();
    const QStringList fields{c.KensaDate,      c.KensaTime,      c.RunMark,      c.SampleId,
                             c.InstrumentCode, c.InstrumentName, c.SampleSeq,    c.ItemCode,
                             c.ItemName,       c.JudgeFlag,      c.Judge1,       c.Judge2,
                             c.Extra1,         c.ResultValue,    c.ResultUnit,   c.ResultKind,
                             c.Extra2,         c.Extra3,         c.ResultComment};
    c.ResultLine = fields.join(u',');
    return c.ResultLine;
}

void MakeOutFileEx(const QString& folder, QString& path, const QString& prefix) {
    RunContext& c = Ctx();
    if (!FolderExists(folder)) MakeFolder(folder);
    const QString stamp = NowText(u"YYYYMMDDHHMMDD"_s);
    c.OutSerial += 1;
    path = folder + u"\\"_s + c.InstrumentCode + u"-"_s + prefix + u"-"_s + stamp +
           FormatNumber(QString::number(c.OutSerial), u"00000"_s) + u"~KVB.csv"_s;
    DeleteFile(path);
}

void MakeOutFile(const QString& folder, QString& path) {
    Ctx().OutFolder = folder;
    MakeOutFileEx(folder, path, Ctx().IniPrefix);
}

std::int16_t HasFiles(std::int16_t kind, const QString& folder) {
    QString pattern;
    switch (kind) {
        case 1:
            pattern = u"*.csv"_s;
            break;
        case 2:
            pattern = u"*.txt"_s;
            break;
        case 3:
            pattern = u"*uke.txt"_s;
            break;
        default:
            return 0;
    }
    const QStringList names = FilesMatching(folder, pattern);
    return (!names.isEmpty() && names.first().size() > 1) ? 1 : 0;
}

namespace {

// A new name in JyusinDataPath, the move there, and the log pair "出力完了(Write) -- ".
void MoveIntoDelivery(const QString& workPath, QString* deliveredPath) {
    QString target;
    MakeOutFile(Ctx().JyusinDataPath, target);
    if (!MoveFileDurable(workPath, target)) throw RuntimeError(errors::PathNotFound());
    if (deliveredPath != nullptr) *deliveredPath = target;
    LogEvent(u"出力完了(Write) -- "_s, u"出力完了(Write) -- "_s, LogForm::Full);
}

}  // namespace

Delivery DeliverWorkFile(const QString& workPath, QString* deliveredPath) {
    const auto length = FileLength(workPath);
    if (!length) throw RuntimeError(errors::FileNotFound());
    if (*length == 0) {
        DeleteFile(workPath);
        LogEvent(u"Size=0のため出力なし -- "_s, u"Size=0のため出力なし -- "_s, LogForm::Full);
        return Delivery::Empty;
    }
    MoveIntoDelivery(workPath, deliveredPath);
    return Delivery::Delivered;
}

void DeliverWorkFileAsIs(const QString& workPath, QString* deliveredPath) {
    MoveIntoDelivery(workPath, deliveredPath);
}

void LogNoOutput() {
    LogEvent(u"出力データなし -- "_s, u"出力データなし -- "_s, LogForm::Full);
}

}  // namespace orbline
