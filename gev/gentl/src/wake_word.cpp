#include "wake_word.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>

namespace ry::gentl {

namespace {

long Futex(std::atomic<uint32_t>* word, int operation, uint32_t value, const timespec* until) {
    static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t));
    return ::syscall(SYS_futex, reinterpret_cast<uint32_t*>(word), operation | FUTEX_PRIVATE_FLAG,
                     value, until, nullptr, FUTEX_BITSET_MATCH_ANY);
}

// steady_clock is CLOCK_MONOTONIC, the clock FUTEX_WAIT_BITSET measures absolute times on.
timespec MonotonicTime(std::chrono::steady_clock::time_point at) {
    const auto since = at.time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(since);
    return {static_cast<time_t>(seconds.count()),
            static_cast<long>(std::chrono::nanoseconds(since - seconds).count())};
}

}  // namespace

bool WakeWord::SleepWhile(uint32_t seen, const Deadline& deadline) {
    if (deadline && std::chrono::steady_clock::now() >= *deadline) {
        return false;
    }
    // Counted before the word is compared in the kernel: a Bump either sees the sleeper or
    // changed the word first, and then the kernel refuses to sleep.
    sleepers_.fetch_add(1, std::memory_order_seq_cst);
    if (deadline) {
        const timespec until = MonotonicTime(*deadline);
        Futex(&word_, FUTEX_WAIT_BITSET, seen, &until);
    } else {
        Futex(&word_, FUTEX_WAIT_BITSET, seen, nullptr);
    }
    sleepers_.fetch_sub(1, std::memory_order_relaxed);
    return !deadline || std::chrono::steady_clock::now() < *deadline;
}

void WakeWord::Change(int wakeCount) {
    word_.fetch_add(1, std::memory_order_seq_cst);
    if (sleepers_.load(std::memory_order_seq_cst) != 0) {
        Futex(&word_, FUTEX_WAKE, static_cast<uint32_t>(wakeCount), nullptr);
    }
}

}  // namespace ry::gentl
