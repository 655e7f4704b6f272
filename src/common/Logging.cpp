#include "common/Logging.h"

#include "common/Clock.h"
#include "common/Form.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/TextFile.h"

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString LogTime() {
    return NowText(u"YYYY-MM-DD HH:MM:SS"_s);
}

QString Number4(std::int16_t value) {
    return FormatNumber(QString::number(value), u"0000"_s);
}

// AppPath\<store>\YYYYMM, made level by level when missing.
QString MonthFolder(const QString& store) {
    const QString top = Ctx().AppPath + u"\\"_s + store;
    if (!FolderExists(top)) MakeFolder(top);
    QString month = top + u"\\"_s + NowText(u"YYYYMM"_s);
    if (!FolderExists(month)) MakeFolder(month);
    return month;
}

bool LogSwitchedOn() {
    return Ctx().Log == u"1"_s;
}

}  // namespace

QString Code4() {
    return FormatNumber(Ctx().InstrumentCode, u"0000"_s);
}

QString ShortForm(const QString& text) {
    return text + Code4() + u":"_s + LogTime();
}

QString FullForm(const QString& text) {
    const RunContext& ctx = Ctx();
    return text + Code4() + u"-"_s + ctx.SampleId + u"-"_s + ctx.RunMark + u":"_s + LogTime();
}

QString MainLogPath() {
    return Ctx().AppPath + u"\\Tesvane"_s + Code4() + u".log"_s;
}

QString RotatedLogPath() {
    return Ctx().AppPath + u"\\Tesvane_ "_s + Code4() + u"_"_s + NowText(u"YYYY-MM-DD"_s) +
           u".log"_s;
}

void GLogEdit(const QString& /*kind*/, const QString& message) {
    Form().Txt_Log.prepend(message);
}

void GLogWrite(const QString& kind, QString& message) {
    const QString path = MainLogPath();
    if (const auto size = FileLength(path); size && *size >= kMainLogRotateBytes) {
        CopyFileOver(path, RotatedLogPath());
        DeleteFile(path);
    }
    message = u"【検査： "_s + Ctx().InstrumentCode + u"-"_s + kind + u"-"_s + LogTime() + u"】"_s +
              message;
    AppendLine(path, message);
}

void LogEvent(const QString& consoleText, const QString& fileText, LogForm form) {
    const auto tail = form == LogForm::Full ? FullForm : ShortForm;
    GLogEdit(u"0"_s, tail(consoleText));
    QString line = tail(fileText);
    GLogWrite(u"0"_s, line);
}

void LogFileOnly(const QString& fileText, LogForm form) {
    QString line = form == LogForm::Full ? FullForm(fileText) : ShortForm(fileText);
    GLogWrite(u"0"_s, line);
}

void LogTextFull(const QString& text) {
    LogEvent(text + u" "_s, text, LogForm::Full);
}

void LogDetail(const QString& text, const QString& value) {
    if (Ctx().LogMeisai != u"1"_s) return;
    QString line = text + LogTime() + u":"_s + value;
    GLogWrite(u"1"_s, line);
}

void BlockFileOut(const QString& folder, const QString& prefix, const QString& number) {
    const QString path = folder + u"\\"_s + prefix + u"_"_s + number + u".txt"_s;
    DeleteFile(path);
    WriteNewLine(path, Ctx().ReceiveBuffer.get(0).value_or(QString()));
}

std::int16_t InstrumentCodeNumber() {
    const std::optional<std::int32_t> code = ToInt32(Ctx().InstrumentCode);
    if (!code) throw RuntimeError(errors::TypeMismatch());
    if (*code < std::numeric_limits<std::int16_t>::min() ||
        *code > std::numeric_limits<std::int16_t>::max())
        throw RuntimeError(errors::Overflow());
    return static_cast<std::int16_t>(*code);
}

void SlogOut(const QString& text, std::int16_t code, const QString& stamp, std::int16_t seq) {
    if (!LogSwitchedOn()) return;
    const QString path = MonthFolder(u"Slog"_s) + u"\\"_s + Number4(code) + u"-"_s + stamp +
                         u"_"_s + Number4(seq) + u".txt"_s;
    AppendLine(path, text);
}

void TraceOut(const QString& text, std::int16_t code, const QString& name,
              const QString& /*spare*/) {
    if (!LogSwitchedOn()) return;
    const QString path =
        MonthFolder(u"Trace"_s) + u"\\"_s + Number4(code) + u"-"_s + name + u".txt"_s;
    AppendLine(path, text);
}

void SlogCopy(const QString& source, std::int16_t code, const QString& stamp, const QString& seq,
              const QString& extension) {
    if (!LogSwitchedOn()) return;
    const QString path = MonthFolder(u"Slog"_s) + u"\\"_s + Number4(code) + u"-"_s + stamp +
                         u"_"_s + seq + u"."_s + extension;
    CopyFileOver(source, path);
}

void DataSave_XXXX(const QString& number, std::int16_t kind) {
    if (kind == 1) {
        const QString folder =
            Ctx().AppPath + u"\\AppOut_"_s + FormatNumber(Ctx().InstrumentCode, u"00"_s);
        if (FolderExists(folder)) DeleteFolderTree(folder);
        MakeFolder(folder);
        Form().AppOutFolder = folder;
    }
    // The kind goes where the number text belongs, and the number into the spare argument:
    // so kind 1 always writes 0001.txt. That is how the operation has always behaved.
    DataOut(Form().AppOutFolder, QString::number(kind), number);
}

void DataOut(const QString& folder, const QString& numberText, const QString& /*spare*/) {
    const QString path = folder + u"\\"_s + FormatNumber(numberText, u"0000"_s) + u".txt"_s;
    DeleteFile(path);
    WriteNewLine(path, Ctx().ReceiveBuffer.get(0).value_or(QString()));
}

void GAbendExit() {
    RunContext& ctx = Ctx();
    if (ctx.AbendFlag != 0) {
        const QString text = u"プログラム異常終了 -- 【 "_s + ctx.AbendText + u" 】"_s;
        GLogEdit(u"0"_s, FullForm(text));
        QString line = FullForm(text);
        GLogWrite(u"0"_s, line);
    }
    UnloadForm();
    ctx.StopRequested = 1;
    EndProcess();
}

void ErrorExit(const QString& description) {
    Ctx().AbendFlag = 1;
    Ctx().AbendText = description;
    GAbendExit();
}

}  // namespace orbline
