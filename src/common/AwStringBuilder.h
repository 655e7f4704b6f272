#pragma once
// The receive pane's text buffer. It grows by doubling once per append, and a text longer than
// the doubled room is cut at the buffer's end while the length counts all of it; the panes
// append in small pieces, so they never meet that.

#include <QString>

#include <cstdint>

namespace orbline {

class AwStringBuilder {
  public:
    AwStringBuilder();

    std::int32_t Length() const { return length_; }
    // Setting 0 empties the builder; the characters stay in the buffer.
    void SetLength(std::int32_t length) { length_ = length; }
    void Append(const QString& text);
    QString ToString() const;

  private:
    QString buffer_;
    std::int32_t capacity_;
    std::int32_t length_ = 0;
};

}  // namespace orbline
