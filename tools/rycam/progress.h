// A progress bar on a terminal; nothing at all when stderr is not one.
#pragma once

#include <chrono>
#include <cstdint>

namespace rycam {

class Progress {
  public:
    // `total` 0: no bar, only the count and the rate.
    Progress(uint64_t total, bool enabled);
    ~Progress();  // ends the line
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Redraws at most ten times a second, and always for the last item.
    void Update(uint64_t done);

  private:
    const uint64_t total_;
    const bool shown_;
    const std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point lastDrawn_{};
    bool drawn_ = false;
};

// Whether stderr is a terminal.
bool StderrIsTerminal();

}  // namespace rycam
