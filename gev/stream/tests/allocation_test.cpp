// Once a stream has run for a few frames, the receiving thread must not allocate: not per
// packet, not per frame, not for resend requests. This program counts every allocation made
// on that thread by replacing the global operator new.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

#include "gvsp_test_sender.h"

namespace {

std::atomic<std::thread::id> gWatchedThread{};
std::atomic<uint64_t> gAllocations{0};

void* CountedAllocation(std::size_t bytes) {
    if (std::this_thread::get_id() == gWatchedThread.load(std::memory_order_relaxed)) {
        gAllocations.fetch_add(1, std::memory_order_relaxed);
    }
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes)) {
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t bytes) {
    return CountedAllocation(bytes);
}
void* operator new[](std::size_t bytes) {
    return CountedAllocation(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace ry::gev::stream::testing {
namespace {

constexpr size_t kBuffers = 4;
constexpr uint32_t kWidth = 200;
constexpr uint32_t kHeight = 150;

// Lends and takes back buffers from fixed storage without allocating.
class Allocation : public OnBothPaths {};
RY_ON_BOTH_PATHS(Allocation);

struct QuietLender {
    std::array<std::vector<uint8_t>, kBuffers> storage;
    std::array<std::atomic<bool>, kBuffers> lent{};
    std::atomic<uint64_t> complete{0};
    std::atomic<uint64_t> delivered{0};

    QuietLender() {
        for (auto& buffer : storage) {
            buffer.resize(size_t{kWidth} * kHeight);
        }
    }
    bool Take(LentBuffer& buffer) {
        gWatchedThread.store(std::this_thread::get_id(), std::memory_order_relaxed);
        for (size_t i = 0; i < kBuffers; ++i) {
            if (!lent[i].exchange(true)) {
                buffer = LentBuffer{storage[i].data(), storage[i].size(), &lent[i]};
                return true;
            }
        }
        return false;
    }
    void Deliver(const ReceivedFrame& frame) {
        complete += frame.status == FrameStatus::Complete ? 1 : 0;
        static_cast<std::atomic<bool>*>(frame.buffer.tag)->store(false);
        ++delivered;
    }
    bool WaitFor(uint64_t count) const {
        for (int i = 0; i < kWaitMs && delivered.load() < count; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return delivered.load() >= count;
    }
};

TEST_P(Allocation, SteadyStreamingWithResendsAllocatesNothingOnTheReceivingThread) {
    QuietLender lender;
    std::vector<Block> blocks;
    for (uint64_t id = 1; id <= 30; ++id) {
        blocks.push_back(BuildBlock({.blockId = id, .width = kWidth, .height = kHeight}));
    }
    std::unique_ptr<UdpSender> device;
    ReceiverCallbacks callbacks;
    callbacks.takeBuffer = [&](LentBuffer& buffer) { return lender.Take(buffer); };
    callbacks.deliver = [&](const ReceivedFrame& frame) { lender.Deliver(frame); };
    callbacks.requestResend = [&](uint64_t blockId, uint32_t first, uint32_t last) {
        device->SendRange(blocks[blockId - 1], first, last);
    };
    const ReceiverEndpoint endpoint = LoopbackEndpoint();
    ReceiverSettings settings;
    settings.resendTimeoutMs = 20;
    auto receiver = FrameReceiver::Create(endpoint, settings, callbacks, nullptr);
    ASSERT_NE(receiver, nullptr);
    device = std::make_unique<UdpSender>(kDeviceIp, receiver->LocalPort());
    ASSERT_TRUE(receiver->Start());

    auto sendWithHoles = [&](size_t index) {
        const Block& block = blocks[index];
        for (uint32_t id = 0; id <= block.TrailerId(); ++id) {
            if (id % 37 != 5) {  // a few packets of every frame go missing
                device->Send(block.packets[id]);
            }
        }
    };
    for (size_t i = 0; i < 5; ++i) {  // warm-up: bitmaps grow, the packet size is learned
        sendWithHoles(i);
        ASSERT_TRUE(lender.WaitFor(i + 1));
    }
    // The first frame grows the packet bitmaps: proof that the counter watches the right thread.
    EXPECT_GT(gAllocations.load(), 0u);
    gAllocations.store(0);
    for (size_t i = 5; i < blocks.size(); ++i) {
        sendWithHoles(i);
        ASSERT_TRUE(lender.WaitFor(i + 1));
    }
    EXPECT_EQ(gAllocations.load(), 0u);
    EXPECT_EQ(lender.complete.load(), blocks.size());
    receiver->Stop(false, nullptr);
}

}  // namespace
}  // namespace ry::gev::stream::testing
