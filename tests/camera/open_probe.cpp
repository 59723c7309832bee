// A second application for the privilege tests: opens the first camera it discovers with
// the privilege named on its command line and prints "open=<result> close=<result>". With
// "session" as a second argument it also reads and writes features, has the camera refuse a
// write and streams a few frames before it closes: a whole session for a capture to judge.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"

namespace {

void RunSession(RYSDK::RyCamera& camera) {
    unsigned int width = 0;
    camera.GetWidth(&width);
    camera.SetCustomCommand("Gain", "2.5", 0);
    char text[64] = {};
    uint64_t size = sizeof(text);
    camera.GetCustomCommand("DeviceModelName", text, &size);
    // The version registers are read-only: the camera answers the writes with an error, to
    // a single register and to a block alike.
    uint8_t words[8] = {};
    uint64_t written = 4;
    camera.WriteData(words, 0x0000, &written);
    written = sizeof(words);
    camera.WriteData(words, 0x0000, &written);
    camera.SetCustomCommand("AcquisitionStart", nullptr, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    camera.SetCustomCommand("AcquisitionStop", nullptr, 0);
}

}  // namespace

int main(int argc, char** argv) {
    using namespace RYSDK;
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: %s exclusive|control|monitor [session]\n", argv[0]);
        return 2;
    }
    const bool session = argc == 3 && std::strcmp(argv[2], "session") == 0;
    CCP_PRIVILEGE privilege = CCP_PRIVILEGE_CONTROL;
    if (std::strcmp(argv[1], "exclusive") == 0)
        privilege = CCP_PRIVILEGE_EXCLUSIVE;
    else if (std::strcmp(argv[1], "monitor") == 0)
        privilege = CCP_PRIVILEGE_MONITOR;
    SetEventLogCallback(nullptr, nullptr);
    RyGigE gige;
    gige.SetDiscoveryTimeout(300);
    gige.SetCCPPrivilege(privilege);
    OBJECT_INFO object{};
    RyCamera* camera = nullptr;
    const RESULT opened = gige.OpenCamera(0u, &camera, 2, 0, 0, 0, &object, nullptr, nullptr);
    if (opened == RESULT_SUCCESS && session)
        RunSession(*camera);
    RESULT closed = RESULT_SUCCESS;
    if (opened == RESULT_SUCCESS || opened == RESULT_ERROR_RYCAMERA_GETXML)
        closed = gige.CloseCamera(camera);
    std::printf("open=%d close=%d\n", opened, closed);
    return 0;
}
