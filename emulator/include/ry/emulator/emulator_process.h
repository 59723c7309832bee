// ry-camera-emulator run as a child process, for tests and benchmarks that need a camera
// on the network rather than one inside their own process.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace ry::emulator {

class EmulatorProcess {
  public:
    // Starts `program` with `arguments` and waits until it has printed its ready line for
    // each of `cameras` cameras. Throws std::runtime_error when it cannot be started or is
    // not ready in time; the child is stopped then.
    EmulatorProcess(const std::string& program, const std::vector<std::string>& arguments,
                    int cameras = 1,
                    std::chrono::milliseconds timeout = std::chrono::milliseconds(10000));
    // Stops the child with SIGTERM and waits for it.
    ~EmulatorProcess();
    EmulatorProcess(const EmulatorProcess&) = delete;
    EmulatorProcess& operator=(const EmulatorProcess&) = delete;

    // One "<address> <model> <serial>" line per camera.
    const std::vector<std::string>& ReadyLines() const noexcept { return readyLines_; }

  private:
    void WaitUntilReady(int outputFd, int cameras, std::chrono::milliseconds timeout);
    void Terminate() noexcept;

    pid_t pid_ = -1;
    std::vector<std::string> readyLines_;
};

}  // namespace ry::emulator
