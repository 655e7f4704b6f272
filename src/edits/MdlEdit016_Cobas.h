#pragma once
// What the result edits of 1660 and 1730 share: the walk over the records of a message, the flag
// table and the result lines. Where the two instruments differ, a CobasDialect says how.

#include "common/RuntimeError.h"
#include "edits/MdlEdit016.h"
#include "edits/PieceFiles.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace orbline {

struct CobasDialect {
    // Whether a field or a "^" part that is not there ends the process (1660) or leaves the
    // statement without effect (1730). R records read a missing field as "" either way.
    OnError onError;
    // The "^" parts of field 2 of a Q record: the specimen, then the five places.
    std::array<qsizetype, 6> queryParts;
    // The field of an O record that starts with the date and time.
    qsizetype orderDateField;
    // The sample number from the text of field 2 of an O record, already cleaned of blanks at
    // its ends, "^", "・" and U+F8F0, and "0" when nothing was left.
    QString (*sampleNumber)(const QString& cleaned, const SampleRule& rule);
    // Column 0 from field 2 of an R record.
    QString (*testCode)(const QString& field);
    // What an R record sets beyond the shared columns, before the row takes the message's date
    // and time; null when nothing.
    void (*readMore)(const QStringList& fields, CobasMessage& message, CobasRow& row);
};

CobasMessage ParseCobasMessage(const QStringList& pieceTexts, const CobasDialect& dialect,
                               const SampleRule& rule);

// The result lines with each item named from the table. A value that can't be formatted is
// an error under the rule: thrown, or written as it came.
QString CobasResultLines(const CobasMessage& message, const EditSettings& settings,
                         const std::vector<CobasItem>& items, OnError onError);

// The first half of either edit: SampleId and RunMark "0" for the log lines, the pieces of
// AppPath\c<InstrumentCode> read by the rules and parsed; SampleId then shows the message's (the
// last row's, or the last O record's).
CobasMessage ReadCobasMessage(std::int16_t pieceCount, const PieceRules& rules,
                              const std::function<CobasMessage(const QStringList&)>& parse);

}  // namespace orbline
