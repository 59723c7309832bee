// A 32-bit word that threads sleep on until it changes: the kernel's futex, used where a
// condition variable would cost a system call per event. A condition variable's woken waiter
// retakes its mutex marked as contended, so the waiter's next unlock always enters the
// kernel, even with nobody waiting for the lock.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

namespace ry::gentl {

class WakeWord {
  public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    // What to pass to SleepWhile; read it before the last look at the state waited for.
    uint32_t Value() const { return word_.load(std::memory_order_acquire); }

    // Sleeps while the word still holds `seen`: returns at once when it has changed since, at a
    // Bump, at `deadline` (none: no limit) or spuriously. False once the deadline has passed.
    bool SleepWhile(uint32_t seen, const Deadline& deadline);

    // Changes the word and wakes one sleeper, or all; no system call when nobody sleeps.
    void Bump() { Change(1); }
    void BumpAll() { Change(INT32_MAX); }

  private:
    void Change(int wakeCount);

    std::atomic<uint32_t> word_{0};
    std::atomic<uint32_t> sleepers_{0};
};

}  // namespace ry::gentl
