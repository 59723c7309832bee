// ry-acquisition-compare: acquisition end to end, our SDK beside Aravis, on one emulated
// camera in one run. The camera (ry_emulator, in this process) sends packet by packet in
// 9000-byte packets at four rates: a 1 GbE camera's (2048x2048 Mono8 at 30 fps), a 10 GbE
// camera's (250 fps), flat out, and 640x480 flat out. Each receiver runs in a child process
// of its own and hands every frame to an image callback that only records it:
//   ours                  RyGigE -> RyCamera::OpenCamera, Grab, Abort (callback on the grab thread)
//   aravis packet socket  ArvStream's callback, its packet-socket mode (needs CAP_NET_RAW)
//   aravis udp            ArvStream's callback, its plain UDP socket
// Columns: GB/s and frames that reached the callback after a 1 s warm-up, frames lost
// (block ids never delivered) and incomplete, CPU seconds per GB of the receiving process,
// of the sender (this process) and of the whole machine (time not idle on every CPU, other
// users of the machine included), and the time from the emulator's trailer send returning
// to the callback (median, p99; a callback that ran before the send returned counts 0).
// Our rows add the SDK's own counters, which run from OpenCamera on (warm-up included).
//
// It discovers, so it runs in a private network namespace:
//   bash scripts/in-private-net.sh build/bin/ry-acquisition-compare [--seconds=S]
// Other options: --packet-size=N (9000), --buffers=N (32, for every receiver), --receiver=TEXT
// (only the receivers whose name holds TEXT, e.g. "ours" under a profiler), --rate=TEXT (only
// the cameras whose label holds TEXT, e.g. "640x480").
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "aravis_callback_receiver.h"
#include "private_network.h"
#include "ry/emulator/camera.h"
#include "sdk_receiver.h"
#include "shared_mapping.h"

namespace {

using namespace ry::bench;

constexpr auto kSetUpAllowance = std::chrono::seconds(30);
constexpr const char* kAddress = "127.0.0.2";
constexpr const char* kUsage =
    "usage: ry-acquisition-compare [--seconds=S] [--packet-size=N] [--buffers=N] "
    "[--receiver=TEXT] [--rate=TEXT]\n";

struct Options {
    double seconds = 3;
    uint32_t packetSize = 9000;
    // At 640x480 flat out 16 buffers are 5 ms of slack, less than a loaded two-core machine
    // may keep a thread waiting.
    uint32_t buffers = 32;
    std::string receiver;  // only the receivers whose name holds this text (for profiling)
    std::string rate;      // only the cameras whose label holds this text
};

struct Rate {
    const char* label;
    uint32_t width;
    uint32_t height;
    double fps;  // 0: flat out
};

constexpr Rate kRates[] = {
    {"2048x2048 30 fps", 2048, 2048, 30},
    {"2048x2048 250 fps", 2048, 2048, 250},
    {"2048x2048 flat out", 2048, 2048, 0},
    {"640x480 flat out", 640, 480, 0},
};

using Measure = std::function<std::optional<ReceiverReport>(RunBoard&)>;

struct Receiver {
    const char* label;
    Measure measure;
};

struct Row {
    const Rate* rate;
    const char* receiver;
    std::optional<ReceiverSummary> summary;
};

bool ParseNumber(const char* arg, const char* prefix, double& value) {
    const size_t length = std::strlen(prefix);
    if (std::strncmp(arg, prefix, length) != 0)
        return false;
    char* end = nullptr;
    value = std::strtod(arg + length, &end);
    return end != arg + length && *end == '\0';
}

std::optional<Options> ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        double value = 0;
        if (ParseNumber(argv[i], "--seconds=", value) && value > 0)
            options.seconds = value;
        else if (ParseNumber(argv[i], "--packet-size=", value) && value >= 576 && value <= 9000)
            options.packetSize = static_cast<uint32_t>(value);
        else if (ParseNumber(argv[i], "--buffers=", value) && value >= 2 && value <= 256)
            options.buffers = static_cast<uint32_t>(value);
        else if (std::strncmp(argv[i], "--receiver=", 11) == 0)
            options.receiver = argv[i] + 11;
        else if (std::strncmp(argv[i], "--rate=", 7) == 0)
            options.rate = argv[i] + 7;
        else
            return std::nullopt;
    }
    return options;
}

std::vector<Receiver> Receivers(const Options& o) {
    const SdkRun ours{o.packetSize, o.buffers, o.seconds};
    const AravisRun packetSocket{kAddress, o.packetSize, o.buffers, o.seconds, true};
    const AravisRun udp{kAddress, o.packetSize, o.buffers, o.seconds, false};
    std::vector<Receiver> all{
        {"ours", [ours](RunBoard& board) { return MeasureSdk(ours, board); }},
        {"aravis packet socket",
         [packetSocket](RunBoard& board) { return MeasureAravisCallback(packetSocket, board); }},
        {"aravis udp", [udp](RunBoard& board) { return MeasureAravisCallback(udp, board); }},
    };
    std::erase_if(all, [&o](const Receiver& r) {
        return std::string(r.label).find(o.receiver) == std::string::npos;
    });
    return all;
}

