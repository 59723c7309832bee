#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "core/platform/clock.h"
#include "core/platform/sync_event.h"
#include "core/platform/text.h"
#include "core/platform/worker_thread.h"

namespace RYSDK::core {
namespace {

using namespace std::chrono_literals;

TEST(SyncEvent, AutoResetReleasesOneWaitThenClears) {
    SyncEvent event(SyncEvent::Mode::AutoReset);
    EXPECT_FALSE(event.WaitFor(5ms));
    event.Set();
    EXPECT_TRUE(event.WaitFor(0ms));
    EXPECT_FALSE(event.WaitFor(0ms));
}

TEST(SyncEvent, ManualResetStaysSetUntilReset) {
    SyncEvent event(SyncEvent::Mode::ManualReset, true);
    EXPECT_TRUE(event.WaitFor(0ms));
    EXPECT_TRUE(event.WaitFor(0ms));
    event.Reset();
    EXPECT_FALSE(event.WaitFor(1ms));
}

TEST(SyncEvent, WakesAWaiterOnAnotherThread) {
    SyncEvent event(SyncEvent::Mode::AutoReset);
    std::thread setter([&] {
        std::this_thread::sleep_for(10ms);
        event.Set();
    });
    EXPECT_TRUE(event.WaitFor(5s));
    setter.join();
}

TEST(WorkerThread, BoundedJoinRunsOutThenDetachLeavesTheBodySafe) {
    auto release = std::make_shared<SyncEvent>(SyncEvent::Mode::ManualReset);
    auto done = std::make_shared<std::atomic<bool>>(false);
    {
        WorkerThread worker;
        ASSERT_TRUE(worker.Start([release, done] {
            release->Wait();
            done->store(true);
        }));
        EXPECT_FALSE(worker.Start([] {}));
        EXPECT_FALSE(worker.JoinFor(20ms));
        worker.Detach();
        EXPECT_FALSE(worker.Attached());
    }
    release->Set();
    for (int i = 0; i < 500 && !done->load(); ++i)
        std::this_thread::sleep_for(2ms);
    EXPECT_TRUE(done->load());
}

TEST(WorkerThread, JoinsABodyThatEndsAndSurvivesAThrowingOne) {
    WorkerThread worker;
    ASSERT_TRUE(worker.Start([] { throw 1; }));
    EXPECT_TRUE(worker.JoinFor(5s));
    EXPECT_TRUE(worker.Finished());
    EXPECT_TRUE(worker.Start([] {}));
    worker.Join();
}

TEST(Text, WidensUtf8AndReplacesMalformedSequences) {
    EXPECT_EQ(Widen("abc"), L"abc");
    EXPECT_EQ(Widen("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x93\xB7"), L"\u00e9\u20ac\U0001F4F7");
    EXPECT_EQ(Widen("a\xFF"
                    "b"),
              L"a\uFFFDb");
    EXPECT_EQ(Widen("\xE2\x82"), L"\uFFFD");
    EXPECT_EQ(Widen("\xC0\x80"), L"\uFFFD\uFFFD");
    EXPECT_EQ(Widen("\xED\xA0\x80"), L"\uFFFD");
    EXPECT_EQ(Narrow(Widen("\xC3\xA9t\xC3\xA9")), "\xC3\xA9t\xC3\xA9");
}

TEST(Text, WidenIntoCutsAtTheCapacity) {
    wchar_t out[4];
    WidenInto(
        "\xC3\xA9"
        "abcdef",
        out, std::size(out));
    EXPECT_STREQ(out, L"\u00e9ab");
    WidenInto(nullptr, out, std::size(out));
    EXPECT_STREQ(out, L"");
}

TEST(Clock, TicksAndCounterAdvance) {
    const uint32_t start = TickCountMs();
    const int64_t counterStart = PerformanceCounter();
    std::this_thread::sleep_for(5ms);
    EXPECT_GE(TicksSince(start), 4u);
    EXPECT_GE(PerformanceCounter() - counterStart, 4'000'000);
}

}  // namespace
}  // namespace RYSDK::core
