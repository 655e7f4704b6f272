#include "orders/OrderDbFailure.h"

#include "common/Diagnostics.h"
#include "common/Logging.h"
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

void ShowOrderDbMessageBox(const QString& text) {
    ToStandardError(u"KV_Orbline: "_s + text);
}

void EndOnOrderDbFailure(const QString& text, const QString& cause) {
    if (ShowsConsole(Ctx().ShowMode)) {
        ShowOrderDbMessageBox(text);
    } else {
        QString line = text;
        GLogWrite(u"0"_s, line);
        ToStandardError(text);
    }
    Diagnose(cause);
    std::fflush(nullptr);
    std::_Exit(1);
}

}  // namespace orbline
