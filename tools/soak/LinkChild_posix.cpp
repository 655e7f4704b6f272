#include "LinkChild.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>
#include <thread>

namespace orbline::soak {

LinkChild::~LinkChild() {
    if (pid_ > 0 && !ended_) {
        ::kill(pid_, SIGKILL);
        wait4(pid_, &status_, 0, &usage_);
    }
}

bool LinkChild::start(const std::string& program, const std::string& argument,
                      const std::vector<std::string>& extraEnvironment,
                      const std::string& stderrPath, std::string* error) {
    std::vector<std::string> environment = extraEnvironment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view inherited(*entry);
        const bool replaced = std::any_of(
            extraEnvironment.begin(), extraEnvironment.end(), [&](const std::string& extra) {
                return inherited.substr(0, inherited.find('=')) == extra.substr(0, extra.find('='));
            });
        if (!replaced) environment.emplace_back(inherited);
    }
    std::vector<char*> envp;
    envp.reserve(environment.size() + 1);
    for (std::string& entry : environment) envp.push_back(entry.data());
    envp.push_back(nullptr);
    std::string programCopy = program;
    std::string argumentCopy = argument;
    char* argv[] = {programCopy.data(), argumentCopy.data(), nullptr};

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, stderrPath.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int failed = posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv, envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) {
        pid_ = -1;
        *error = "cannot start " + program + ": " + std::strerror(failed);
        return false;
    }
    return true;
}

bool LinkChild::running() {
    if (pid_ <= 0 || ended_) return false;
    if (wait4(pid_, &status_, WNOHANG, &usage_) == pid_) ended_ = true;
    return !ended_;
}

void LinkChild::close(std::chrono::milliseconds limit) {
    if (!running()) return;
    ::kill(pid_, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (running()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            ::kill(pid_, SIGKILL);
            if (wait4(pid_, &status_, 0, &usage_) == pid_) ended_ = true;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

int LinkChild::exitStatus() const {
    return ended_ && WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

double LinkChild::cpuSeconds() const {
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage_.ru_utime) + seconds(usage_.ru_stime);
}

}  // namespace orbline::soak
