#include "common/FileSync.h"

#include <fcntl.h>
#include <unistd.h>

namespace orbline {

namespace {
bool SyncPath(const std::filesystem::path& path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}
}  // namespace

bool SyncFile(const std::filesystem::path& file) {
    return SyncPath(file, O_RDONLY);
}

bool SyncFolder(const std::filesystem::path& folder) {
    return SyncPath(folder, O_RDONLY | O_DIRECTORY);
}

}  // namespace orbline
