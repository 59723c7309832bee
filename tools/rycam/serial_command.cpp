// rycam serial CAMERA "COMMAND": one line through the camera's serial command channel, and
// the camera's answer.
#include <cstdio>
#include <vector>

#include "camera_session.h"
#include "commands.h"
#include "safe_text.h"

namespace rycam {

int SerialCommand(int argc, char** argv) {
    const auto arguments = ParseArguments(argc, argv, "rycam serial CAMERA COMMAND [--timeout MS]",
                                          {"--timeout"}, {}, 2, 2);
    if (!arguments)
        return kExitUsage;
    Session session;
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0]);
        status != kExitOk)
        return status;
    std::vector<char> answer(4096, '\0');
    size_t size = answer.size() - 1;
    const RYSDK::RESULT result = session.Camera().GetUARTCustomCommand(
        arguments->positional[1].c_str(), answer.data(), &size);
    if (result != RYSDK::RESULT_SUCCESS)
        return ReportFailure("the serial command", result);
    std::printf("%s\n",
                SafeText(std::string_view(answer.data(), std::min(size, answer.size()))).c_str());
    return kExitOk;
}

}  // namespace rycam
