#include "edits/AstmRecords.h"

#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "edits/PieceFiles.h"

using namespace Qt::StringLiterals;

namespace orbline {

std::optional<QChar> RecordType(const QStringList& fields) {
    if (fields.isEmpty() || fields.first().isEmpty()) return std::nullopt;
    return fields.first().back();
}

void ForEachPieceRecord(const QString& folder, const QString& prefix, std::int16_t pieceCount,
                        const QString& stamp,
                        const std::function<void(const QStringList& fields)>& onRecord) {
    for (int number = 1; number < pieceCount; ++number) {
        const QString path = PieceFilePath(folder, prefix, number);
        if (!FileExists(path)) continue;
        // A code that is no 16-bit number fails the copy, a step that is passed over.
        PassOver([&] {
            SlogCopy(path, InstrumentCodeNumber(), stamp,
                     FormatNumber(QString::number(number), u"0000"_s), u"txt"_s);
        });
        const std::optional<QString> text = ReadAllText(path);
        if (!text) continue;
        for (const QString& line : SplitLines(*text, LineEnds::CrLfOrCrOrLf)) {
            if (line.isEmpty()) continue;
            onRecord(Split(line, u"|"_s));
        }
    }
}

void WriteAndDeliver(const QString& text, DeliveryNames names) {
    QString workPath;
    PassOver([&] { MakeOutFile(Ctx().JyusinWKPath, workPath); });
    PassOver([&] {
        // The file exists even with no line in it: delivery then deletes it.
        if (!WriteNewText(workPath, text)) throw RuntimeError(errors::PathNotFound());
    });
    if (names == DeliveryNames::OneBurnt) {
        QString unusedName;
        PassOver([&] { MakeOutFile(Ctx().JyusinDataPath, unusedName); });
    }
    PassOver([&] { DeliverWorkFile(workPath); });
}

}  // namespace orbline
