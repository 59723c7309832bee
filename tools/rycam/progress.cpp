#include "progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace rycam {
namespace {

constexpr int kBarWidth = 30;
constexpr auto kRedrawPause = std::chrono::milliseconds(100);

}  // namespace

bool StderrIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

Progress::Progress(uint64_t total, bool enabled)
    : total_(total), shown_(enabled), start_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
    if (drawn_)
        std::fputc('\n', stderr);
}

void Progress::Update(uint64_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (!shown_ || (now - lastDrawn_ < kRedrawPause && done != total_))
        return;
    lastDrawn_ = now;
    drawn_ = true;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0.0;
    if (total_ == 0) {
        std::fprintf(stderr, "\r%llu frames  %.1f frames/s ", static_cast<unsigned long long>(done),
                     rate);
    } else {
        const auto filled = static_cast<int>(kBarWidth * std::min(done, total_) / total_);
        const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '-');
        std::fprintf(stderr, "\r[%s] %llu/%llu  %.1f frames/s ", bar.c_str(),
                     static_cast<unsigned long long>(done), static_cast<unsigned long long>(total_),
                     rate);
    }
    std::fflush(stderr);
}

}  // namespace rycam
