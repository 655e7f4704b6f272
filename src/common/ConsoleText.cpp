#include "common/ConsoleText.h"

using namespace Qt::StringLiterals;

namespace orbline {

void ConsoleText::prepend(const QString& message) {
    text_.prepend(message + u"\r\n"_s);
    ++revision_;
    if (text_.size() <= cap_) return;
    // Drop the oldest lines, keeping whole lines only (cut after a CR LF).
    const qsizetype cut = text_.lastIndexOf(u"\r\n"_s, cap_ - 2);
    text_.truncate(cut > 0 ? cut + 2 : cap_);
}

}  // namespace orbline
