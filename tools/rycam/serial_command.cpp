// rycam serial CAMERA "COMMAND": one line through the camera's serial command channel, and
// the camera's answer.
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "camera_session.h"
#include "commands.h"
#include "safe_text.h"

namespace rycam {
namespace {

int SendLine(RYSDK::RyCamera& camera, const std::string& line) {
    std::vector<char> answer(4096, '\0');
    size_t size = answer.size() - 1;
    const RYSDK::RESULT result = camera.GetUARTCustomCommand(line.c_str(), answer.data(), &size);
    if (result != RYSDK::RESULT_SUCCESS)
        return ReportFailure("the serial command", result);
    std::printf("%s\n",
                SafeText(std::string_view(answer.data(), std::min(size, answer.size()))).c_str());
    return kExitOk;
}

}  // namespace

int SerialCommand(int argc, char** argv) {
    return RunOnCamera(argc, argv, "rycam serial CAMERA COMMAND [--timeout MS]", 2, 0,
                       [](Session& session, const std::vector<std::string>& positional) {
                           return SendLine(session.Camera(), positional[1]);
                       });
}

}  // namespace rycam
