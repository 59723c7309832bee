// The killable wait behind EventGetData.
#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "event_channel.h"

namespace ry::gentl {
namespace {

TEST(EventChannelTest, DeliversInOrderAndTimesOut) {
    EventChannel channel;
    channel.Push(EventRecord::Of(uint64_t{1}));
    channel.Push(EventRecord::Of(uint64_t{2}));
    uint64_t value = 0;
    size_t size = sizeof value;
    ASSERT_EQ(channel.Wait(&value, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 1u);
    ASSERT_EQ(channel.Wait(&value, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 2u);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(channel.Wait(&value, &size, 50), GC_ERR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(45));
}

TEST(EventChannelTest, ShortBufferKeepsTheRecord) {
    EventChannel channel;
    channel.Push(EventRecord::Of(uint64_t{7}));
    uint32_t small = 0;
    size_t size = sizeof small;
    EXPECT_EQ(channel.Wait(&small, &size, 0), GC_ERR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, sizeof(uint64_t));
    uint64_t value = 0;
    ASSERT_EQ(channel.Wait(&value, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(value, 7u);
}

TEST(EventChannelTest, KillReleasesAWaitWithoutLimit) {
    // Repeated to give the race between the kill and the start of the wait a chance.
    for (int round = 0; round < 200; ++round) {
        EventChannel channel;
        auto waiter = std::async(std::launch::async, [&] {
            uint64_t value = 0;
            size_t size = sizeof value;
            return channel.Wait(&value, &size, RY_EVENT_WAIT_FOREVER);
        });
        if (round % 2)
            std::this_thread::yield();
        channel.Kill();
        ASSERT_EQ(waiter.wait_for(std::chrono::seconds(2)), std::future_status::ready);
        EXPECT_EQ(waiter.get(), GC_ERR_NO_DATA);
    }
}

// Records handed over one at a time to a waiter that sleeps between them, from a producer
// that adds each in two steps as the stream does: a lost wake-up leaves a record waiting and
// the waiter's time-out shows it.
TEST(EventChannelTest, EveryRecordWakesItsWaiterWhateverTheInterleaving) {
    constexpr uint64_t kRecords = 20000;
    EventChannel channel;
    auto consumer = std::async(std::launch::async, [&] {
        for (uint64_t expected = 0; expected < kRecords; ++expected) {
            uint64_t value = 0;
            size_t size = sizeof value;
            const auto start = std::chrono::steady_clock::now();
            // A wake-up lost shows as a wait that ran out its time and then found the record.
            if (channel.Wait(&value, &size, 2000) != GC_ERR_SUCCESS || value != expected ||
                std::chrono::steady_clock::now() - start > std::chrono::milliseconds(1900))
                return expected;
        }
        return kRecords;
    });
    for (uint64_t i = 0; i < kRecords; ++i) {
        channel.Enqueue(EventRecord::Of(i));
        if (i % 3 == 0)
            std::this_thread::yield();
        channel.Notify();
        // Let the waiter fall asleep now and then, so both orders of wait and notify happen.
        while (i % 64 == 0 && channel.Pending() != 0 &&
               consumer.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            std::this_thread::yield();
    }
    EXPECT_EQ(consumer.get(), kRecords);
}

TEST(EventChannelTest, ANotifyWithoutARecordDoesNotEndATimedWait) {
    EventChannel channel;
    auto waiter = std::async(std::launch::async, [&] {
        uint64_t value = 0;
        size_t size = sizeof value;
        return channel.Wait(&value, &size, 100);
    });
    for (int i = 0; i < 10; ++i) {
        channel.Notify();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(waiter.get(), GC_ERR_TIMEOUT);
}

TEST(EventChannelTest, ClearKillForgetsAnUnclaimedKill) {
    EventChannel channel;
    channel.Kill();
    channel.ClearKill();
    uint64_t value = 0;
    size_t size = sizeof value;
    EXPECT_EQ(channel.Wait(&value, &size, 10), GC_ERR_TIMEOUT);
    channel.Kill();
    EXPECT_EQ(channel.Wait(&value, &size, 10), GC_ERR_NO_DATA);
    EXPECT_EQ(channel.Wait(&value, &size, 10), GC_ERR_TIMEOUT);  // one kill, one release
}

TEST(EventChannelTest, FlushAndRemoveDropRecords) {
    EventChannel channel;
    for (uint64_t i = 0; i < 4; ++i)
        channel.Push(EventRecord::Of(i));
    EXPECT_EQ(channel.RemoveIf([](const EventRecord& r) { return r.bytes[0] % 2 == 1; }), 2u);
    EXPECT_EQ(channel.Pending(), 2u);
    channel.Flush();
    EXPECT_EQ(channel.Pending(), 0u);
}

}  // namespace
}  // namespace ry::gentl
