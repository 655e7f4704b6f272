// Result edit of the cobas analyser 1660. The dialogue saves each frame, up to its CR LF, as one
// piece. The edit has an error exit: any run-time error, a short piece or a Q or O record short
// of a field included, ends the process through ErrorExit.

#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/Text.h"
#include "edits/MdlEdit016.h"
#include "edits/MdlEdit016_Cobas.h"
#include "edits/PieceFiles.h"
#include "edits/ResultDelivery.h"
#include "tables/ItemTables.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Digits lose their leading zeros as text, so a long barcode stays exact.
QString SampleNumber1660(const QString& cleaned, const SampleRule& rule) {
    const QString id = IsNumeric(cleaned) ? PlainDecimalText(Trim(cleaned)) : cleaned;
    return ApplyIdEntryRule(id, rule);
}

// ^^^4207/1 gives 4207.
QString TestCode1660(const QString& field) {
    const qsizetype slash = InStr(field, u"/"_s);
    QString code = slash > 0 ? Left(field, slash - 1) : field;
    return Trim(code.remove(u'^'));
}

constexpr CobasDialect kDialect1660{.onError = OnError::ErrorExit,
                                    .queryParts = {2, 3, 4, 5, 7, 8},
                                    .orderDateField = 22,
                                    .sampleNumber = SampleNumber1660,
                                    .testCode = TestCode1660,
                                    .readMore = nullptr};

// Row 197, TG, shares 4282 with TG-J in the order table; here it has its own code.
constexpr std::size_t kTgRow = 197;

// The frame's tail goes with the last nine characters: ETX, the checksum, CR LF, the file's
// own CR LF and two more. Piece 1 is the ENQ and stays whole. A piece of fewer than nine
// characters is a run-time error.
QString StripPiece(int number, const QString& text) {
    if (number <= 1) return text;
    return Left(text, text.size() - 9);
}

std::optional<CobasQuery> RunEdit(std::int16_t pieceCount) {
    const EditSettings settings = EditSettingsFromContext();
    const CobasMessage message = ReadCobasMessage(
        pieceCount, {.strip = StripPiece, .onError = OnError::ErrorExit, .yieldAfterEach = true},
        [&](const QStringList& texts) { return ParseMessage1660(texts, settings.sampleRule); });
    if (message.query) return message.query;

    WriteAndDeliverOrThrow(ResultLines1660(message, settings));
    return std::nullopt;
}

}  // namespace

CobasMessage ParseMessage1660(const QStringList& pieceTexts, const SampleRule& rule) {
    return ParseCobasMessage(pieceTexts, kDialect1660, rule);
}

const std::vector<CobasItem>& ItemTable1660() {
    // Built at the first result file, never for a query.
    static const std::vector<CobasItem> items = [] {
        std::vector<CobasItem> rows;
        for (const Item1660& item : Items1660())
            rows.push_back({item.code.toString(), item.name.toString()});
        rows.at(kTgRow - 1).code = u"130"_s;
        return rows;
    }();
    return items;
}

QString ResultLines1660(const CobasMessage& message, const EditSettings& settings) {
    return CobasResultLines(message, settings, ItemTable1660(), OnError::ErrorExit);
}

std::optional<CobasQuery> EditResult1660(std::int16_t pieceCount) {
    try {
        return RunEdit(pieceCount);
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

}  // namespace orbline
