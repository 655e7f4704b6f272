#include "common/MessageBox.h"

namespace orbline {

namespace {
MessageBoxHandler& Handler() {
    static MessageBoxHandler handler = nullptr;
    return handler;
}
}  // namespace

void SetMessageBoxHandler(MessageBoxHandler handler) {
    Handler() = handler;
}

bool ShowMessageBox(const QString& text, BoxIcon icon) {
    if (Handler() == nullptr) return false;
    Handler()(text, icon);
    return true;
}

}  // namespace orbline
