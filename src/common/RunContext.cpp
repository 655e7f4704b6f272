#include "common/RunContext.h"

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

}  // namespace orbline
