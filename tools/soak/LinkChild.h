#pragma once
// One kv_orbline process of the soak, started and reaped by the soak itself, so that its own
// CPU time and peak memory come back with its exit status (wait4).

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace orbline::soak {

class LinkChild {
  public:
    LinkChild() = default;
    ~LinkChild();
    LinkChild(const LinkChild&) = delete;
    LinkChild& operator=(const LinkChild&) = delete;

    // Starts `program` with the one argument, this environment plus `extraEnvironment`
    // ("NAME=value"), and its standard error into a file. False, with the reason, on failure.
    bool start(const std::string& program, const std::string& argument,
               const std::vector<std::string>& extraEnvironment, const std::string& stderrPath,
               std::string* error);
    // False once it has ended (and then it is reaped).
    bool running();
    // SIGTERM, as a parent closes it; SIGKILL when it has not ended within `limit`.
    void close(std::chrono::milliseconds limit);

    // The exit status, or -1 when a signal ended it.
    int exitStatus() const;
    double cpuSeconds() const;
    // Peak resident memory (the kernel's VmHWM), in KiB.
    long peakKiB() const { return usage_.ru_maxrss; }

  private:
    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = 0;
    rusage usage_{};
};

}  // namespace orbline::soak
