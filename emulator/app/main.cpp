// ry-camera-emulator: serves one or more virtual GigE Vision cameras until SIGINT/SIGTERM.
#include <string>
#include <vector>

#include "run.h"

int main(int argc, char** argv) {
    return ry::emulator::run_emulator_program("ry-camera-emulator",
                                              std::vector<std::string>(argv + 1, argv + argc));
}
