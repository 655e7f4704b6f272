#pragma once
// What the soak checks at its end, each appending a sentence per fault to `failures`: the
// result files (each pass's delivered once and whole), the logs (no failure of a lookup, an
// intake, the store or the line), and the orders (every line written is a row).

#include "SoakInstruments.h"

#include <QString>
#include <QStringList>

#include <map>

namespace orbline::soak {

struct Delivered {
    int files = 0;
    int charts = 0;
};

// The files of the instrument in the delivery folders of the site at `root`: one result file
// (and one chart where the instrument draws one) per pass, each of the instrument's number of
// records, ended by CR LF, and all alike byte for byte (the clock was fixed) but for the
// serial of a file a record names.
Delivered CheckDeliveries(const QString& root, const SoakInstrument& instrument, int passes,
                          QStringList& failures);
// The work folder holds no result that was never delivered.
void CheckWorkFolder(const QString& root, QStringList& failures);

// No failure text came in the main log (as a MainLogReader counted them); the code's
// diagnostic log and its standard error (kv_orbline<code>.stderr) hold nothing at all.
void CheckLogs(const QString& root, const QString& code,
               const std::map<QString, int>& mainLogFailures, QStringList& failures);

// Every order file taken (none left, none set aside as failed), and as many rows of each
// instrument as order lines were written for it.
void CheckOrders(const QStringList& orderFolders, const std::map<QString, int>& linesWritten,
                 const std::map<QString, int>& rows, QStringList& failures);

}  // namespace orbline::soak
