// ry-camera-soak: opens and closes the emulated camera again and again through the SDK (with
// the connection monitor running) and checks that nothing accumulates: open file
// descriptors, threads and resident memory are printed before and after, and the program
// fails when descriptors or threads grew or memory grew by more than a few megabytes.
//   bash scripts/in-private-net.sh build/bin/ry-camera-soak [--cycles=N]
#include <dirent.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "first_camera.h"
#include "loop_program.h"

namespace {

constexpr int kWarmUpCycles = 20;
constexpr long kMemoryGrowthLimitKb = 4096;

struct Usage {
    int descriptors = 0;
    int threads = 0;
    long residentKb = 0;
};

int CountDescriptors() {
    int count = 0;
    if (DIR* dir = ::opendir("/proc/self/fd")) {
        while (const dirent* entry = ::readdir(dir))
            count += entry->d_name[0] != '.' ? 1 : 0;
        ::closedir(dir);
    }
    return count - 1;  // the directory's own descriptor
}

Usage Measure() {
    Usage usage;
    usage.descriptors = CountDescriptors();
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == "Threads:")
            status >> usage.threads;
        else if (key == "VmRSS:")
            status >> usage.residentKb;
    }
    return usage;
}

void Print(const char* when, const Usage& usage) {
    std::printf("%-7s descriptors=%d threads=%d resident_kb=%ld\n", when, usage.descriptors,
                usage.threads, usage.residentKb);
}

bool Cycle(rytest::FirstCamera& first) {
    const auto lost = [](RYSDK::OBJECT_INFO*, RYSDK::DISCONNECT_INFO) {};
    RYSDK::RyCamera* camera = first.Open(lost);
    if (camera == nullptr)
        return false;
    unsigned int width = 0;
    camera->GetWidth(&width);
    return first.Gige().CloseCamera(camera) == RYSDK::RESULT_SUCCESS && width > 0;
}

}  // namespace

int main(int argc, char** argv) {
    int cycles = 1000;
    if (const int status = rytest::PrepareLoopProgram(argc, argv, cycles); status != 0)
        return status;
    const ry::emulator::Camera emulator(rytest::EmulatedCameraConfig());
    rytest::FirstCamera first;
    for (int i = 0; i < kWarmUpCycles; ++i) {
        if (!Cycle(first)) {
            std::fprintf(stderr, "warm-up cycle %d failed\n", i);
            return 1;
        }
    }
    const Usage before = Measure();
    Print("before", before);
    for (int i = 0; i < cycles; ++i) {
        if (!Cycle(first)) {
            std::fprintf(stderr, "cycle %d failed\n", i);
            return 1;
        }
    }
    const Usage after = Measure();
    Print("after", after);
    const bool flat = after.descriptors <= before.descriptors && after.threads <= before.threads &&
                      after.residentKb - before.residentKb <= kMemoryGrowthLimitKb;
    std::printf("%d cycles: %s\n", cycles, flat ? "flat" : "GREW");
    return flat ? 0 : 1;
}
