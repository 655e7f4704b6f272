#include "edits/AstmRecords.h"

#include "common/Text.h"

using namespace Qt::StringLiterals;

namespace orbline {

std::optional<QChar> RecordType(const QStringList& fields) {
    if (fields.isEmpty() || fields.first().isEmpty()) return std::nullopt;
    return fields.first().back();
}

QList<QStringList> RecordsOfPieces(const QStringList& pieces) {
    QList<QStringList> records;
    for (const QString& piece : pieces) {
        for (const QString& line : SplitLines(piece, LineEnds::CrLfOrCrOrLf)) {
            if (!line.isEmpty()) records.append(Split(line, u"|"_s));
        }
    }
    return records;
}

}  // namespace orbline
