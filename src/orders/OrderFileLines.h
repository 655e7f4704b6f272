#pragma once
// An order file read line by line, never whole: a laboratory system's file can hold a million
// lines. The lines are those SplitLines gives for the whole decoded file with
// LineEnds::CrLfOrCrOrLf (CR, CR LF and LF alone each end a line).

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <optional>

namespace orbline {

class OrderFileLines {
  public:
    explicit OrderFileLines(const QString& path, qint64 pieceBytes = 64 * 1024);
    bool isOpen() const { return file_.isOpen(); }
    // The next line; nothing at the end of the file or after a read error.
    std::optional<QString> next();
    // False when the file could not be opened or a read failed before its end.
    bool readToEnd() const { return atEnd_ && !failed_; }

  private:
    bool readPiece();

    QFile file_;
    qint64 pieceBytes_;
    QByteArray unsplit_;
    QStringList lines_;
    qsizetype nextLine_ = 0;
    bool atEnd_ = false;
    bool failed_ = false;
};

}  // namespace orbline
