// A transport table whose answers a test scripts: interfaces with names and camera
// counts, and the failures a real network cannot produce on demand.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "transport/transport_table.h"

namespace RYSDK::testing {

struct ScriptedInterface {
    std::string displayName;
    int cameras = 0;
    GC_ERROR idResult = GC_ERR_SUCCESS;
    GC_ERROR infoResult = GC_ERR_SUCCESS;
    GC_ERROR openResult = GC_ERR_SUCCESS;
    GC_ERROR updateResult = GC_ERR_SUCCESS;
    GC_ERROR numDevicesResult = GC_ERR_SUCCESS;
    int failingDeviceId = -1;  // device index whose IFGetDeviceID fails
};

struct Script {
    GC_ERROR tlOpenResult = GC_ERR_SUCCESS;
    GC_ERROR numInterfacesResult = GC_ERR_SUCCESS;
    std::vector<ScriptedInterface> interfaces;
    GC_ERROR forceIpResult = GC_ERR_SUCCESS;

    // What the SDK did, for the assertions.
    std::vector<std::string> openedInterfaceIds;
    int interfaceCloses = 0;
    int forceIpCalls = 0;
    std::map<uint64_t, uint32_t> systemPort;
    int portCalls = 0;
};

// Installs the scripted table for the lifetime of the object.
class ScriptedTransport {
  public:
    explicit ScriptedTransport(Script& script);
    ~ScriptedTransport();
    ScriptedTransport(const ScriptedTransport&) = delete;
    ScriptedTransport& operator=(const ScriptedTransport&) = delete;
};

}  // namespace RYSDK::testing
