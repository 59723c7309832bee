// ry-stream-compare: our producer and Aravis's receiver, one after the other, against the
// same sender in one run. The sender is ry-camera-emulator (2048x2048 Mono8, flat out); each
// receiver runs in a child process of its own so its CPU time (RUSAGE_SELF of the child:
// receiving thread, delivery and the application loop) is counted alone. Rows:
//   ours/plain_udp         libRyGenTL, plain UDP socket (SO_RCVBUFFORCE where allowed)
//   aravis/plain_udp       ArvGvStream with its packet socket disabled
//   aravis/packet_socket   ArvGvStream in its raw packet-socket mode (CAP_NET_RAW)
// Counters: GBps (payload of complete frames per second), frames_complete,
// frames_incomplete, frames_lost (block ids never delivered), cpu_s_per_GB (over every byte
// delivered) and packet_socket (1 when a packet socket was open while streaming).
//
// Our producer discovers the camera, so this runs in a private network namespace:
//   bash scripts/in-private-net.sh build/bin/ry-stream-compare --seconds=5
// Other options: --fps=X (0: flat out), --address=IP (127.0.0.2), --packet-size=N (9000),
// --emulator=PATH, --trains.
// The emulator sends packet by packet, as a camera does. With --trains it hands the kernel
// trains of packets (segmentation offload), which our socket takes whole as a NIC's GRO
// would hand them over; a packet socket on loopback sees such a train as one oversized
// frame, so Aravis's packet-socket row means nothing in that mode.
// (ry-camera-emulator next to this program), plus the usual --benchmark_* flags.
#include <benchmark/benchmark.h>
#include <net/if.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

#include "aravis_receiver.h"
#include "child_measurement.h"
#include "ry/emulator/emulator_process.h"

namespace {

using namespace ry::bench;
using ry::gev::tools::BenchOptions;
using ry::gev::tools::BenchSession;

constexpr uint32_t kBuffers = 16;
constexpr auto kSetUpAllowance = std::chrono::seconds(30);

struct CompareOptions {
    double seconds = 5;
    std::string address = "127.0.0.2";
    uint32_t packetSize = 9000;
    std::string fps = "0";  // the sender's frame rate; 0 sends flat out
    bool trains = false;
    std::string emulator;
};

std::string NextToThisProgram(const char* name) {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? name : (self.parent_path() / name).string();
}

std::optional<CompareOptions> ParseOptions(int argc, char** argv) {
    CompareOptions options;
    options.emulator = NextToThisProgram("ry-camera-emulator");
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const auto value = [&](const char* prefix) -> std::optional<std::string> {
            const size_t length = std::strlen(prefix);
            if (arg.compare(0, length, prefix) != 0)
                return std::nullopt;
            return arg.substr(length);
        };
        try {
            if (auto v = value("--seconds="))
                options.seconds = std::stod(*v);
            else if (auto v = value("--address="))
                options.address = *v;
            else if (auto v = value("--packet-size="))
                options.packetSize = static_cast<uint32_t>(std::stoul(*v));
            else if (auto v = value("--fps="); v && std::stod(*v) >= 0)
                options.fps = *v;
            else if (arg == "--trains")
                options.trains = true;
            else if (auto v = value("--emulator="))
                options.emulator = *v;
            else
                return std::nullopt;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    if (!(options.seconds > 0) || options.packetSize < 576 || options.packetSize > 9000)
        return std::nullopt;
    return options;
}

// Discovery broadcasts on every interface it sees; outside a namespace with nothing but lo
// the comparison refuses to run.
bool OnlyLoopbackVisible() {
    struct if_nameindex* names = ::if_nameindex();
    if (!names)
        return false;
    bool onlyLoopback = true;
    for (const struct if_nameindex* entry = names; entry->if_index != 0; ++entry)
        onlyLoopback = onlyLoopback && std::strcmp(entry->if_name, "lo") == 0;
    ::if_freenameindex(names);
    return onlyLoopback;
}

std::optional<ReceiverReport> MeasureOurs(const CompareOptions& options) {
    BenchOptions run;
    run.device = options.address;
    run.seconds = options.seconds;
    run.packetSize = options.packetSize;
    run.buffers = kBuffers;
    BenchSession session;
    std::string error;
    if (!session.Open(run, error)) {
        std::fprintf(stderr, "ours: %s\n", error.c_str());
        return std::nullopt;
    }
    const auto figures = session.Stream(run);
    if (!figures)
        return std::nullopt;
    return ReceiverReport{*figures, false};
}

void Publish(benchmark::State& state, const ReceiverReport& report) {
    const auto& f = report.figures;
    const double gigabytes = static_cast<double>(f.bytes) / 1e9;
    state.counters["GBps"] =
        f.seconds > 0 ? static_cast<double>(f.completeBytes) / 1e9 / f.seconds : 0;
    state.counters["frames_complete"] = static_cast<double>(f.frames - f.incomplete);
    state.counters["frames_incomplete"] = static_cast<double>(f.incomplete);
    state.counters["frames_lost"] = static_cast<double>(f.lost);
    state.counters["cpu_s_per_GB"] = gigabytes > 0 ? f.cpuSeconds / gigabytes : 0;
    state.counters["packet_socket"] = report.packetSocketOpen ? 1 : 0;
}

void RegisterReceiver(const char* name, std::function<std::optional<ReceiverReport>()> measure,
                      double seconds) {
    const auto limit = std::chrono::seconds(static_cast<long>(seconds)) + kSetUpAllowance;
    benchmark::RegisterBenchmark(
        name,
        [measure, limit](benchmark::State& state) {
            for (auto _ : state) {
                const auto report = MeasureInChild(measure, limit);
                if (!report) {
                    state.SkipWithError("the receiver failed (see its message above)");
                    return;
                }
                state.SetIterationTime(report->figures.seconds);
                Publish(state, *report);
            }
        })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kSecond);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const auto options = ParseOptions(argc, argv);
    if (!options) {
        std::fprintf(stderr,
                     "usage: ry-stream-compare [--seconds=S] [--fps=X] [--address=IP] "
                     "[--packet-size=N] [--emulator=PATH] [--trains] [--benchmark_...]\n");
        return 2;
    }
    if (!OnlyLoopbackVisible()) {
        std::fprintf(stderr,
                     "ry-stream-compare discovers cameras: run it inside "
                     "scripts/in-private-net.sh\n");
        return 2;
    }
    try {
        std::vector<std::string> arguments{
            "--address", options->address, "--serial", "compare", "--pixel-format", "Mono8",
            "--width",   "2048",           "--height", "2048",    "--fps",          options->fps};
        if (options->trains) {
            arguments.push_back("--segmentation-trains");
        }
        const ry::emulator::EmulatorProcess sender(options->emulator, arguments);
        std::fprintf(stderr, "sender: %s\n", sender.ReadyLines().front().c_str());
        const CompareOptions o = *options;
        RegisterReceiver(
            "ours/plain_udp", [o] { return MeasureOurs(o); }, o.seconds);
        for (const bool packetSocket : {false, true}) {
            const AravisRun run{o.address, o.packetSize, kBuffers, o.seconds, packetSocket};
            RegisterReceiver(
                packetSocket ? "aravis/packet_socket" : "aravis/plain_udp",
                [run] { return MeasureAravis(run); }, o.seconds);
        }
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-stream-compare: %s\n", error.what());
        return 1;
    }
    benchmark::Shutdown();
    return 0;
}
