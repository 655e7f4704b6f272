#pragma once
// The logs: the console box, the main log file with its rotation, the block files, the
// monthly Slog and Trace folders, and the abnormal end. A log never stops the link: every
// write that fails loses its line and nothing else happens.

#include <QString>

#include <cstdint>

namespace orbline {

// Size at which the main log is rotated before the next line.
inline constexpr std::int64_t kMainLogRotateBytes = 1000001;

// InstrumentCode through the mask "0000".
QString Code4();
// text + code + ":" + time.
QString ShortForm(const QString& text);
// text + code + "-" + SampleId + "-" + RunMark + ":" + time.
QString FullForm(const QString& text);

QString MainLogPath();
QString RotatedLogPath();

// Console: message on top of the old text. The kind is ignored.
void GLogEdit(const QString& kind, const QString& message);
// Main log: appends "【検査： " + code + "-" + kind + "-" + time + "】" + message + CR LF.
// The message is replaced by the finished line.
void GLogWrite(const QString& kind, QString& message);

enum class LogForm { Short, Full };
// The usual pair: the console text to GLogEdit, then the file text to GLogWrite, each with
// its own time stamp in the given form, kind "0".
void LogEvent(const QString& consoleText, const QString& fileText, LogForm form);
// A text of the dialogues that log it once: the console text one blank longer, both in the
// full form.
void LogTextFull(const QString& text);
// The file text alone, kind "0".
void LogFileOnly(const QString& fileText, LogForm form);
// A numbered detail line, kind "1", only when LogMeisai is "1": the text, the time, ":" and the
// value.
void LogDetail(const QString& text, const QString& value);

// Block file folder\prefix_number.txt, written anew with ReceiveBuffer(0) + CR LF.
void BlockFileOut(const QString& folder, const QString& prefix, const QString& number);
// InstrumentCode as the 16-bit number that SlogOut, TraceOut and SlogCopy take. Throws
// RuntimeError when it is no number or out of range.
std::int16_t InstrumentCodeNumber();
// Only when the setting Log is "1".
void SlogOut(const QString& text, std::int16_t code, const QString& stamp, std::int16_t seq);
void TraceOut(const QString& text, std::int16_t code, const QString& name, const QString& spare);
void SlogCopy(const QString& source, std::int16_t code, const QString& stamp, const QString& seq,
              const QString& extension);
// Public operations of the form for outside use; no dialogue calls them.
void DataSave_XXXX(const QString& number, std::int16_t kind);
void DataOut(const QString& folder, const QString& numberText, const QString& spare);

// Logs the abnormal end when AbendFlag is set and ends the process: status 1 when AbendFlag is
// set, 0 otherwise.
[[noreturn]] void GAbendExit();
// The error exit of a procedure that has one: AbendFlag 1, the error's description in
// AbendText, then GAbendExit.
[[noreturn]] void ErrorExit(const QString& description);

}  // namespace orbline
