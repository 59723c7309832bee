#include "cpu_clock.h"

#include <unistd.h>

#include "frame_tally.h"
#include "proc_readings.h"

namespace ry::bench {

CpuReading ReadCpu() {
    return {std::chrono::steady_clock::now(), ry::gev::tools::ProcessCpuSeconds(),
            ProcessCpuSecondsOf(::getppid()), ReadMachineCpu().busy};
}

CpuSpent Between(const CpuReading& start, const CpuReading& end) {
    return {std::chrono::duration<double>(end.at - start.at).count(), end.process - start.process,
            end.sender - start.sender, end.machine - start.machine};
}

}  // namespace ry::bench
