// What the benchmarks read of processes and of the machine from /proc.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace ry::bench {

// Fields of /proc/<pid>/stat with the command name first (it may hold spaces): [0] comm,
// [1] state, [2] ppid, ... [12] utime, [13] stime. Empty when the process is gone.
std::vector<std::string> ProcessStatFields(pid_t pid);

// User and system CPU seconds of a process so far; 0 when it cannot be read.
double ProcessCpuSecondsOf(pid_t pid);

// CPU seconds of every CPU so far, from the first line of /proc/stat.
struct MachineCpu {
    double busy = 0;     // user, nice, system, irq and softirq
    double softirq = 0;  // soft interrupts alone
};
MachineCpu ReadMachineCpu();

// Packet sockets this process holds (its fds against /proc/net/packet). A receiver's child
// inherits whatever its parent holds, so it compares against the count it started with.
int OwnedPacketSockets();

}  // namespace ry::bench
