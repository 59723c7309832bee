// Feature values as text, through the SDK's access by name.
#pragma once

#include <string>

#include "rysdk/RyCamera.h"

namespace rycam {

// The feature's value as the camera's node map renders it (an enumeration's entry name, a
// number in decimal). The text is the device's: print it through SafeText.
RYSDK::RESULT ReadFeature(RYSDK::RyCamera& camera, const std::string& name, std::string& value);

}  // namespace rycam
