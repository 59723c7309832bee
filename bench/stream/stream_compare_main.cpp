// ry-stream-compare: our producer and Aravis's receiver side by side in one run, each on its
// two receive paths, against one emulated camera (2048x2048 Mono8) at each frame rate asked
// for (default 30 fps, 250 fps and flat out). Rows:
//   ours/socket            libRyGenTL on its UDP socket (RY_IF_PORT_RECEIVE_PATH = 1)
//   ours/packet_ring       libRyGenTL on its packet ring (= 2, needs CAP_NET_RAW)
//   aravis/plain_udp       ArvGvStream with its packet socket disabled
//   aravis/packet_socket   ArvGvStream in its packet-socket mode (CAP_NET_RAW)
// Each receiver runs in a child process of its own. Columns: GB/s of complete frames, frames
// complete / incomplete / lost (block ids never delivered), the receiving process's CPU
// seconds per GB delivered, the whole machine's (receiver + emulator + every CPU's soft
// interrupts, from /proc; on loopback the kernel's copy into a packet ring is charged to the
// sender), and the time from the kernel's arrival of each block's trailer (timestamp of a
// packet socket of this program, on lo) to the frame's delivery to the application: median
// and 99th percentile. pkt_sock: 1 when the receiver held a packet socket while streaming.
//
// Our producer discovers the camera, so this runs in a private network namespace:
//   bash scripts/in-private-net.sh build/bin/ry-stream-compare --seconds=5
// Options: --fps=LIST (comma separated, 0 flat out), --receivers=LIST (row names; all by
// default), --seconds=S, --address=IP (127.0.0.2),
// --packet-size=N (9000), --emulator=PATH (ry-camera-emulator next to this program),
// --trains (the emulator hands the kernel segmentation-offload trains: only ours/socket takes
// them whole; a packet socket on loopback sees each train as one oversized datagram).
#include <arpa/inet.h>
#include <net/if.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "aravis_receiver.h"
#include "child_measurement.h"
#include "frame_timing.h"
#include "our_receiver.h"
#include "ry/emulator/emulator_process.h"

