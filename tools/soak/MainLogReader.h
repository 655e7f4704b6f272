#pragma once
// Reads an instrument's main log while it grows and counts the lines that say something went
// wrong. A log is rotated at about 1 MB into one copy a day, which the next rotation of that
// day replaces; read as it grows, no line escapes the count.

#include <QString>

#include <map>

namespace orbline::soak {

class MainLogReader {
  public:
    MainLogReader(QString root, QString code);
    // Reads the whole lines added since the last call; after a rotation, the rest of the old
    // log from its copy first.
    void poll();
    // Each failure text that came, with how often it came.
    const std::map<QString, int>& failures() const { return failures_; }

  private:
    void take(const QByteArray& bytes);

    QString root_;
    QString code_;
    qint64 offset_ = 0;
    std::map<QString, int> failures_;
};

}  // namespace orbline::soak
