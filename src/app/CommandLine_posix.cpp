#include "app/CommandLine.h"

namespace orbline {

bool RawCommandArguments(std::u16string& /*text*/) {
    return false;
}

}  // namespace orbline
