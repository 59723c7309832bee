// The camera's current pixel format read through a node map, for RyCamera and for the grab
// thread, which holds the node map but not the camera.
#pragma once

#include "camera/camera_shared.h"
#include "rysdk/RyPixelFormat.h"
#include "rysdk/RyResult.h"

namespace RYSDK::acquisition {

RESULT ReadPixelFormat(camera::DeviceNodeMap* nodeMap, PIXEL_FORMAT* format);

}  // namespace RYSDK::acquisition
