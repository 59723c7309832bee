// Command line of ry-stream-bench.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ry::gev::tools {

struct BenchOptions {
    std::string device;       // dotted IPv4 address of the camera
    double seconds = 5.0;     // streaming time
    uint32_t packetSize = 0;  // 0 keeps the device's
    uint32_t buffers = 8;
    uint64_t bufferBytes = 0;   // 0: the device's PayloadSize (or 16 MiB when unknown)
    uint32_t latencyReads = 0;  // > 0: measure register round trips instead of streaming
    uint32_t receivePath = 0;   // RY_IF_PORT_RECEIVE_PATH: 0 automatic, 1 socket, 2 ring
};

// Parses argv[1..]; on failure returns nullopt and sets `error`.
std::optional<BenchOptions> ParseBenchOptions(const std::vector<std::string>& args,
                                              std::string& error);
const char* BenchUsage();

}  // namespace ry::gev::tools
