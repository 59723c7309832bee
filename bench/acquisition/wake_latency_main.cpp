// ry-wake-latency: how long a thread asleep in the kernel takes to run again once woken, after
// a pause as long as a frame interval. A frame reaches an image callback through two such
// wake-ups (the receiving thread at the frame's trailer, then the grab thread), so this is the
// floor under the acquisition comparison's callback latency on the machine at hand. On a
// virtual machine an idle CPU halts and is woken through the host, which costs far more at
// 30 frames per second than at thousands.
//   build/bin/ry-wake-latency [--wakes=N]
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Pause {
    const char* label;
    std::chrono::microseconds length;
};

constexpr Pause kPauses[] = {
    {"33 ms (30 fps)", std::chrono::microseconds(33333)},
    {"4 ms (250 fps)", std::chrono::microseconds(4000)},
    {"200 us (5000 fps)", std::chrono::microseconds(200)},
};

// Microseconds from each write to the eventfd to the sleeper's return from its read.
std::vector<double> MeasureWakes(std::chrono::microseconds pause, int wakes) {
    const int event = ::eventfd(0, EFD_CLOEXEC);
    std::atomic<int64_t> wokenAt{0};
    std::vector<double> latencies;
    std::thread sleeper([&] {
        for (int i = 0; i < wakes; ++i) {
            uint64_t value = 0;
            if (::read(event, &value, sizeof value) != sizeof value)
                return;
            wokenAt.store(Clock::now().time_since_epoch().count());
        }
    });
    for (int i = 0; i < wakes; ++i) {
        std::this_thread::sleep_for(pause);
        const int64_t sentAt = Clock::now().time_since_epoch().count();
        const uint64_t one = 1;
        if (::write(event, &one, sizeof one) != sizeof one)
            break;
        while (wokenAt.load() < sentAt)
            std::this_thread::yield();
        latencies.push_back(static_cast<double>(wokenAt.load() - sentAt) / 1000.0);
    }
    sleeper.join();
    ::close(event);
    std::sort(latencies.begin(), latencies.end());
    return latencies;
}

}  // namespace

int main(int argc, char** argv) {
    int wakes = 300;
    if (argc == 2 && std::strncmp(argv[1], "--wakes=", 8) == 0)
        wakes = std::max(10, std::atoi(argv[1] + 8));
    else if (argc != 1) {
        std::fputs("usage: ry-wake-latency [--wakes=N]\n", stderr);
        return 2;
    }
    std::printf("%-18s %10s %10s %10s\n", "pause", "median us", "p90 us", "p99 us");
    for (const Pause& pause : kPauses) {
        const auto latencies = MeasureWakes(pause.length, wakes);
        if (latencies.empty())
            return 1;
        const auto at = [&](double share) {
            return latencies[static_cast<size_t>(share *
                                                 static_cast<double>(latencies.size() - 1))];
        };
        std::printf("%-18s %10.1f %10.1f %10.1f\n", pause.label, at(0.5), at(0.9), at(0.99));
    }
    return 0;
}
