// Runs build/bin/ry-camera-emulator as a child process for a test and stops it after.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace rytest {

class EmulatorProcess {
  public:
    // Starts the emulator with the arguments and waits until it has printed one ready
    // line per camera (or the time-out, in milliseconds, passes).
    EmulatorProcess(const std::vector<std::string>& arguments, int cameras, int timeoutMs = 5000);
    ~EmulatorProcess();
    EmulatorProcess(const EmulatorProcess&) = delete;
    EmulatorProcess& operator=(const EmulatorProcess&) = delete;

    bool Ready() const noexcept { return ready_; }
    const std::vector<std::string>& ReadyLines() const noexcept { return lines_; }

  private:
    pid_t pid_ = -1;
    int output_ = -1;
    bool ready_ = false;
    std::vector<std::string> lines_;
};

// Path of the emulator program of this build.
std::string EmulatorPath();

}  // namespace rytest
