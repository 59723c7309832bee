// The emulator program's body, shared by ry-camera-emulator and `rycam emulate`: parses the
// options, serves the cameras and returns when SIGINT or SIGTERM arrives.
#pragma once

#include <string>
#include <vector>

namespace ry::emulator {

// `program` names the caller in messages. Returns the exit status: 0, 1 when a camera
// cannot be set up, 2 for a wrong command line.
int run_emulator_program(const char* program, const std::vector<std::string>& args);

}  // namespace ry::emulator
