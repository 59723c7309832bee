// ry-hostile-camera: serves one hostile device (and, when asked, sprays forged stream
// packets) until SIGINT/SIGTERM, for tests of programs such as rycam. Prints
// "<address> hostile" once it listens.
#include <signal.h>

#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include "hostile_device.h"
#include "udp_socket.h"

namespace {

using namespace ry::emulator;
using namespace ry::emulator::hostile;

constexpr const char* kUsage =
    "usage: ry-hostile-camera [--address IP] [--discovery HOW] [--reads HOW] [--texts]\n"
    "                         [--url TEXT] [--late-ms N] [--spray IP:PORT]\n"
    "  HOW: honest truncated oversized mislabelled duplicated late pending silent\n"
    "  --texts          discovery texts fill their fields with control bytes, no terminator\n"
    "  --spray IP:PORT  forged stream packets at a host's stream port\n";

Answer answer_named(const std::string& name) {
    static const std::map<std::string, Answer> names = {
        {"honest", Answer::Honest},          {"truncated", Answer::Truncated},
        {"oversized", Answer::Oversized},    {"mislabelled", Answer::Mislabelled},
        {"duplicated", Answer::Duplicated},  {"late", Answer::Late},
        {"pending", Answer::PendingForever}, {"silent", Answer::Silent}};
    const auto found = names.find(name);
    if (found == names.end())
        throw std::invalid_argument("unknown answer: " + name);
    return found->second;
}

struct Spray {
    std::uint32_t ip = 0;
    std::uint16_t port = 0;
};

Spray spray_target(const std::string& text) {
    const auto colon = text.find(':');
    const auto ip = parse_ipv4(text.substr(0, colon));
    if (colon == std::string::npos || !ip)
        throw std::invalid_argument("--spray needs IP:PORT");
    return {*ip, static_cast<std::uint16_t>(std::stoul(text.substr(colon + 1)))};
}

HostileConfig parse(int argc, char** argv, std::optional<Spray>& spray) {
    HostileConfig config;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--texts") {
            config.hostile_texts = true;
            continue;
        }
        static const std::set<std::string> valued = {"--address", "--discovery", "--reads",
                                                     "--url",     "--late-ms",   "--spray"};
        if (valued.count(option) == 0)
            throw std::invalid_argument("unknown option " + option);
        if (i + 1 >= argc)
            throw std::invalid_argument("missing value after " + option);
        const std::string value = argv[++i];
        if (option == "--address")
            config.address = value;
        else if (option == "--discovery")
            config.discovery = answer_named(value);
        else if (option == "--reads")
            config.reads = answer_named(value);
        else if (option == "--url")
            config.url = value;
        else if (option == "--late-ms")
            config.late_ms = static_cast<std::uint32_t>(std::stoul(value));
        else
            spray = spray_target(value);
    }
    return config;
}

}  // namespace

int main(int argc, char** argv) {
    std::optional<Spray> spray;
    HostileConfig config;
    try {
        config = parse(argc, argv, spray);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-hostile-camera: %s\n%s", error.what(), kUsage);
        return 2;
    }
    sigset_t stop_signals;
    sigemptyset(&stop_signals);
    sigaddset(&stop_signals, SIGINT);
    sigaddset(&stop_signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop_signals, nullptr);
    std::unique_ptr<HostileDevice> device;
    std::unique_ptr<ForgedStream> forged;
    try {
        device = std::make_unique<HostileDevice>(config);
        if (spray)
            forged =
                std::make_unique<ForgedStream>(std::vector{config.address}, spray->ip, spray->port);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-hostile-camera: %s\n", error.what());
        return 1;
    }
    std::printf("%s hostile\n", config.address.c_str());
    std::fflush(stdout);
    int signal_number = 0;
    sigwait(&stop_signals, &signal_number);
    return 0;
}
