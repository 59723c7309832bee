// The ring path's sleep: every wake-up datagram wakes it although none is read at once, the
// stop event ends it, and the datagrams it leaves queued never fill the socket's buffer.
#include "ring_sleep.h"

#include <arpa/inet.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>

namespace ry::gev::stream::detail {
namespace {

using std::chrono::steady_clock;

constexpr uint32_t kLoopback = 0x7F000001;

class Sender {
  public:
    explicit Sender(uint16_t port) : fd_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        to_.sin_family = AF_INET;
        to_.sin_addr.s_addr = htonl(kLoopback);
        to_.sin_port = htons(port);
    }
    void Send() const {
        const char byte = 1;
        ASSERT_EQ(
            ::sendto(fd_.Get(), &byte, 1, 0, reinterpret_cast<const sockaddr*>(&to_), sizeof to_),
            1);
    }

  private:
    UniqueFd fd_;
    sockaddr_in to_{};
};

// Datagrams still queued on the socket, read off without the sleep's help.
int Queued(int fd) {
    int count = 0;
    char byte = 0;
    while (::recv(fd, &byte, 1, MSG_DONTWAIT) >= 0) {
        ++count;
    }
    return count;
}

// Bounds each wait that expects a wake-up: a lost one shows as a wait that ran to its end.
constexpr int kLongWaitMs = 5000;
constexpr auto kPrompt = std::chrono::seconds(2);

struct RingSleepOnALargeBuffer : ::testing::Test {
    void SetUp() override {
        socket = DatagramSocket::Open(kLoopback, 0, kBufferBytes, nullptr);
        ASSERT_TRUE(socket.Valid() && stop.Valid());
        sleep = RingSleep::Open(socket.Fd(), stop.Fd(), socket.ReceiveBufferBytes());
        ASSERT_TRUE(sleep.Valid());
    }
    static constexpr size_t kBufferBytes = 4u << 20;
    DatagramSocket socket;
    WakeEvent stop;
    RingSleep sleep;
};

TEST_F(RingSleepOnALargeBuffer, EachDatagramWakesItAlthoughNoneIsReadAtOnce) {
    const Sender sender(socket.Port());
    for (int i = 0; i < 50; ++i) {
        sender.Send();
        const auto before = steady_clock::now();
        ASSERT_TRUE(sleep.Wait(kLongWaitMs, 0));
        ASSERT_LT(steady_clock::now() - before, kPrompt) << "datagram " << i;
    }
    // Woken by nothing new, the sleep lasts its time-out although the datagrams are still
    // queued, and then reads them off.
    const auto before = steady_clock::now();
    EXPECT_TRUE(sleep.Wait(50, 0));
    EXPECT_GE(steady_clock::now() - before, std::chrono::milliseconds(40));
    EXPECT_EQ(Queued(socket.Fd()), 0);
}

TEST_F(RingSleepOnALargeBuffer, AfterABacklogTheSocketIsEmptiedAndTheRingLookedAtFirst) {
    const Sender sender(socket.Port());
    for (int i = 0; i < 300; ++i)
        sender.Send();
    ASSERT_TRUE(sleep.Wait(kLongWaitMs, 0));  // the first of them
    const auto before = steady_clock::now();
    EXPECT_TRUE(sleep.Wait(kLongWaitMs, 5000));
    EXPECT_LT(steady_clock::now() - before, kPrompt) << "slept instead of looking again";
    EXPECT_EQ(Queued(socket.Fd()), 0);
}

TEST_F(RingSleepOnALargeBuffer, TheStopEventEndsTheSleepAndKeepsEndingItUntilDrained) {
    stop.Signal();
    EXPECT_FALSE(sleep.Wait(-1, 0));
    EXPECT_FALSE(sleep.Wait(-1, 0));
    stop.Drain();
    EXPECT_TRUE(sleep.Wait(10, 0));
}

// The smallest buffer holds two or three datagrams: unless they are read off as packets are
// handled, it fills, the next wake-up is dropped and the thread sleeps through it.
TEST(RingSleep, ASmallSocketBufferNeverFillsAndNoWakeUpIsLost) {
    const DatagramSocket socket = DatagramSocket::Open(kLoopback, 0, 1, nullptr);
    const WakeEvent stop;
    ASSERT_TRUE(socket.Valid() && stop.Valid());
    RingSleep sleep = RingSleep::Open(socket.Fd(), stop.Fd(), socket.ReceiveBufferBytes());
    ASSERT_TRUE(sleep.Valid());
    const Sender sender(socket.Port());
    for (int i = 0; i < 20; ++i) {
        sender.Send();
        const auto before = steady_clock::now();
        ASSERT_TRUE(sleep.Wait(kLongWaitMs, 0));
        ASSERT_LT(steady_clock::now() - before, kPrompt) << "wake-up " << i << " lost";
        ASSERT_TRUE(sleep.Wait(kLongWaitMs, 1));  // the packet that datagram stood for
    }
    EXPECT_EQ(Queued(socket.Fd()), 0);
}

}  // namespace
}  // namespace ry::gev::stream::detail
