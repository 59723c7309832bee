// rycam: the command line a user reaches for first.
#include <cstdio>
#include <cstring>

#include "camera_session.h"
#include "commands.h"

namespace {

struct Command {
    const char* name;
    const char* arguments;
    const char* summary;
    int (*run)(int argc, char** argv);
};

constexpr Command kCommands[] = {
    {"list", "", "discover and list interfaces and cameras", rycam::ListCommand},
    {"info", "CAMERA", "identity and image settings of a camera", rycam::InfoCommand},
    {"features", "CAMERA", "every feature with its value, as a tree", rycam::FeaturesCommand},
    {"get", "CAMERA FEATURE", "read a feature", rycam::GetCommand},
    {"set", "CAMERA FEATURE VALUE", "write a feature", rycam::SetCommand},
    {"grab", "CAMERA --count N --output DIR", "grab frames into PNG files", rycam::GrabCommand},
    {"stats", "CAMERA [--seconds S]", "stream for a while, print the statistics",
     rycam::StatsCommand},
    {"serial", "CAMERA COMMAND", "send a serial command line, print the answer",
     rycam::SerialCommand},
    {"file", "get|put CAMERA NAME PATH", "read or write a file stored on the camera",
     rycam::FileCommand},
    {"emulate", "[--help]", "serve an emulated camera until interrupted", rycam::EmulateCommand},
};

int Usage(FILE* out) {
    std::fprintf(out, "usage: rycam COMMAND [arguments] [--timeout MS]\n\ncommands:\n");
    for (const auto& command : kCommands) {
        std::fprintf(out, "  %-8s %-30s %s\n", command.name, command.arguments, command.summary);
    }
    std::fprintf(out, "\n%s\n--timeout: how long discovery waits for answers (default 500 ms)\n",
                 rycam::kCameraHelp);
    return rycam::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return Usage(stderr);
    if (std::strcmp(argv[1], "-h") == 0 || std::strcmp(argv[1], "--help") == 0) {
        Usage(stdout);
        return rycam::kExitOk;
    }
    for (const auto& command : kCommands) {
        if (std::strcmp(argv[1], command.name) == 0)
            return command.run(argc - 2, argv + 2);
    }
    std::fprintf(stderr, "rycam: unknown command '%s'\n", argv[1]);
    return Usage(stderr);
}
