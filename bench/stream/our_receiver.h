// Our producer for the side-by-side comparison, through its C interface like an application:
// the receive path chosen with RY_IF_PORT_RECEIVE_PATH, each frame's delivery logged.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

#include "child_measurement.h"
#include "frame_timing.h"

namespace ry::bench {

struct OurRun {
    std::string deviceAddress;  // dotted IPv4 of the emulated camera
    uint32_t packetSize = 9000;
    uint32_t buffers = 16;
    double seconds = 5;
    uint32_t receivePath = 1;  // RY_IF_PORT_RECEIVE_PATH: 1 socket, 2 packet ring
    pid_t emulator = -1;       // for the machine's CPU
};

std::optional<ReceiverReport> MeasureOurs(const OurRun& run, DeliveryLog& log);

}  // namespace ry::bench
