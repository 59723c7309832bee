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

}  // namespace

int InfoCommand(int argc, char** argv) {
    const auto arguments =
        ParseArguments(argc, argv, "rycam info CAMERA [--timeout MS]", {"--timeout"}, {}, 1, 1);
    if (!arguments)
        return kExitUsage;
    Session session;
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0]);
        status != kExitOk)
        return status;
    PrintRecord(session.Record());
    for (const char* feature : kInfoFeatures) {
        std::string value;
        if (ReadFeature(session.Camera(), feature, value) == RYSDK::RESULT_SUCCESS)
            std::printf("%-22s %s\n", feature, SafeText(value).c_str());
    }
    int32_t properties = 0;
    if (session.Camera().GetPropertyCount(&properties) == RYSDK::RESULT_SUCCESS)
        std::printf("%-22s %d (see 'rycam features')\n", "Features", properties);
    return kExitOk;
}

}  // namespace rycam
