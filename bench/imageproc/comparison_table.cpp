#include "comparison_table.h"

#include <cstdio>

namespace rybench {

void ComparisonReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        // With repetitions the median stands for the row; a single run stands for itself
        // unless a median has been seen.
        const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
        if (!median && !single) {
            continue;
        }
        const std::string name = run.run_name.function_name;
        const size_t slash = name.find('/');
        if (slash == std::string::npos) {
            continue;
        }
        // Processor time per iteration in the row's milliseconds: every row runs on one
        // thread, and on a shared machine it is steadier than wall time.
        const double ms = run.GetAdjustedCPUTime();
        timings_[name.substr(slash + 1)][name.substr(0, slash)] = ms;
    }
}

void ComparisonReporter::PrintTable() const {
    std::printf("\n%-44s %12s %14s %14s %12s\n", "conversion/size", "ours cpu ms", "opencv cpu ms",
                "memcpy cpu ms", "opencv/ours");
    for (const auto& [row, byWho] : timings_) {
        const auto ours = byWho.find("ours");
        if (ours == byWho.end()) {
            continue;
        }
        const auto opencv = byWho.find("opencv");
        const auto memcpyRow = timings_.find("memcpy of output/" + row.substr(row.rfind('/') + 1));
        const double memcpyMs = memcpyRow == timings_.end() ? 0.0 : memcpyRow->second.at("ours");
        if (opencv == byWho.end()) {
            std::printf("%-44s %12.3f %14s %14.3f %12s\n", row.c_str(), ours->second, "-", memcpyMs,
                        "-");
        } else {
            std::printf("%-44s %12.3f %14.3f %14.3f %11.2fx\n", row.c_str(), ours->second,
                        opencv->second, memcpyMs, opencv->second / ours->second);
        }
    }
}

}  // namespace rybench
