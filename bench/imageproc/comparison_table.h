// Collects the timings Google Benchmark reports and prints, after the usual output, one line
// per row with our processor time, OpenCV's and memcpy's, and the ratio OpenCV / ours.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace rybench {

class ComparisonReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void PrintTable() const;

  private:
    // Milliseconds by "<row>/<size>", then by who.
    std::map<std::string, std::map<std::string, double>> timings_;
};

}  // namespace rybench
