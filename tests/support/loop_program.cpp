#include "loop_program.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "private_network.h"
#include "rysdk/RyEventLog.h"

namespace rytest {

int PrepareLoopProgram(int argc, char** argv, int& cycles) {
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--cycles=", 9) == 0 && std::atoi(argv[i] + 9) > 0) {
            cycles = std::atoi(argv[i] + 9);
        } else {
            std::fprintf(stderr, "usage: %s [--cycles=N]\n", argv[0]);
            return 2;
        }
    }
    if (!InPrivateNetwork()) {
        std::fprintf(stderr, "%s discovers cameras: %s\n", argv[0], kPrivateNetworkAdvice);
        return 2;
    }
    RYSDK::SetEventLogCallback(nullptr, nullptr);
    return 0;
}

}  // namespace rytest
