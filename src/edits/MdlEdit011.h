#pragma once
// Result edits of the two E1394 instruments 1160 (the "AIA-" analyser) and 1190 (haematology).
// Each reads the saved pieces of one message: a Q record is left to the dialogue as an order
// query, anything else becomes one result file.

#include <QString>

#include <cstdint>

namespace orbline {

// Reads pieces 1 .. pieceCount - 1 of AppPath\c1160, one record each, joining a result record
// that a read cut in two. A query sets QueryMark1160 to "Q" and queryKey to its key. A run-time
// error (a header that is not "AIA-", a record short of a field it needs, a 101st result) ends
// the process through the error exit.
void EditResult1160(std::int16_t pieceCount, QString& queryKey);

// Reads pieces 1 .. pieceCount - 1 of AppPath\c<InstrumentCode>. QueryMark1190 ends as "Q" for
// a query (key in RecordFields(0, 20..23)), "R" when results came, "0" otherwise. OutIP decides
// whether the flags go into the file. Errors are passed over.
void EditResult1190(std::int16_t pieceCount);

}  // namespace orbline
