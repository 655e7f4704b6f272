#pragma once
// The coagulation analyser has no ASTM link: each message is one fixed-column text between STX
// and ETX, with no checksum, no ENQ and no EOT. A result ("D") is acknowledged and edited; a
// query ("R") is acknowledged and answered with one text of the same kind, with or without an
// order; anything else gets a NAK. The host waits for nothing after its reply.

#include <QString>

namespace orbline {

// The specimen identifier of a query (positions 27 to 41), trimmed: the key of the lookup.
QString QueryKey1650(const QString& query);

// The reply to a query, with a blank at each end where the frame's STX and ETX go: "S2210101U",
// the stamp ("YYMMDDHHMM"), the query's place and identifier padded on the left to their
// columns, "C", eleven blanks, the tests of the lookup (45 blanks when there are none).
QString QueryReply1650(const QString& query, const QString& stamp, const QString& tests);

// Runs until the session ends (Connected false).
void BeginCommLoop1650();

}  // namespace orbline
