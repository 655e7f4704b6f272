#include "orders/OrderDbFailure.h"

#include "common/Diagnostics.h"
#include "common/Logging.h"
#include "common/MessageBox.h"
#include "common/RunContext.h"

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {
void ToStandardError(const QString& text) {
    std::fputs((text + u"\n"_s).toLocal8Bit().constData(), stderr);
}
}  // namespace

bool ShowOrderDbMessageBox(const QString& text) {
    return ShowMessageBox(text, BoxIcon::Critical);
}

void EndOnOrderDbFailure(const QString& text, const QString& cause) {
    // A box only where a console is shown (and built); otherwise the main log keeps the text.
    if (!ShowsConsole(Ctx().ShowMode) || !ShowOrderDbMessageBox(text)) {
        QString line = text;
        GLogWrite(u"0"_s, line);
    }
    // Standard error keeps the text for a supervisor that captured it, box or not.
    ToStandardError(text);
    Diagnose(cause);
    std::fflush(nullptr);
    std::_Exit(1);
}

}  // namespace orbline
