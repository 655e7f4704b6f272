#pragma once
// Result records and their delivery: a file is built in the work folder and moved into the
// delivery folder only when complete, under a name that no earlier file of this process had.

#include <QString>

#include <cstdint>
#include <optional>

namespace orbline {

// The reset at the start of each message and line: "000000" for SampleSeq, "MIN" for
// ResultKind, "0" for RunMark and SampleId, the empty text for the other record fields.
void ResetResultFields();

// The same without the examination date and time and the judge fields, which some edits keep
// from the message before.
void ResetSampleAndItemFields();
// ResultValue trimmed, "<" and ">" replaced by their full-width forms.
void CleanResultValue();
// Cleans ResultValue, then builds the 19 fields joined by "," into ResultLine and returns it.
QString ResultRecord();

// folder\code-prefix-stampserial~KVB.csv, stamp "YYYYMMDDHHMMDD", serial OutSerial in "00000"
// after adding 1. Makes the folder (one level) when missing and deletes a file of that name.
void MakeOutFile(const QString& folder, QString& path);
void MakeOutFileEx(const QString& folder, QString& path, const QString& prefix);

// 1 when the first match of the kind's pattern in the folder (kind 1 "*.csv", 2 "*.txt",
// 3 "*uke.txt") has a name of more than one character, else 0.
std::int16_t HasFiles(std::int16_t kind, const QString& folder);

enum class Delivery { Delivered, Empty };
// The common end of a result edit, for a closed work file: when it holds bytes, a new name in
// JyusinDataPath and the move ("出力完了(Write) -- "); when empty, its deletion
// ("Size=0のため出力なし -- "). A failed move throws RuntimeError and leaves the work file.
Delivery DeliverWorkFile(const QString& workPath, QString* deliveredPath = nullptr);
// The same move and log with no test of the size, for an edit that delivers its work file even
// when it is empty (1160). A failed move throws RuntimeError and leaves the work file.
void DeliverWorkFileAsIs(const QString& workPath, QString* deliveredPath = nullptr);
// Logs "出力データなし -- " for an edit that had no rows at all.
void LogNoOutput();

}  // namespace orbline
