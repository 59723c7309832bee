// rycam: the command line a user reaches for first.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

struct Command {
    const char* name;
    const char* summary;
    int (*run)(int argc, char** argv);
};

constexpr Command kCommands[] = {
    {"list", "discover and list interfaces and cameras", rycam::ListCommand},
};

int Usage(FILE* out) {
    std::fprintf(out, "usage: rycam COMMAND [options]\n\ncommands:\n");
    for (const auto& command : kCommands) {
        std::fprintf(out, "  %-8s %s\n", command.name, command.summary);
    }
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
