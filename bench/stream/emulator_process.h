// The one sender of the side-by-side comparison: ry-camera-emulator started as a child
// process, streaming flat out once a receiver starts acquisition. Ended by its PID when the
// object goes away.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace ry::bench {

class EmulatorProcess {
  public:
    // Starts `program` with `arguments` and waits until it announces its camera; throws
    // std::runtime_error when it does not within a few seconds.
    EmulatorProcess(const std::string& program, const std::vector<std::string>& arguments);
    ~EmulatorProcess();
    EmulatorProcess(const EmulatorProcess&) = delete;
    EmulatorProcess& operator=(const EmulatorProcess&) = delete;

    const std::string& Announcement() const { return announcement_; }

  private:
    void WaitForAnnouncement(int outputFd);
    void Terminate();

    pid_t pid_ = -1;
    std::string announcement_;
};

}  // namespace ry::bench
