// Keeps the control privilege alive by reading CCP periodically (some devices refresh their
// timer only on that read) and declares the device lost after a number of failed beats in a
// row, or at once when CCP reads back without our privilege.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

#include "ry/gev/client/control_channel.h"

namespace ry::gev::client {

class Heartbeat {
  public:
    using LostCallback = std::function<void(GC_ERROR lastError)>;

    Heartbeat(ControlChannel& channel, LostCallback onLost);
    ~Heartbeat();
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;

    // The device's time-out: beats go out at a third of it.
    void SetTimeoutMs(uint32_t timeoutMs);
    uint32_t TimeoutMs() const;
    void SetCheckCount(uint32_t count);
    uint32_t CheckCount() const;

    void Start();
    void Stop();
    bool Lost() const;

  private:
    void Run(std::stop_token stop);
    bool Beat(GC_ERROR& error);

    ControlChannel& channel_;
    LostCallback onLost_;
    mutable std::mutex mutex_;
    std::condition_variable_any wake_;
    uint32_t timeoutMs_ = 3000;
    uint32_t checkCount_ = 3;
    bool timeoutChanged_ = false;
    bool lost_ = false;
    std::jthread thread_;
};

}  // namespace ry::gev::client
