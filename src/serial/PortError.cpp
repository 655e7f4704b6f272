#include "serial/PortError.h"

namespace orbline {

const char* PortErrorWords(PortError kind) {
    switch (kind) {
        case PortError::None:
            return "no error";
        case PortError::NoSuchDevice:
            return "no such device";
        case PortError::PermissionDenied:
            return "permission denied";
        case PortError::Busy:
            return "held by another process";
        case PortError::FormatRefused:
            return "line format refused";
        case PortError::DeviceGone:
            return "device gone or line hung up";
        case PortError::Other:
            return "other error";
    }
    return "other error";
}

const char* PortStepWords(PortStep step) {
    switch (step) {
        case PortStep::None:
            return "no step";
        case PortStep::Open:
            return "open";
        case PortStep::Lock:
            return "lock";
        case PortStep::LineSettings:
            return "line settings";
        case PortStep::Buffers:
            return "buffer sizes";
        case PortStep::Purge:
            return "purge";
        case PortStep::TimeOuts:
            return "time-outs";
        case PortStep::Reader:
            return "reader start";
        case PortStep::Receive:
            return "receive";
    }
    return "no step";
}

std::string DescribePortFailure(const PortFailure& failure) {
    if (failure.kind == PortError::None) return {};
    std::string reason = failure.osText;
    if (!failure.detail.empty()) reason += (reason.empty() ? "" : "; ") + failure.detail;
    std::string text = PortErrorWords(failure.kind);
    if (!reason.empty()) text += " (" + reason + ")";
    return text + " at " + PortStepWords(failure.step);
}

}  // namespace orbline
