#include "orders/OrderFileLines.h"

#include "common/AnsiCodec.h"
#include "common/Paths.h"
#include "common/Text.h"

namespace orbline {

namespace {

// Where the bytes up to a complete line end stop: after the last CR or LF, except that a CR
// at the very end waits for the next piece, whose first byte may be its LF.
qsizetype CompleteLinesEnd(const QByteArray& bytes) {
    qsizetype end = bytes.size();
    if (end > 0 && bytes[end - 1] == '\r') --end;
    while (end > 0 && bytes[end - 1] != '\r' && bytes[end - 1] != '\n') --end;
    return end;
}

}  // namespace

OrderFileLines::OrderFileLines(const QString& path, qint64 pieceBytes)
    : file_(NativePath(path)), pieceBytes_(pieceBytes) {
    failed_ = !file_.open(QIODevice::ReadOnly);
    atEnd_ = failed_;
}

std::optional<QString> OrderFileLines::next() {
    while (nextLine_ >= lines_.size()) {
        if (atEnd_) return std::nullopt;
        lines_.clear();
        nextLine_ = 0;
        if (!readPiece()) atEnd_ = true;
    }
    return lines_[nextLine_++];
}

// Splits the bytes held up to their last complete line end. CR and LF are never part of a
// code-page pair, so each run of whole lines decodes as it would within the whole file.
bool OrderFileLines::readPiece() {
    const QByteArray piece = file_.read(pieceBytes_);
    if (piece.isEmpty()) {
        failed_ = file_.error() != QFileDevice::NoError;
        lines_ = SplitLines(DecodeAnsi(unsplit_), LineEnds::CrLfOrCrOrLf);
        unsplit_.clear();
        return false;
    }
    unsplit_ += piece;
    const qsizetype end = CompleteLinesEnd(unsplit_);
    lines_ = SplitLines(DecodeAnsi(unsplit_.first(end)), LineEnds::CrLfOrCrOrLf);
    unsplit_.remove(0, end);
    return true;
}

}  // namespace orbline
