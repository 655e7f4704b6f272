#pragma once
// The pieces of a message as a dialogue saved them for its edit: one file per read, written by
// BlockFileOut with the bytes as they came, ENQ piece first and EOT piece last.

#include <QString>
#include <QStringList>

#include <cstdint>

namespace orbline {

// AppPath\folder: the dialogue's work folder, made anew at the first piece of a message.
QString PieceFolder(const QString& folder);
// AppPath\folder\prefix_NNNN.txt, the number through "0000".
QString PieceFilePath(const QString& folder, const QString& prefix, int number);

// The texts of pieces 1 .. pieceCount - 1, so leaving out the EOT piece, for the edits that pass
// their errors over. A piece that doesn't exist, or can't be read, is passed over; each one that
// exists is first copied to the Slog store (SlogCopy with the instrument code as a number, the
// stamp, the piece number as "0000" and the extension "txt").
QStringList ReadPieceTexts(const QString& folder, const QString& prefix, std::int16_t pieceCount,
                           const QString& stamp);

}  // namespace orbline
