#pragma once
// The laboratory system's side of the soak: order files dropped into the order folders all the
// time, of every size (now and then more lines than two of the intake's batches) and every
// line end, most written aside and renamed, some written in place in two steps, as a copy over
// a share arrives.

#include <QByteArray>
#include <QString>

#include <map>
#include <vector>

namespace orbline::soak {

struct OrderTarget {
    QString code;
    QString test;    // a test name of the instrument's item table
    QString folder;  // plain path
};

// One order file: `lines` orders of today for the instrument, numbered from `first` (each key
// used once), each with the one test, ended by `lineEnd`.
QByteArray OrderFileText(const OrderTarget& target, int first, int lines,
                         const QByteArray& lineEnd);

class OrderFeed {
  public:
    explicit OrderFeed(std::vector<OrderTarget> targets);
    // Drops the next file, or writes the rest of one written in two steps. False, with the
    // reason in error(), when a file cannot be written.
    bool next();
    // Ends a file still half written.
    bool finish();

    // Order lines in files written whole, by instrument code.
    const std::map<QString, int>& linesWritten() const { return lines_; }
    int files() const { return files_; }
    const QString& error() const { return error_; }

  private:
    bool write(const QString& path, const QByteArray& bytes, bool append);

    std::vector<OrderTarget> targets_;
    std::map<QString, int> lines_;
    int files_ = 0;
    int nextKey_ = 1;
    QString halfPath_;
    QByteArray halfRest_;
    QString halfCode_;
    int halfLines_ = 0;
    QString error_;
};

}  // namespace orbline::soak
