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

namespace {

QString CleanedValue(const QString& value) {
    return Trim(value).replace(u'<', u'＜').replace(u'>', u'＞');
}

}  // namespace

QString ResultRecordLine(const ResultFields& f) {
    const QStringList fields{f.KensaDate,      f.KensaTime,
                             f.RunMark,        f.SampleId,
                             f.InstrumentCode, f.InstrumentName,
                             f.SampleSeq,      f.ItemCode,
                             f.ItemName,       f.JudgeFlag,
                             f.Judge1,         f.Judge2,
                             f.Extra1,         CleanedValue(f.ResultValue),
                             f.ResultUnit,     f.ResultKind,
                             f.Extra2,         f.Extra3,
                             f.ResultComment};
    return fields.join(u',');
}

namespace {

QString NextOutName(const QString& folder, const QString& prefix) {
    RunContext& c = Ctx();
    if (!FolderExists(folder)) MakeFolder(folder);
    const QString stamp = NowText(u"YYYYMMDDHHMMDD"_s);
    c.OutSerial += 1;
    return folder + u"\\"_s + c.InstrumentCode + u"-"_s + prefix + u"-"_s + stamp +
           FormatNumber(QString::number(c.OutSerial), u"00000"_s) + u"~KVB.csv"_s;
}

}  // namespace

void MakeOutFileEx(const QString& folder, QString& path, const QString& prefix) {
    path = NextOutName(folder, prefix);
    DeleteFile(path);
}

void MakeOutFile(const QString& folder, QString& path) {
    Ctx().OutFolder = folder;
    MakeOutFileEx(folder, path, Ctx().IniPrefix);
}

void MakeDeliveryName(const QString& folder, QString& path) {
    Ctx().OutFolder = folder;
    path = NextOutName(folder, Ctx().IniPrefix);
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

// Names one process may find taken in a row before its move counts as failed.
constexpr int kDeliveryNameTries = 100000;

// The move, then the log pair "出力完了(Write) -- ".
void MoveIntoDelivery(const QString& workPath, FailedMove failedMove, QString* deliveredPath) {
    if (!MoveToDeliveryName(workPath, deliveredPath) && failedMove == FailedMove::Throws)
        throw RuntimeError(errors::PathNotFound());
    LogEvent(u"出力完了(Write) -- "_s, u"出力完了(Write) -- "_s, LogForm::Full);
}

// The move under the names nextName gives, until one is free.
template <typename NextName>
bool MoveToFreeName(const QString& workPath, NextName nextName, QString* movedPath) {
    QString target;
    MoveResult moved = MoveResult::TargetExists;
    for (int tries = 0; tries < kDeliveryNameTries && moved == MoveResult::TargetExists; ++tries) {
        target = nextName();
        moved = MoveFileDurable(workPath, target);
    }
    if (moved != MoveResult::Moved) return false;
    if (movedPath != nullptr) *movedPath = target;
    return true;
}

}  // namespace

bool MoveToDeliveryName(const QString& workPath, QString* deliveredPath) {
    return MoveToFreeName(
        workPath,
        [] {
            QString target;
            MakeDeliveryName(Ctx().JyusinDataPath, target);
            return target;
        },
        deliveredPath);
}

bool MoveToOutNameEx(const QString& workPath, const QString& folder, const QString& prefix,
                     QString* movedPath) {
    return MoveToFreeName(
        workPath, [&] { return NextOutName(folder, prefix); }, movedPath);
}

Delivery DeliverWorkFile(const QString& workPath, FailedMove failedMove, QString* deliveredPath) {
    const auto length = FileLength(workPath);
    if (!length) throw RuntimeError(errors::FileNotFound());
    if (*length == 0) {
        DeleteFile(workPath);
        LogEvent(u"Size=0のため出力なし -- "_s, u"Size=0のため出力なし -- "_s, LogForm::Full);
        return Delivery::Empty;
    }
    MoveIntoDelivery(workPath, failedMove, deliveredPath);
    return Delivery::Delivered;
}

void DeliverWorkFileAsIs(const QString& workPath, QString* deliveredPath) {
    MoveIntoDelivery(workPath, FailedMove::Throws, deliveredPath);
}

void LogNoOutput() {
    LogEvent(u"出力データなし -- "_s, u"出力データなし -- "_s, LogForm::Full);
}

}  // namespace orbline
