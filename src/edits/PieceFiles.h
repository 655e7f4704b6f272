#pragma once
// The pieces of a message as a dialogue saved them for its edit: one file per read, written by
// BlockFileOut with the bytes as they came, ENQ piece first and EOT piece last.

#include <QString>

namespace orbline {

// AppPath\folder: the dialogue's work folder, made anew at the first piece of a message.
QString PieceFolder(const QString& folder);
// AppPath\folder\prefix_NNNN.txt, the number through "0000".
QString PieceFilePath(const QString& folder, const QString& prefix, int number);

}  // namespace orbline
