#pragma once
// The pieces of a message as a dialogue saved them for its edit: one file per read, written by
// BlockFileOut with the bytes as they came, ENQ piece first and EOT piece last.

#include "common/RuntimeError.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

namespace orbline {

// AppPath\folder: the dialogue's work folder, made anew at the first piece of a message.
QString PieceFolder(const QString& folder);
// AppPath\folder\prefix_NNNN.txt, the number through "0000".
QString PieceFilePath(const QString& folder, const QString& prefix, int number);

// What an edit does with each piece beyond reading it.
struct PieceRules {
    // The part of piece number's text the edit keeps; empty: all of it. May throw RuntimeError.
    std::function<QString(int number, const QString& text)> strip;
    // With ErrorExit a piece that can't be read, a failed strip or a failed copy throws.
    OnError onError = OnError::PassOver;
    bool yieldAfterEach = false;
};

// The texts of pieces 1 .. pieceCount - 1, so leaving out the EOT piece. A piece that doesn't
// exist is passed over, and so is one that can't be read unless the rules throw. Each one that
// exists is copied to the Slog store (SlogCopy with the instrument code as a number, the stamp,
// the piece number as "0000" and the extension "txt").
QStringList ReadPieceTexts(const QString& folder, const QString& prefix, std::int16_t pieceCount,
                           const QString& stamp, const PieceRules& rules = {});

}  // namespace orbline
