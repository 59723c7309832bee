#include "bench_options.h"

#include <arpa/inet.h>

#include <cstdlib>

namespace ry::gev::tools {
namespace {

bool ParseUnsigned(const std::string& text, uint64_t max, uint64_t& value) {
    if (text.empty() || text[0] == '-')
        return false;
    char* end = nullptr;
    value = std::strtoull(text.c_str(), &end, 10);
    return *end == '\0' && value <= max;
}

}  // namespace

const char* BenchUsage() {
    return "usage: ry-stream-bench --device IP [--seconds N] [--packet-size BYTES] "
           "[--buffers N] [--buffer-bytes N]\n"
           "       ry-stream-bench --device IP --latency N\n";
}

std::optional<BenchOptions> ParseBenchOptions(const std::vector<std::string>& args,
                                              std::string& error) {
    BenchOptions options;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& flag = args[i];
        if (i + 1 >= args.size()) {
            error = "missing value after " + flag;
            return std::nullopt;
        }
        const std::string& value = args[++i];
        uint64_t number = 0;
        if (flag == "--device") {
            in_addr address{};
            if (inet_pton(AF_INET, value.c_str(), &address) != 1) {
                error = "not an IPv4 address: " + value;
                return std::nullopt;
            }
            options.device = value;
        } else if (flag == "--seconds") {
            char* end = nullptr;
            options.seconds = std::strtod(value.c_str(), &end);
            if (*end != '\0' || !(options.seconds > 0) || options.seconds > 86400) {
                error = "bad --seconds: " + value;
                return std::nullopt;
            }
        } else if (flag == "--packet-size" && ParseUnsigned(value, 65535, number) &&
                   number >= 576) {
            options.packetSize = static_cast<uint32_t>(number);
        } else if (flag == "--buffers" && ParseUnsigned(value, 1024, number) && number > 0) {
            options.buffers = static_cast<uint32_t>(number);
        } else if (flag == "--buffer-bytes" && ParseUnsigned(value, 1ull << 32, number) &&
                   number > 0) {
            options.bufferBytes = number;
        } else if (flag == "--latency" && ParseUnsigned(value, 10000000, number) && number > 0) {
            options.latencyReads = static_cast<uint32_t>(number);
        } else {
            error = "bad option or value: " + flag + " " + value;
            return std::nullopt;
        }
    }
    if (options.device.empty()) {
        error = "--device is required";
        return std::nullopt;
    }
    return options;
}

}  // namespace ry::gev::tools
