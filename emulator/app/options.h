// Command line of ry-camera-emulator.
#pragma once

#include <string>
#include <vector>

#include "ry/emulator/camera_config.h"

namespace ry::emulator {

struct ProgramOptions {
    CameraConfig first;  // the first camera; further ones take the next addresses
    int count = 1;
    bool help = false;
};

// Parses argv[1..]; throws std::invalid_argument with a message naming the bad option.
ProgramOptions parse_options(const std::vector<std::string>& args);
// One configuration per camera: addresses counted up from the first, serials numbered.
std::vector<CameraConfig> camera_configs(const ProgramOptions& options);
const char* usage_text();

}  // namespace ry::emulator
