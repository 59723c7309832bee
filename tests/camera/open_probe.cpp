// A second application for the privilege tests: opens the first camera it discovers with
// the privilege named on its command line and prints "open=<result> close=<result>".
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"

int main(int argc, char** argv) {
    using namespace RYSDK;
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s exclusive|control|monitor\n", argv[0]);
        return 2;
    }
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
    RESULT closed = RESULT_SUCCESS;
    if (opened == RESULT_SUCCESS || opened == RESULT_ERROR_RYCAMERA_GETXML)
        closed = gige.CloseCamera(camera);
    std::printf("open=%d close=%d\n", opened, closed);
    return 0;
}
