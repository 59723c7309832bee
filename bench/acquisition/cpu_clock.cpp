#include "cpu_clock.h"

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

#include "frame_tally.h"

namespace ry::bench {
namespace {

double TicksToSeconds(unsigned long long ticks) {
    static const double perSecond = static_cast<double>(::sysconf(_SC_CLK_TCK));
    return static_cast<double>(ticks) / perSecond;
}

// utime and stime, the 14th and 15th fields of /proc/PID/stat; the command name (field 2)
// may hold spaces, so counting starts after its closing parenthesis.
double ParentSeconds() {
    std::ifstream stat("/proc/" + std::to_string(::getppid()) + "/stat");
    std::string line;
    std::getline(stat, line);
    const auto afterName = line.rfind(')');
    if (afterName == std::string::npos) {
        return 0;
    }
    std::istringstream fields(line.substr(afterName + 1));
    std::string skipped;
    for (int field = 3; field < 14; ++field) {
        fields >> skipped;
    }
    unsigned long long user = 0, system = 0;
    fields >> user >> system;
    return TicksToSeconds(user + system);
}

// The first line of /proc/stat: "cpu user nice system idle iowait irq softirq ...".
double MachineSeconds() {
    std::ifstream stat("/proc/stat");
    std::string label;
    unsigned long long user = 0, nice = 0, system = 0, idle = 0, iowait = 0, irq = 0, softirq = 0;
    stat >> label >> user >> nice >> system >> idle >> iowait >> irq >> softirq;
    return TicksToSeconds(user + nice + system + irq + softirq);
}

}  // namespace

CpuReading ReadCpu() {
    return {std::chrono::steady_clock::now(), ry::gev::tools::ProcessCpuSeconds(), ParentSeconds(),
            MachineSeconds()};
}

CpuSpent Between(const CpuReading& start, const CpuReading& end) {
    return {std::chrono::duration<double>(end.at - start.at).count(), end.process - start.process,
            end.sender - start.sender, end.machine - start.machine};
}

}  // namespace ry::bench
