// Result edit of the immunoassay analyser 1730, the sister of 1660 (MdlEdit016_1660.cpp). The
// dialogue saves each read of the port as one piece. Errors are passed over: a step that fails
// has no effect.

#include "common/RunContext.h"
#include "common/Text.h"
#include "edits/MdlEdit016.h"
#include "edits/MdlEdit016_Cobas.h"
#include "edits/PieceFiles.h"
#include "edits/ResultDelivery.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Taken as it stands: no numeric form and no fixed sample number in this edit.
QString SampleNumber1730(const QString& cleaned, const SampleRule&) {
    return cleaned;
}

// ^^^125 gives 125.
QString TestCode1730(const QString& field) {
    return Trim(FieldAt(Split(field, u"^"_s), 3).value_or(QString()));
}

// Field 5 gives Judge1 and Judge2 when it has two "^" parts. A date in field 11 holds for this
// record and every one after it.
void ReadMore1730(const QStringList& fields, CobasMessage& message, CobasRow& row) {
    const QStringList judges = Split(FieldAt(fields, 5).value_or(QString()), u"^"_s);
    if (judges.size() >= 2) {
        row.judge1 = Trim(judges.at(0));
        row.judge2 = Trim(judges.at(1));
    }
    const QString when = Trim(FieldAt(fields, 11).value_or(QString()));
    if (!when.isEmpty()) {
        message.kensaDate = Left(when, 8);
        message.kensaTime = Mid(when, 9, 6);
    }
}

constexpr CobasDialect kDialect1730{.onError = OnError::PassOver,
                                    .queryParts = {1, 2, 3, 4, 6, 7},
                                    .orderDateField = 6,
                                    .sampleNumber = SampleNumber1730,
                                    .testCode = TestCode1730,
                                    .readMore = ReadMore1730};

// A piece of six characters or more loses its first character and its last: of a whole frame,
// the STX and the LF of the file's own line end. Piece 1 is the ENQ and stays whole.
QString StripPiece(int number, const QString& text) {
    if (number < 2 || text.size() < 6) return text;
    return Mid(text, 2, text.size() - 2);
}

}  // namespace

CobasMessage ParseMessage1730(const QStringList& pieceTexts) {
    return ParseCobasMessage(pieceTexts, kDialect1730, {});
}

std::vector<CobasItem> ItemTable1730() {
    const RunContext& c = Ctx();
    std::vector<CobasItem> items;
    for (qsizetype i = 1; i <= c.ItemCount; ++i)
        items.push_back(
            {c.ItemCodes.get(i).value_or(QString()), c.ItemNames.get(i).value_or(QString())});
    return items;
}

QString ResultLines1730(const CobasMessage& message, const EditSettings& settings,
                        const std::vector<CobasItem>& items) {
    return CobasResultLines(message, settings, items, OnError::PassOver);
}

std::optional<CobasQuery> EditResult1730(std::int16_t pieceCount) {
    const CobasMessage message = ReadCobasMessage(
        pieceCount, {.strip = StripPiece, .yieldAfterEach = true}, ParseMessage1730);
    if (message.query) return message.query;
    WriteAndDeliver(ResultLines1730(message, EditSettingsFromContext(), ItemTable1730()),
                    DeliveryNames::One);
    return std::nullopt;
}

}  // namespace orbline
