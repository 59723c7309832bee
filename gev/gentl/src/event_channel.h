// A queue of fixed-size event records with a blocking, killable wait: the new-buffer event of
// a stream and the error event of a device are both one of these.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>

#include "RyGenTL.h"
#include "wake_word.h"

namespace ry::gentl {

struct EventRecord {
    static constexpr size_t kCapacity = 16;
    std::array<uint8_t, kCapacity> bytes{};
    size_t size = 0;

    template <typename T>
    static EventRecord Of(const T& value) {
        static_assert(sizeof(T) <= kCapacity);
        EventRecord record;
        std::memcpy(record.bytes.data(), &value, sizeof(T));
        record.size = sizeof(T);
        return record;
    }
};

class EventChannel {
  public:
    void Push(const EventRecord& record);
    // Push in two steps, for a caller that holds a lock of its own the woken waiter will
    // want: the record goes in under that lock, the waiter is woken after it is released.
    void Enqueue(const EventRecord& record);
    void Notify();
    // GC_ERR_TIMEOUT when nothing came in time, GC_ERR_NO_DATA when killed,
    // GC_ERR_INSUFFICIENT_SIZE (record kept) when the caller's buffer is too small.
    GC_ERROR Wait(void* buffer, size_t* size, uint64_t timeoutMs);
    void Kill();
    void ClearKill();
    void Flush();
    // Removes the records for which `remove` answers true; returns how many went.
    size_t RemoveIf(const std::function<bool(const EventRecord&)>& remove);
    bool Contains(const std::function<bool(const EventRecord&)>& match) const;
    size_t Pending() const;

  private:
    bool ReadyLocked() const { return killPending_ || !records_.empty(); }

    mutable std::mutex mutex_;  // guards the records and the kill; never held while asleep
    std::deque<EventRecord> records_;
    bool killPending_ = false;
    WakeWord changed_;  // bumped after each record or kill
};

}  // namespace ry::gentl
