// How fast the emulator puts GVSP packets on loopback, and how quickly its control channel
// answers while it does. Figures: GB/s of stream bytes, packets/s, the share of a core the
// sending process uses beyond the receiver thread, and READREG round trips under load.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/udp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "ry/emulator/camera.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace {

using namespace ry;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::uint32_t kCameraIp = 0x7F000063;  // 127.0.0.99

class Socket {
  public:
    explicit Socket(int rcvbuf = 0) : fd_(::socket(AF_INET, SOCK_DGRAM, 0)) {
        if (rcvbuf > 0) {
            ::setsockopt(fd_, SOL_SOCKET, SO_RCVBUFFORCE, &rcvbuf, sizeof rcvbuf);
        }
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(kLoopback);
        ::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a);
    }
    ~Socket() { ::close(fd_); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int fd() const { return fd_; }
    std::uint16_t port() const {
        sockaddr_in a{};
        socklen_t n = sizeof a;
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &n);
        return ntohs(a.sin_port);
    }

  private:
    int fd_;
};

// A minimal host: one command, one answer.
class Host {
  public:
    explicit Host(std::uint16_t camera_port) : camera_port_(camera_port) {}
    bool command(const std::vector<std::uint8_t>& datagram, std::uint16_t id) {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(kCameraIp);
        to.sin_port = htons(camera_port_);
        ::sendto(socket_.fd(), datagram.data(), datagram.size(), 0,
                 reinterpret_cast<sockaddr*>(&to), sizeof to);
        std::uint8_t buffer[600];
        pollfd p{socket_.fd(), POLLIN, 0};
        while (::poll(&p, 1, 1000) > 0) {
            const ssize_t n = ::recv(socket_.fd(), buffer, sizeof buffer, 0);
            const auto ack =
                gev::decode_ack_header({buffer, static_cast<std::size_t>(std::max<ssize_t>(n, 0))});
            if (ack && ack->ack_id == id) {
                return ack->status == 0;
            }
        }
        return false;
    }
    bool write(std::vector<gev::RegisterWrite> writes) {
        id_ = gev::next_req_id(id_);
        return command(*gev::make_writereg_command(id_, writes), id_);
    }
    bool read(std::uint32_t address) {
        id_ = gev::next_req_id(id_);
        return command(*gev::make_readreg_command(id_, {address}), id_);
    }

  private:
    Socket socket_;
    std::uint16_t camera_port_;
    std::uint16_t id_ = 1;
};

// Drains the stream socket on its own thread, as a receiver on the second core would.
class Drain {
  public:
    // With `gro` the receiving socket takes segmentation-offload datagrams whole (UDP_GRO),
    // so the kernel does not cut them up on the sender's core: the sender's own cost.
    explicit Drain(bool gro) : thread_([this] { run(); }) {
        if (gro) {
            const int on = 1;
            ::setsockopt(socket_.fd(), SOL_UDP, UDP_GRO, &on, sizeof on);
        }
    }
    ~Drain() {
        stop_ = true;
        thread_.join();
    }
    std::uint16_t port() const { return socket_.port(); }
    double cpu_seconds() const { return cpu_.load(); }

  private:
    void run() {
        // Tiny slots: the datagrams are dequeued but not copied, so the receiver keeps up and
        // the figures measure the sender.
        std::vector<std::uint8_t> storage(64 * 64);
        std::vector<iovec> iov(64);
        std::vector<mmsghdr> messages(64);
        for (int i = 0; i < 64; ++i) {
            iov[i] = {storage.data() + i * 64, 64};
            messages[i] = {};
            messages[i].msg_hdr.msg_iov = &iov[i];
            messages[i].msg_hdr.msg_iovlen = 1;
        }
        while (!stop_) {
            // recvmmsg's own timeout only runs once a datagram came, so wait with poll.
            pollfd p{socket_.fd(), POLLIN, 0};
            if (::poll(&p, 1, 50) > 0) {
                ::recvmmsg(socket_.fd(), messages.data(), 64, MSG_DONTWAIT, nullptr);
            }
            rusage usage{};
            ::getrusage(RUSAGE_THREAD, &usage);
            cpu_ = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
                   (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        }
    }
    Socket socket_{64 << 20};
    std::atomic<bool> stop_{false};
    std::atomic<double> cpu_{0};
    std::thread thread_;
};

double process_cpu_seconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct StreamingCamera {
    emulator::Camera camera;
    Drain drain;
    Host host;
    // With `trains` the emulator hands the kernel segmentation-offload trains; a receiver
    // with `gro` takes them whole.
    StreamingCamera(std::uint32_t packet_size, std::uint32_t width, std::uint32_t height,
                    bool gro = false, bool trains = false)
        : camera(config(width, height, trains)), drain(gro), host(camera.control_port()) {
        host.write({{0x0A00, 2}});
        host.write({{0x0D18, kLoopback}, {0x0D04, packet_size}, {0x0D00, drain.port()}});
        host.write({{0x3001C, 0}, {0x30024, 1}});  // continuous, start
    }
    ~StreamingCamera() { host.write({{0x30028, 1}, {0x0D00, 0}, {0x0A00, 0}}); }
    static emulator::CameraConfig config(std::uint32_t width, std::uint32_t height, bool trains) {
        emulator::CameraConfig c;
        c.segmentation_trains = trains;
        c.address = "127.0.0.99";
        c.gvcp_port = 0;
        c.answer_broadcasts = false;
        c.width = width;
        c.height = height;
        c.fps = 0;  // as fast as possible
        return c;
    }
};

void BM_EmulatorSendRate(benchmark::State& state) {
    const auto packet_size = static_cast<std::uint32_t>(state.range(0));
    StreamingCamera streaming(packet_size, 2048, 2048, state.range(1) != 0, state.range(2) != 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // warm up
    const auto bytes0 = streaming.camera.bytes_sent();
    const auto packets0 = streaming.camera.packets_sent();
    const double cpu0 = process_cpu_seconds() - streaming.drain.cpu_seconds();
    const auto t0 = Clock::now();
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - t0).count();
    const double cpu = process_cpu_seconds() - streaming.drain.cpu_seconds() - cpu0;
    state.counters["GB/s"] = (streaming.camera.bytes_sent() - bytes0) / seconds / 1e9;
    state.counters["Mpackets/s"] = (streaming.camera.packets_sent() - packets0) / seconds / 1e6;
    state.counters["sender_cores"] = cpu / seconds;
    // The machine may be shared: bytes per CPU-second of the sending side is the figure
    // that says whether one core sustains the rate.
    state.counters["GB/s_per_core"] = (streaming.camera.bytes_sent() - bytes0) / cpu / 1e9;
}
// Arguments: SCPS packet size, receiver with UDP_GRO (1) or plain (0), sender packet by
// packet as a camera (0) or in segmentation-offload trains (1).
BENCHMARK(BM_EmulatorSendRate)
    ->Args({9000, 0, 0})
    ->Args({9000, 1, 1})
    ->Args({1500, 0, 0})
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

void BM_ControlRoundTripWhileStreaming(benchmark::State& state) {
    StreamingCamera streaming(9000, 2048, 2048);
    Host monitor(streaming.camera.control_port());
    for (auto _ : state) {
        if (!monitor.read(0x0938)) {
            state.SkipWithError("READREG unanswered while streaming");
            break;
        }
    }
}
BENCHMARK(BM_ControlRoundTripWhileStreaming)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
