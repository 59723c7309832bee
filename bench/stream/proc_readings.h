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

// CPU seconds of every CPU so far, from /proc/uptime and the first line of /proc/stat.
struct MachineCpu {
    // Time not idle: every CPU's time since boot less its idle and I/O-wait time. The kernel
    // measures idle time exactly, while user, system and soft-interrupt time are sampled at
    // each tick; on a virtual machine their sum drifted from the truth by a quarter and more
    // within a few seconds.
    double busy = 0;
    double softirq = 0;  // soft interrupts alone (sampled)
};
MachineCpu ReadMachineCpu();

// Packet sockets this process holds (its fds against /proc/net/packet). A receiver's child
// inherits whatever its parent holds, so it compares against the count it started with.
int OwnedPacketSockets();

}  // namespace ry::bench
