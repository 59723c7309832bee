// rycam get CAMERA FEATURE and rycam set CAMERA FEATURE VALUE: any feature by its GenICam
// name, the value as text.
#include <cstdio>

#include "camera_session.h"
#include "commands.h"
#include "feature_text.h"
#include "safe_text.h"

namespace rycam {
namespace {

int PrintFeature(Session& session, const std::string& name) {
    std::string value;
    if (const RYSDK::RESULT result = ReadFeature(session.Camera(), name, value);
        result != RYSDK::RESULT_SUCCESS)
        return ReportFailure(("reading " + SafeText(name)).c_str(), result);
    std::printf("%s\n", SafeText(value).c_str());
    return kExitOk;
}

}  // namespace

int GetCommand(int argc, char** argv) {
    const auto arguments = ParseArguments(argc, argv, "rycam get CAMERA FEATURE [--timeout MS]",
                                          {"--timeout"}, {}, 2, 2);
    if (!arguments)
        return kExitUsage;
    Session session;
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0]);
        status != kExitOk)
        return status;
    return PrintFeature(session, arguments->positional[1]);
}

// Prints the value the camera holds afterwards, which may differ from the one asked for
// (a number rounded to the feature's increment, for instance); a feature that cannot be
// read back (a command) prints nothing.
int SetCommand(int argc, char** argv) {
    const auto arguments = ParseArguments(
        argc, argv, "rycam set CAMERA FEATURE VALUE [--timeout MS]", {"--timeout"}, {}, 3, 3);
    if (!arguments)
        return kExitUsage;
    Session session;
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0]);
        status != kExitOk)
        return status;
    const std::string& name = arguments->positional[1];
    const std::string& value = arguments->positional[2];
    const RYSDK::RESULT result =
        session.Camera().SetCustomCommand(name.c_str(), value.c_str(), value.size());
    if (result != RYSDK::RESULT_SUCCESS)
        return ReportFailure(("writing " + SafeText(name)).c_str(), result);
    std::string now;
    if (ReadFeature(session.Camera(), name, now) == RYSDK::RESULT_SUCCESS)
        std::printf("%s\n", SafeText(now).c_str());
    return kExitOk;
}

}  // namespace rycam
