#include "common/Paths.h"

#include "common/FileSync.h"

#include <QCoreApplication>

#include <system_error>

using namespace Qt::StringLiterals;

namespace orbline {

namespace fs = std::filesystem;

QString NativePath(const QString& path) {
#ifdef _WIN32
    return path;
#else
    QString native = path;
    native.replace(u'\\', u'/');
    return native;
#endif
}

fs::path FsPath(const QString& path) {
#ifdef _WIN32
    return fs::path(NativePath(path).toStdWString());
#else
    return fs::path(NativePath(path).toStdString());
#endif
}

bool FileExists(const QString& path) {
    std::error_code ec;
    return !path.isEmpty() && fs::is_regular_file(FsPath(path), ec);
}

bool FolderExists(const QString& path) {
    std::error_code ec;
    return !path.isEmpty() && fs::is_directory(FsPath(path), ec);
}

bool MakeFolder(const QString& path) {
    std::error_code ec;
    return !path.isEmpty() && fs::create_directory(FsPath(path), ec);
}

bool DeleteFolderTree(const QString& path) {
    std::error_code ec;
    return !path.isEmpty() && fs::remove_all(FsPath(path), ec) != static_cast<std::uintmax_t>(-1);
}

bool DeleteFile(const QString& path) {
    std::error_code ec;
    return FileExists(path) && fs::remove(FsPath(path), ec);
}

std::optional<std::int64_t> FileLength(const QString& path) {
    std::error_code ec;
    const auto size = fs::file_size(FsPath(path), ec);
    if (ec) return std::nullopt;
    return static_cast<std::int64_t>(size);
}

bool CopyFileOver(const QString& source, const QString& target) {
    std::error_code ec;
    return fs::copy_file(FsPath(source), FsPath(target), fs::copy_options::overwrite_existing, ec);
}

MoveResult MoveFileDurable(const QString& source, const QString& target) {
    const fs::path from = FsPath(source);
    const fs::path to = FsPath(target);
    const fs::path folder = to.parent_path().empty() ? fs::path(".") : to.parent_path();
    std::error_code ec;
    if (!fs::is_regular_file(from, ec)) return MoveResult::Failed;
    SyncFile(from);
    fs::path staging;
    switch (RenameNoReplace(from, to)) {
        case Rename::Done:
            SyncFolder(folder);
            return MoveResult::Moved;
        case Rename::TargetExists:
            return MoveResult::TargetExists;
        case Rename::Failed:
            return MoveResult::Failed;
        case Rename::OtherFileSystem:
            // A copy beside the target under a name no reader takes (not "*.csv") and no other
            // process writes into (its own process id), then renamed there as above.
            staging = to;
            staging += ".";
            staging += std::to_string(QCoreApplication::applicationPid());
            staging += ".part";
            break;
    }
    const Rename taken =
        fs::copy_file(from, staging, fs::copy_options::overwrite_existing, ec) && SyncFile(staging)
            ? RenameNoReplace(staging, to)
            : Rename::Failed;
    if (taken != Rename::Done) {
        fs::remove(staging, ec);
        return taken == Rename::TargetExists ? MoveResult::TargetExists : MoveResult::Failed;
    }
    SyncFolder(folder);
    fs::remove(from, ec);
    return MoveResult::Moved;
}

}  // namespace orbline
