// rycam info CAMERA: what discovery found and what the camera says about itself.
#include <cstdio>

#include "camera_session.h"
#include "commands.h"
#include "feature_text.h"
#include "safe_text.h"

namespace rycam {
namespace {

// Identity and image features worth a line each; those a camera lacks are left out.
constexpr const char* kInfoFeatures[] = {"DeviceVendorName",
                                         "DeviceModelName",
                                         "DeviceVersion",
                                         "DeviceFirmwareVersion",
                                         "DeviceSerialNumber",
                                         "DeviceID",
                                         "DeviceUserID",
                                         "Width",
                                         "Height",
                                         "PixelFormat",
                                         "PayloadSize",
                                         "AcquisitionMode"};

void PrintRecord(const RYSDK::RYCAMERA_INFO& record) {
    std::printf("%-22s %s\n", "Device identifier", SafeField(record.m_Name).c_str());
    std::printf("%-22s %s\n", "IP address", SafeField(record.m_IPAddress).c_str());
    std::printf("%-22s %s\n", "MAC address", SafeField(record.m_MACAddress).c_str());
}

void PrintFeatures(RYSDK::RyCamera& camera) {
    for (const char* feature : kInfoFeatures) {
        std::string value;
        if (ReadFeature(camera, feature, value) == RYSDK::RESULT_SUCCESS)
            std::printf("%-22s %s\n", feature, SafeText(value).c_str());
    }
    int32_t properties = 0;
    if (camera.GetPropertyCount(&properties) == RYSDK::RESULT_SUCCESS)
        std::printf("%-22s %d (see 'rycam features')\n", "Features", properties);
}

}  // namespace

int InfoCommand(int argc, char** argv) {
    return RunOnCamera(argc, argv, "rycam info CAMERA [--timeout MS]", 1, 0,
                       [](Session& session, const std::vector<std::string>&) {
                           PrintRecord(session.Record());
                           PrintFeatures(session.Camera());
                           return kExitOk;
                       });
}

}  // namespace rycam
