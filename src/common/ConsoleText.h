#pragma once
// The console box: newest line on top. What is kept for display is capped so that a session
// of months does not grow the text without end; the files are not affected by the cap.

#include <QString>

#include <cstdint>

namespace orbline {

class ConsoleText {
  public:
    explicit ConsoleText(qsizetype capChars = qsizetype{256} * 1024) : cap_(capChars) {}

    // message + CR LF + the old text.
    void prepend(const QString& message);
    // Cmd_Log empties the box; the next event starts a new text.
    void clear() {
        text_.clear();
        ++revision_;
    }
    const QString& text() const { return text_; }
    // Moves on at every change, so that a view redraws the box only when it changed.
    std::uint64_t revision() const { return revision_; }

  private:
    qsizetype cap_;
    QString text_;
    std::uint64_t revision_ = 0;
};

}  // namespace orbline
