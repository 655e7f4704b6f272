#include "common/AwStringBuilder.h"

namespace orbline {

AwStringBuilder::AwStringBuilder() : buffer_(255, u' '), capacity_(255) {}

void AwStringBuilder::Append(const QString& text) {
    const auto added = static_cast<std::int32_t>(text.size());
    if (capacity_ < length_ + added) {
        buffer_.append(QString(capacity_, u' '));
        capacity_ *= 2;
    }
    // Stored in place: what does not fit in the buffer is cut.
    if (length_ < buffer_.size()) {
        const qsizetype room = buffer_.size() - length_;
        buffer_.replace(length_, std::min<qsizetype>(room, added), text.left(room));
    }
    length_ += added;
}

QString AwStringBuilder::ToString() const {
    return buffer_.left(std::max<std::int32_t>(length_, 0));
}

}  // namespace orbline
