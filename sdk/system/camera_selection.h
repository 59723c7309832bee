// What RyGigE::OpenCamera settles before it hands a camera over to its interface: the
// transport layer open, the network discovered once, the camera chosen (by global index,
// by name, or by interface name and index) and the camera's interface opened. An interface
// is opened once and reused by every later camera on it.
#pragma once

#include <string>

#include "rysdk/RyResult.h"

namespace RYSDK {
class RyGigE;
class RyInterface;
}  // namespace RYSDK

namespace RYSDK::system {

struct CameraTarget {
    RyInterface* adapter = nullptr;  // owned by the RyGigE
    std::string cameraName;          // the discovery record's name, as the interface knows it
};

class CameraSelection {
  public:
    // Cameras are numbered interface after interface, in discovery order.
    static RESULT ByIndex(RyGigE& gige, unsigned int index, CameraTarget& target);
    static RESULT ByName(RyGigE& gige, const char* name, CameraTarget& target);
    // The index is checked against the cameras of every interface, then taken within the
    // named interface; an index that interface does not reach gives RESULT_ERROR.
    static RESULT ByInterface(RyGigE& gige, const char* interfaceName, unsigned int index,
                              CameraTarget& target);
};

}  // namespace RYSDK::system
