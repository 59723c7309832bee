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

// Prints the value the camera holds afterwards, which may differ from the one asked for
// (a number rounded to the feature's increment, for instance); a feature that cannot be
// read back (a command) prints nothing.
int WriteFeature(RYSDK::RyCamera& camera, const std::string& name, const std::string& value) {
    const RYSDK::RESULT result = camera.SetCustomCommand(name.c_str(), value.c_str(), value.size());
    if (result != RYSDK::RESULT_SUCCESS)
        return ReportFailure(("writing " + SafeText(name)).c_str(), result);
    std::string now;
    if (ReadFeature(camera, name, now) == RYSDK::RESULT_SUCCESS)
        std::printf("%s\n", SafeText(now).c_str());
    return kExitOk;
}

}  // namespace

int GetCommand(int argc, char** argv) {
    return RunOnCamera(argc, argv, "rycam get CAMERA FEATURE [--timeout MS]", 2, 0,
                       [](Session& session, const std::vector<std::string>& positional) {
                           return PrintFeature(session, positional[1]);
                       });
}

int SetCommand(int argc, char** argv) {
    return RunOnCamera(argc, argv, "rycam set CAMERA FEATURE VALUE [--timeout MS]", 3, 0,
                       [](Session& session, const std::vector<std::string>& positional) {
                           return WriteFeature(session.Camera(), positional[1], positional[2]);
                       });
}

}  // namespace rycam
