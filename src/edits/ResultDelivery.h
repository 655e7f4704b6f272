#pragma once
// The write and delivery of a result file: for the edits that pass their errors over (0980,
// 1190), every step that fails has no effect and the next one runs; for the edits with an error
// exit, the first step that fails throws.

#include <QString>

#include <functional>

namespace orbline {

// How many delivery names an edit asks for: the 0980 edit asks for one before it looks at the
// size, so each of its deliveries uses up one serial more.
enum class DeliveryNames { One, OneBurnt };

// The result lines into a new work file and on to the delivery folder; an empty file is deleted
// there. A move that fails leaves the work file and still logs "出力完了(Write) -- ".
void WriteAndDeliver(const QString& lines, DeliveryNames names);

// Builds the lines, then writes and delivers them as above. The run mark of the log lines
// becomes RunMarkDefault once a line is built; lines that break off part-way (a run-time error
// in a value) leave no file, as a failed step always has.
void BuildAndDeliver(const std::function<QString(bool* lineBuilt)>& buildLines,
                     DeliveryNames names);

// The result lines into a new work file and on to the delivery folder, an empty file deleted
// there. Throws RuntimeError at the first step that fails; a failed move leaves the work file.
void WriteAndDeliverOrThrow(const QString& lines);
// The same, with the lines built once the work file has its name: a file the lines point to
// (a chart) takes its serial after the work file's, and is complete before they are delivered.
void WriteAndDeliverOrThrow(const std::function<QString(const QString& workPath)>& buildLines);

}  // namespace orbline
