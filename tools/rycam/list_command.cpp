// rycam list: one line per interface and per camera, from the SDK's discovery records.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "commands.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"

namespace rycam {
namespace {

void PrintResultError(const char* what, RYSDK::RESULT result) {
    const wchar_t* text = RYSDK::GetResultText(result);
    std::fprintf(stderr, "rycam: %s failed: %ls (%d)\n", what, text != nullptr ? text : L"?",
                 static_cast<int>(result));
}

int ParseTimeout(int argc, char** argv, unsigned int& timeoutMs) {
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--timeout") == 0 && i + 1 < argc) {
            timeoutMs = static_cast<unsigned int>(std::strtoul(argv[++i], nullptr, 10));
        } else {
            std::fprintf(stderr, "usage: rycam list [--timeout MS]\n");
            return kExitUsage;
        }
    }
    return kExitOk;
}

}  // namespace

int ListCommand(int argc, char** argv) {
    unsigned int timeoutMs = 500;
    if (const int status = ParseTimeout(argc, argv, timeoutMs); status != kExitOk)
        return status;

    // The command reports on the terminal; the system log need not repeat it.
    RYSDK::SetEventLogCallback(nullptr, nullptr);
    RYSDK::RyGigE gige;
    gige.SetDiscoveryTimeout(timeoutMs);
    if (const RYSDK::RESULT result = gige.Open(); result != RYSDK::RESULT_SUCCESS) {
        PrintResultError("opening the SDK", result);
        return kExitFailure;
    }

    unsigned int interfaces = 0;
    if (gige.GetNumInterfaces(&interfaces) != RYSDK::RESULT_SUCCESS || interfaces == 0) {
        std::fprintf(stderr, "rycam: no network interface found\n");
        return kExitNothingFound;
    }
    unsigned int globalIndex = 0;
    for (unsigned int i = 0; i < interfaces; ++i) {
        RYSDK::RYINTERFACE_INFO record;
        if (gige.GetInterfaceInfo(i, &record) != RYSDK::RESULT_SUCCESS)
            continue;
        std::printf("interface %u\t%s", record.m_Index, record.m_Name);
        if (record.m_Result != RYSDK::RESULT_SUCCESS) {
            const wchar_t* text = RYSDK::GetResultText(record.m_Result);
            std::printf("\t(%ls)", text != nullptr ? text : L"?");
        }
        std::printf("\n");
        for (const auto& camera : record.m_CameraList) {
            std::printf("  camera %u\t%s\tmodel=%s\tmanufacturer=%s\tip=%s\tmac=%s\n",
                        globalIndex++, camera->m_Name, camera->m_ModelName,
                        camera->m_ManufacturerName, camera->m_IPAddress, camera->m_MACAddress);
        }
    }
    if (globalIndex == 0) {
        std::fprintf(stderr, "rycam: no camera answered on %u interface(s)\n", interfaces);
        return kExitNothingFound;
    }
    return kExitOk;
}

}  // namespace rycam
