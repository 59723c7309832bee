// rycam list: one line per interface and per camera, from the SDK's discovery records.
#include <cstdio>

#include "camera_session.h"
#include "commands.h"
#include "safe_text.h"

namespace rycam {
namespace {

void PrintInterface(const RYSDK::RYINTERFACE_INFO& record) {
    std::printf("interface %u\t%s", record.m_Index, SafeField(record.m_Name).c_str());
    if (record.m_Result != RYSDK::RESULT_SUCCESS) {
        const wchar_t* text = RYSDK::GetResultText(record.m_Result);
        std::printf("\t(%ls)", text != nullptr ? text : L"?");
    }
    std::printf("\n");
}

void PrintCamera(unsigned int index, const RYSDK::RYCAMERA_INFO& camera) {
    std::printf("  camera %u\t%s\tmodel=%s\tmanufacturer=%s\tip=%s\tmac=%s\n", index,
                SafeField(camera.m_Name).c_str(), SafeField(camera.m_ModelName).c_str(),
                SafeField(camera.m_ManufacturerName).c_str(), SafeField(camera.m_IPAddress).c_str(),
                SafeField(camera.m_MACAddress).c_str());
}

}  // namespace

int ListCommand(int argc, char** argv) {
    const auto arguments =
        ParseArguments(argc, argv, "rycam list [--timeout MS]", {"--timeout"}, {}, 0, 0);
    if (!arguments)
        return kExitUsage;
    const auto timeout = arguments->Number("--timeout", 500);
    if (!timeout)
        return kExitUsage;
    Session session;
    if (const int status = session.Discover(static_cast<unsigned int>(*timeout)); status != kExitOk)
        return status;

    unsigned int interfaces = 0;
    if (session.System().GetNumInterfaces(&interfaces) != RYSDK::RESULT_SUCCESS ||
        interfaces == 0) {
        std::fprintf(stderr, "rycam: no network interface found\n");
        return kExitNothingFound;
    }
    unsigned int globalIndex = 0;
    for (unsigned int i = 0; i < interfaces; ++i) {
        RYSDK::RYINTERFACE_INFO record;
        if (session.System().GetInterfaceInfo(i, &record) != RYSDK::RESULT_SUCCESS)
            continue;
        PrintInterface(record);
        for (const auto& camera : record.m_CameraList)
            PrintCamera(globalIndex++, *camera);
    }
    if (globalIndex == 0) {
        std::fprintf(stderr, "rycam: no camera answered on %u interface(s)\n", interfaces);
        return kExitNothingFound;
    }
    return kExitOk;
}

}  // namespace rycam
