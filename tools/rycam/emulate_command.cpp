// rycam emulate [emulator options]: serves emulated cameras until interrupted, as
// ry-camera-emulator does; a camera to try the other commands on.
#include <string>
#include <vector>

#include "commands.h"
#include "run.h"

namespace rycam {

int EmulateCommand(int argc, char** argv) {
    return ry::emulator::run_emulator_program("rycam emulate",
                                              std::vector<std::string>(argv, argv + argc));
}

}  // namespace rycam
