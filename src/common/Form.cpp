#include "common/Form.h"

#include <memory>

namespace orbline {

namespace {
std::unique_ptr<Form_TesvaneMain>& Instance() {
    static std::unique_ptr<Form_TesvaneMain> instance = std::make_unique<Form_TesvaneMain>();
    return instance;
}
}  // namespace

Form_TesvaneMain& Form() {
    return *Instance();
}

void ResetForm() {
    Instance() = std::make_unique<Form_TesvaneMain>();
}

}  // namespace orbline
