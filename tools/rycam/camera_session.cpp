#include "camera_session.h"

#include <strings.h>

#include <cstdio>
#include <cstdlib>

#include "rysdk/RyEventLog.h"
#include "safe_text.h"

namespace rycam {
namespace {

bool AllDigits(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool Names(const RYSDK::RYCAMERA_INFO& record, const std::string& selector) {
    return selector == record.m_Name || selector == record.m_IPAddress ||
           strcasecmp(selector.c_str(), record.m_MACAddress) == 0;
}

}  // namespace

Session::Session() {
    // rycam reports on the terminal; the system log need not repeat every failure.
    RYSDK::SetEventLogCallback(nullptr, nullptr);
}

Session::~Session() {
    if (camera_ != nullptr)
        gige_.CloseCamera(camera_);
    gige_.Close();
}

int Session::Discover(unsigned int timeoutMs) {
    gige_.SetDiscoveryTimeout(timeoutMs);
    if (const RYSDK::RESULT result = gige_.Open(); result != RYSDK::RESULT_SUCCESS)
        return ReportFailure("opening the SDK", result);
    return kExitOk;
}

int Session::Select(const std::string& selector, unsigned int& index) {
    unsigned int cameras = 0;
    gige_.GetNumCameras(&cameras);
    if (cameras == 0) {
        std::fprintf(stderr, "rycam: no camera answered\n");
        return kExitNothingFound;
    }
    if (AllDigits(selector)) {
        index = static_cast<unsigned int>(std::strtoul(selector.c_str(), nullptr, 10));
        if (index < cameras && gige_.GetCameraInfo(index, &record_) == RYSDK::RESULT_SUCCESS)
            return kExitOk;
    }
    for (index = 0; index < cameras; ++index) {
        if (gige_.GetCameraInfo(index, &record_) == RYSDK::RESULT_SUCCESS &&
            Names(record_, selector))
            return kExitOk;
    }
    std::fprintf(stderr, "rycam: no camera matches '%s' (%u found; see 'rycam list')\n",
                 SafeText(selector).c_str(), cameras);
    return kExitNothingFound;
}

int Session::OpenCamera(const Arguments& arguments, const std::string& selector,
                        const OpenSettings& settings) {
    const auto timeout = arguments.Number("--timeout", 500);
    if (!timeout)
        return kExitUsage;
    if (const int status = Discover(static_cast<unsigned int>(*timeout)); status != kExitOk)
        return status;
    unsigned int index = 0;
    if (const int status = Select(selector, index); status != kExitOk)
        return status;
    object_.pUserPointer = settings.user;
    const RYSDK::RESULT result = gige_.OpenCamera(index, &camera_, settings.buffers, 0, 0, 0,
                                                  &object_, settings.imageCallback, nullptr);
    if (result != RYSDK::RESULT_SUCCESS) {
        if (camera_ != nullptr)
            gige_.CloseCamera(camera_);
        camera_ = nullptr;
        return ReportFailure("opening the camera", result);
    }
    return kExitOk;
}

}  // namespace rycam
