#include "common/Form.h"

#include "common/RunContext.h"
#include "common/ServiceNotify.h"
#include "serial/AwComm.h"

#include <cstdio>
#include <cstdlib>

namespace orbline {

namespace {
std::unique_ptr<Form_TesvaneMain>& Instance() {
    static std::unique_ptr<Form_TesvaneMain> instance = std::make_unique<Form_TesvaneMain>();
    return instance;
}

UnloadHandler& Handler() {
    static UnloadHandler handler = nullptr;
    return handler;
}
}  // namespace

QString ListControl::text() const {
    return position >= 0 && position < entries.size() ? entries.at(position) : QString();
}

Form_TesvaneMain::Form_TesvaneMain() = default;
Form_TesvaneMain::~Form_TesvaneMain() = default;

AwComm& Form_TesvaneMain::comm() {
    if (!Comm) Comm = std::make_unique<AwComm>();
    return *Comm;
}

Form_TesvaneMain& Form() {
    return *Instance();
}

void ResetForm() {
    Instance() = std::make_unique<Form_TesvaneMain>();
}

void ErasePaneArrays() {
    Form().sendBytes.erase();
    Form().receiveBytes.erase();
}

void SetUnloadHandler(UnloadHandler handler) {
    Handler() = handler;
}

void UnloadForm() {
    if (Handler() != nullptr) {
        Handler()();
        return;
    }
    Form().Comm.reset();
}

void EndProcess() {
    NotifyService(ServiceState::Stopping);
    std::fflush(nullptr);
    std::exit(Ctx().AbendFlag != 0 ? 1 : 0);
}

}  // namespace orbline
