#pragma once
// The records of an ASTM-like message as the result edits 0980 and 1190 read them from the
// texts of its saved pieces: each piece line by line, the frame bytes left in the line, each
// line split at "|" into fields numbered from 0. A record that a read cut in two comes as two
// lines; nothing here joins them.

#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orbline {

// The record type: the last character of field 0. Absent when field 0 is empty (a line that
// begins with "|"): such a line changes nothing.
std::optional<QChar> RecordType(const QStringList& fields);

// The lines of the pieces in order, each ended by CR, LF or CR LF and split at "|"; empty
// lines are left out.
QList<QStringList> RecordsOfPieces(const QStringList& pieces);

}  // namespace orbline