ry::emulator::CameraConfig CameraFor(const Rate& rate) {
    ry::emulator::CameraConfig config;
    config.address = kAddress;
    config.serial = "ACQ0001";
    config.pixel_format = "Mono8";
    config.width = rate.width;
    config.height = rate.height;
    config.fps = rate.fps;
    return config;
}

// One camera per rate; the receivers take their turns on it.
void MeasureRate(const Rate& rate, const std::vector<Receiver>& receivers, const Options& options,
                 RunBoard& board, std::vector<Row>& rows) {
    ry::emulator::Camera camera(CameraFor(rate));
    camera.set_trailer_observer([&board](uint64_t blockId) { board.trailers.Stamp(blockId); });
    const auto limit = std::chrono::seconds(static_cast<long>(options.seconds)) + kSetUpAllowance;
    for (const Receiver& receiver : receivers) {
        std::fprintf(stderr, "%s: %s\n", rate.label, receiver.label);
        board.summary = ReceiverSummary{};
        const auto report = MeasureInChild([&] { return receiver.measure(board); }, limit);
        rows.push_back({&rate, receiver.label,
                        report ? std::optional<ReceiverSummary>(board.summary) : std::nullopt});
    }
    camera.set_trailer_observer({});
}

double PerGigabyte(double seconds, uint64_t bytes) {
    return bytes > 0 ? seconds / (static_cast<double>(bytes) / 1e9) : 0;
}

std::string Notes(const ReceiverSummary& s) {
    char text[160];
    if (s.hasSdkCounters) {
        std::snprintf(
            text, sizeof text,
            "SDK counters: delivered %llu, lost %llu, corrupted %llu, packets missing %llu",
            static_cast<unsigned long long>(s.sdk.delivered),
            static_cast<unsigned long long>(s.sdk.lost),
            static_cast<unsigned long long>(s.sdk.corrupted),
            static_cast<unsigned long long>(s.sdk.missingPackets));
    } else {
        std::snprintf(text, sizeof text, "packet socket %s", s.packetSocketOpen ? "open" : "none");
    }
    std::string notes = text;
    if (s.beforeStamp > 0)
        notes += "; " + std::to_string(s.beforeStamp) + " callbacks before the send returned";
    if (s.unrecorded > 0)
        notes += "; " + std::to_string(s.unrecorded) + " callbacks not recorded";
    return notes;
}

void PrintRow(const Row& row) {
    std::printf("%-19s %-21s ", row.rate->label, row.receiver);
    if (!row.summary) {
        std::printf("failed (see the messages above)\n");
        return;
    }
    const ReceiverSummary& s = *row.summary;
    const auto& f = s.figures;
    std::printf("%6.3f %7llu %5llu %6llu %7.3f %7.3f %7.3f %8.1f %8.1f  %s\n",
                f.seconds > 0 ? static_cast<double>(f.completeBytes) / 1e9 / f.seconds : 0,
                static_cast<unsigned long long>(f.frames), static_cast<unsigned long long>(f.lost),
                static_cast<unsigned long long>(f.incomplete), PerGigabyte(f.cpuSeconds, f.bytes),
                PerGigabyte(s.senderCpuSeconds, f.bytes), PerGigabyte(s.machineCpuSeconds, f.bytes),
                s.latencyMedianUs, s.latencyP99Us, Notes(s).c_str());
}

// The machine column counts every process: the load others put on a shared machine shows.
std::string LoadAverage() {
    std::ifstream load("/proc/loadavg");
    std::string oneMinute;
    load >> oneMinute;
    return oneMinute;
}

void PrintTable(const std::vector<Row>& rows, const Options& options, const std::string& load) {
    std::printf("%ld CPUs, load average %s at the start, %s at the end\n",
                ::sysconf(_SC_NPROCESSORS_ONLN), load.c_str(), LoadAverage().c_str());
    std::printf(
        "acquisition end to end, %.1f s per receiver after a 1 s warm-up, %u-byte packets, "
        "%u buffers\n",
        options.seconds, options.packetSize, options.buffers);
    std::printf("%-19s %-21s %6s %7s %5s %6s %23s %17s\n", "", "", "", "", "", "", "CPU-s/GB",
                "callback us");
    std::printf("%-19s %-21s %6s %7s %5s %6s %7s %7s %7s %8s %8s  %s\n", "camera", "receiver",
                "GB/s", "frames", "lost", "incmpl", "process", "sender", "machine", "median", "p99",
                "notes");
    for (const Row& row : rows)
        PrintRow(row);
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = ParseOptions(argc, argv);
    if (!options) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (!rytest::InPrivateNetwork()) {
        std::fprintf(stderr, "ry-acquisition-compare discovers cameras: %s\n",
                     rytest::kPrivateNetworkAdvice);
        return 2;
    }
    try {
        const std::string load = LoadAverage();
        const SharedMapping<RunBoard> board;
        const auto receivers = Receivers(*options);
        std::vector<Row> rows;
        for (const Rate& rate : kRates)
            if (std::string(rate.label).find(options->rate) != std::string::npos)
                MeasureRate(rate, receivers, *options, *board, rows);
        PrintTable(rows, *options, load);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-acquisition-compare: %s\n", error.what());
        return 1;
    }
    return 0;
}
