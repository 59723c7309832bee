#include "ry/gev/client/heartbeat.h"

#include <algorithm>
#include <utility>

#include "ry/gev/protocol/bootstrap.h"

namespace ry::gev::client {
namespace {
constexpr uint32_t kPrivilegeBits = 0x3;  // exclusive | control
}

Heartbeat::Heartbeat(ControlChannel& channel, LostCallback onLost)
    : channel_(channel), onLost_(std::move(onLost)) {}

Heartbeat::~Heartbeat() {
    Stop();
}

void Heartbeat::SetTimeoutMs(uint32_t timeoutMs) {
    {
        std::lock_guard lock(mutex_);
        timeoutMs_ = std::max<uint32_t>(timeoutMs, 100);
        timeoutChanged_ = true;
    }
    wake_.notify_all();
}

uint32_t Heartbeat::TimeoutMs() const {
    std::lock_guard lock(mutex_);
    return timeoutMs_;
}

void Heartbeat::SetCheckCount(uint32_t count) {
    std::lock_guard lock(mutex_);
    checkCount_ = std::max<uint32_t>(count, 1);
}

uint32_t Heartbeat::CheckCount() const {
    std::lock_guard lock(mutex_);
    return checkCount_;
}

bool Heartbeat::Lost() const {
    std::lock_guard lock(mutex_);
    return lost_;
}

void Heartbeat::Start() {
    if (thread_.joinable())
        return;
    thread_ = std::jthread([this](std::stop_token stop) { Run(stop); });
}

void Heartbeat::Stop() {
    if (!thread_.joinable())
        return;
    thread_.request_stop();
    wake_.notify_all();
    thread_.join();
    thread_ = {};
}

bool Heartbeat::Beat(GC_ERROR& error) {
    // Half the time-out per beat: a slow answer is not yet a lost device, and `count` failed
    // beats in a row still fit in time-out x count (the first starts within a third of it).
    const RequestBudget budget{std::max<uint32_t>(TimeoutMs() / 2, 20), 3};
    uint32_t privilege = 0;
    error = channel_.ReadRegister(bootstrap::kControlChannelPrivilege, privilege, budget);
    if (error != GC_ERR_SUCCESS)
        return false;
    if ((privilege & kPrivilegeBits) == 0) {
        error = GC_ERR_ACCESS_DENIED;  // the device dropped us: it timed out our session
        return false;
    }
    return true;
}

void Heartbeat::Run(std::stop_token stop) {
    uint32_t failures = 0;
    while (!stop.stop_requested()) {
        GC_ERROR error = GC_ERR_SUCCESS;
        const bool alive = Beat(error);
        failures = alive ? 0 : failures + 1;
        if (!alive && (error == GC_ERR_ACCESS_DENIED || failures >= CheckCount())) {
            {
                std::lock_guard lock(mutex_);
                lost_ = true;
            }
            onLost_(error);
            return;
        }
        std::unique_lock lock(mutex_);
        // A failed beat is retried at once: the check count, not the period, bounds detection.
        const uint32_t wait = alive ? timeoutMs_ / 3 : 0;
        // A new time-out ends the wait: a shorter one must not expire while we sleep on the
        // old period.
        wake_.wait_for(lock, stop, std::chrono::milliseconds(wait),
                       [this] { return std::exchange(timeoutChanged_, false); });
    }
}

}  // namespace ry::gev::client
