// PNG files of converted frames, through libpng.
#pragma once

#include <string>

#include "frame_convert.h"

namespace rycam {

// Writes `picture` (grey, or blue-green-red; 16-bit samples in host order) to `path`.
// False with `error` set when the file cannot be written.
bool WritePng(const std::string& path, const Picture& picture, std::string& error);

}  // namespace rycam
