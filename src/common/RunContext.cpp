#include "common/RunContext.h"

#include "common/Numbers.h"

#include <memory>

namespace orbline {

namespace {
std::unique_ptr<RunContext>& Instance() {
    static std::unique_ptr<RunContext> instance = std::make_unique<RunContext>();
    return instance;
}
}  // namespace

RunContext& Ctx() {
    return *Instance();
}

void ResetRunContext() {
    Instance() = std::make_unique<RunContext>();
}

bool ShowsConsole(const QString& showMode) {
    const auto mode = ToDouble(showMode);
    return mode && *mode == 1.0;
}

}  // namespace orbline
