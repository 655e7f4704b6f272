#include "PtyPair.h"

#include <dirent.h>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace orbline::sim {

PtyPair::PtyPair() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
        const std::string reason = std::strerror(errno);
        if (master_ >= 0) close(master_);
        throw std::runtime_error("no pseudo-terminal: " + reason);
    }
    char name[128];
    if (ptsname_r(master_, name, sizeof name) != 0) {
        close(master_);
        throw std::runtime_error("no name for the pseudo-terminal");
    }
    slavePath_ = name;
    slaveKeeper_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    if (slaveKeeper_ < 0 || tcgetattr(slaveKeeper_, &raw) != 0) {
        if (slaveKeeper_ >= 0) close(slaveKeeper_);
        close(master_);
        throw std::runtime_error("cannot open " + slavePath_);
    }
    cfmakeraw(&raw);
    tcsetattr(slaveKeeper_, TCSANOW, &raw);
}

PtyPair::~PtyPair() {
    close(slaveKeeper_);
    close(master_);
}

bool PtyPair::slaveOpenedElsewhere() const {
    const std::string self = std::to_string(getpid());
    DIR* processes = opendir("/proc");
    if (processes == nullptr) return false;
    bool found = false;
    while (!found) {
        const dirent* process = readdir(processes);
        if (process == nullptr) break;
        const std::string pid = process->d_name;
        if (pid.empty() || pid.find_first_not_of("0123456789") != std::string::npos || pid == self)
            continue;
        const std::string fdDir = "/proc/" + pid + "/fd";
        DIR* fds = opendir(fdDir.c_str());
        if (fds == nullptr) continue;  // gone, or not ours to see
        while (const dirent* fd = readdir(fds)) {
            char target[256];
            const std::string link = fdDir + "/" + fd->d_name;
            const ssize_t length = readlink(link.c_str(), target, sizeof target - 1);
            if (length > 0 && std::string(target, static_cast<std::size_t>(length)) == slavePath_) {
                found = true;
                break;
            }
        }
        closedir(fds);
    }
    closedir(processes);
    return found;
}

}  // namespace orbline::sim