namespace {

using namespace ry::bench;

constexpr uint32_t kBuffers = 16;
constexpr auto kSetUpAllowance = std::chrono::seconds(30);

struct CompareOptions {
    double seconds = 5;
    std::string address = "127.0.0.2";
    uint32_t packetSize = 9000;
    std::vector<std::string> rates{"30", "250", "0"};
    std::string receivers;  // comma separated row names; empty: all four
    bool trains = false;
    std::string emulator;
};

std::string NextToThisProgram(const char* name) {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? name : (self.parent_path() / name).string();
}

std::vector<std::string> SplitRates(const std::string& list) {
    std::vector<std::string> rates;
    std::istringstream stream(list);
    for (std::string rate; std::getline(stream, rate, ',');) {
        if (std::stod(rate) < 0)
            throw std::invalid_argument("negative rate");
        rates.push_back(rate);
    }
    return rates;
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
            else if (auto v = value("--fps="))
                options.rates = SplitRates(*v);
            else if (auto v = value("--receivers="))
                options.receivers = "," + *v + ",";
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
    if (!(options.seconds > 0) || options.packetSize < 576 || options.packetSize > 9000 ||
        options.rates.empty())
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

struct Row {
    std::string rate;
    std::string receiver;
    std::optional<ReceiverReport> report;
    Latency latency;
};

void PrintHeading() {
    std::printf("%-6s %-21s %6s %8s %6s %6s %9s %9s %9s %9s %8s\n", "fps", "receiver", "GB/s",
                "complete", "incmpl", "lost", "proc_s/GB", "mach_s/GB", "lat_med", "lat_p99",
                "pkt_sock");
}

void Print(const Row& row) {
    if (!row.report) {
        std::printf("%-6s %-21s failed (see its message above)\n", row.rate.c_str(),
                    row.receiver.c_str());
        return;
    }
    const auto& f = row.report->figures;
    const double gigabytes = static_cast<double>(f.bytes) / 1e9;
    const auto perGB = [&](double seconds) { return gigabytes > 0 ? seconds / gigabytes : 0.0; };
    std::printf("%-6s %-21s %6.3f %8llu %6llu %6llu %9.3f %9.3f %7.0fus %7.0fus %8d\n",
                row.rate == "0" ? "max" : row.rate.c_str(), row.receiver.c_str(),
                f.seconds > 0 ? static_cast<double>(f.completeBytes) / 1e9 / f.seconds : 0,
                static_cast<unsigned long long>(f.frames - f.incomplete),
                static_cast<unsigned long long>(f.incomplete),
                static_cast<unsigned long long>(f.lost), perGB(f.cpuSeconds),
                perGB(row.report->machineCpuSeconds), row.latency.medianUs, row.latency.p99Us,
                row.report->packetSocketOpen ? 1 : 0);
    std::fflush(stdout);
}

// All four receivers, one after the other, on one emulator sending at `rate`.
void MeasureAt(const CompareOptions& o, const std::string& rate, std::vector<Row>& rows) {
    std::vector<std::string> arguments{"--address",      o.address, "--serial", "compare",
                                       "--pixel-format", "Mono8",   "--width",  "2048",
                                       "--height",       "2048",    "--fps",    rate};
    if (o.trains)
        arguments.push_back("--segmentation-trains");
    const ry::emulator::EmulatorProcess sender(o.emulator, arguments);
    const pid_t emulator = FindChild(o.emulator.c_str());
    in_addr camera{};
    ::inet_pton(AF_INET, o.address.c_str(), &camera);
    TrailerClock clock(ntohl(camera.s_addr));
    if (!clock.Valid())
        std::fprintf(stderr, "no packet socket for the trailer clock: no latency figures\n");
    DeliveryLog log;
    const auto limit = std::chrono::seconds(static_cast<long>(o.seconds)) + kSetUpAllowance;
    const auto measure = [&](const char* name, std::function<std::optional<ReceiverReport>()> run) {
        std::string listed = ",";
        listed.append(name).append(",");
        if (!o.receivers.empty() && o.receivers.find(listed) == std::string::npos)
            return;
        log.Clear();
        clock.Clear();
        Row row{rate, name, MeasureInChild(run, limit), {}};
        row.latency = MatchLatency(log, clock);
        Print(row);
        rows.push_back(row);
    };
    for (const uint32_t path : {1u, 2u}) {
        const OurRun run{o.address, o.packetSize, kBuffers, o.seconds, path, emulator};
        measure(path == 1 ? "ours/socket" : "ours/packet_ring",
                [run, &log] { return MeasureOurs(run, log); });
    }
    for (const bool packetSocket : {false, true}) {
        const AravisRun run{o.address, o.packetSize, kBuffers, o.seconds, packetSocket, emulator};
        measure(packetSocket ? "aravis/packet_socket" : "aravis/plain_udp",
                [run, &log] { return MeasureAravis(run, log); });
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = ParseOptions(argc, argv);
    if (!options) {
        std::fprintf(stderr,
                     "usage: ry-stream-compare [--seconds=S] [--fps=X,Y,...] [--receivers=A,B,...] "
                     "[--address=IP] "
                     "[--packet-size=N] [--emulator=PATH] [--trains]\n");
        return 2;
    }
    if (!OnlyLoopbackVisible()) {
        std::fprintf(stderr,
                     "ry-stream-compare discovers cameras: run it inside "
                     "scripts/in-private-net.sh\n");
        return 2;
    }
    try {
        std::vector<Row> rows;
        PrintHeading();
        for (const std::string& rate : options->rates)
            MeasureAt(*options, rate, rows);
        std::printf("\n");
        PrintHeading();
        for (const Row& row : rows)
            Print(row);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-stream-compare: %s\n", error.what());
        return 1;
    }
    return 0;
}
