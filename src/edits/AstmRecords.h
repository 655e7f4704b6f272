#pragma once
// The saved pieces of an ASTM-like message as the result edits 0980 and 1190 read them: each
// piece file line by line, the frame bytes left in the line, each line split at "|" into
// fields numbered from 0. A record that a read cut in two comes as two lines; nothing here
// joins them.

#include <QChar>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>

namespace orbline {

// The record type: the last character of field 0. Absent when there is no field 0 or it is
// empty (a line that begins with "|"): such a line changes nothing.
std::optional<QChar> RecordType(const QStringList& fields);

// Reads the pieces 1 .. pieceCount - 1 of AppPath\folder (PieceFilePath(folder, prefix, n)), so
// leaving out the EOT piece, in order. A file that doesn't exist is passed over. Each one that
// does is copied to the Slog store (SlogCopy with the instrument code as a number, stamp, the
// piece number as "0000" and the extension "txt"); then its lines (ended by CR, LF or CR LF)
// are split at "|" and handed one by one to onRecord. Empty lines are passed over; a file that
// can't be read adds nothing.
void ForEachPieceRecord(const QString& folder, const QString& prefix, std::int16_t pieceCount,
                        const QString& stamp,
                        const std::function<void(const QStringList& fields)>& onRecord);

// How many delivery names an edit asks for: the 0980 edit asks for one before it looks at the
// size, so each of its deliveries uses up one serial more.
enum class DeliveryNames { One, OneBurnt };
// The result lines into a new work file and on to the delivery folder (an empty file is
// deleted there), every step passed over when it fails.
void WriteAndDeliver(const QString& text, DeliveryNames names);

}  // namespace orbline
