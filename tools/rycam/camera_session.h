// The SDK opened and the network discovered, then the one camera the user named.
#pragma once

#include <string>
#include <vector>

#include "cli.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"

namespace rycam {

inline constexpr const char* kCameraHelp =
    "CAMERA: an index from 'rycam list', a device identifier, an IP or a MAC address";

// What the camera is opened with.
struct OpenSettings {
    unsigned int buffers = 4;
    RYSDK::pImageCallbackFn imageCallback = nullptr;
    void* user = nullptr;  // handed back to the callback as OBJECT_INFO::pUserPointer
};

class Session {
  public:
    Session();
    ~Session();  // closes the camera, then the SDK
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Opens the SDK and discovers for `timeoutMs`. Returns an exit status.
    int Discover(unsigned int timeoutMs);
    // Discovers (--timeout), then opens the camera `selector` names. Returns an exit status.
    int OpenCamera(const Arguments& arguments, const std::string& selector,
                   const OpenSettings& settings = {});

    RYSDK::RyGigE& System() { return gige_; }
    // Valid after OpenCamera succeeded, until the session ends.
    RYSDK::RyCamera& Camera() { return *camera_; }
    // The discovery record of the opened camera.
    const RYSDK::RYCAMERA_INFO& Record() const { return record_; }

  private:
    int Select(const std::string& selector, unsigned int& index);

    RYSDK::OBJECT_INFO object_{};
    RYSDK::RyGigE gige_;
    RYSDK::RyCamera* camera_ = nullptr;
    RYSDK::RYCAMERA_INFO record_;
};

// The common shape of a command on one camera: parses its arguments (`positionals` of them,
// the camera's at `cameraAt`, and --timeout), opens the camera and runs `body`. Returns the
// exit status.
template <typename Body>
int RunOnCamera(int argc, char** argv, const char* usage, size_t positionals, size_t cameraAt,
                Body&& body) {
    const auto arguments =
        ParseArguments(argc, argv, usage, {"--timeout"}, {}, positionals, positionals);
    if (!arguments)
        return kExitUsage;
    Session session;
    if (const int status = session.OpenCamera(*arguments, arguments->positional[cameraAt]);
        status != kExitOk)
        return status;
    return body(session, arguments->positional);
}

}  // namespace rycam
