#include "common/FileSync.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace orbline {

namespace {
bool SyncPath(const std::filesystem::path& path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

Rename RenameFailure(int error) {
    switch (error) {
        case EEXIST:
            return Rename::TargetExists;
        case EXDEV:
            return Rename::OtherFileSystem;
        default:
            return Rename::Failed;
    }
}
}  // namespace

bool SyncFile(const std::filesystem::path& file) {
    return SyncPath(file, O_RDONLY);
}

bool SyncFolder(const std::filesystem::path& folder) {
    return SyncPath(folder, O_RDONLY | O_DIRECTORY);
}

Rename RenameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return Rename::Done;
    // A file system or kernel without the flag (NFS, for one) still has hard links.
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return RenameFailure(errno);
#endif
    if (::link(from.c_str(), to.c_str()) != 0) return RenameFailure(errno);
    // Delivered from here on; a source that cannot be unlinked is a second name of the same file.
    ::unlink(from.c_str());
    return Rename::Done;
}

}  // namespace orbline
