// CPU time of the receiving process, of the sender (the parent, which runs the emulator)
// and of the whole machine, read at the two ends of a measurement window. The machine's
// figure matters on loopback: the kernel's copy of a datagram into a packet ring is done in
// the sender's send call and charged to the sender, so a packet socket looks cheaper in
// its own process than it is.
#pragma once

#include <chrono>

namespace ry::bench {

struct CpuReading {
    std::chrono::steady_clock::time_point at;
    double process = 0;  // this process, all threads (RUSAGE_SELF)
    double sender = 0;   // the parent process
    double machine = 0;  // every CPU's time not idle
};

struct CpuSpent {
    double seconds = 0;  // wall-clock
    double process = 0;
    double sender = 0;
    double machine = 0;
};

CpuReading ReadCpu();
CpuSpent Between(const CpuReading& start, const CpuReading& end);

}  // namespace ry::bench
