#include "cli.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace rycam {
namespace {

bool Listed(std::initializer_list<const char*> names, const char* name) {
    return std::any_of(names.begin(), names.end(),
                       [name](const char* listed) { return std::strcmp(listed, name) == 0; });
}

}  // namespace

std::string Arguments::Get(const std::string& name, const std::string& fallback) const {
    const auto found = options.find(name);
    return found == options.end() ? fallback : found->second;
}

std::optional<unsigned long> Arguments::Number(const std::string& name,
                                               unsigned long fallback) const {
    const auto found = options.find(name);
    if (found == options.end())
        return fallback;
    char* end = nullptr;
    const unsigned long value = std::strtoul(found->second.c_str(), &end, 10);
    if (found->second.empty() || *end != '\0' || found->second[0] == '-') {
        std::fprintf(stderr, "rycam: %s needs a number, not '%s'\n", name.c_str(),
                     found->second.c_str());
        return std::nullopt;
    }
    return value;
}

std::optional<Arguments> ParseArguments(int argc, char** argv, const char* usage,
                                        std::initializer_list<const char*> valueOptions,
                                        std::initializer_list<const char*> flags,
                                        size_t minPositional, size_t maxPositional) {
    Arguments arguments;
    for (int i = 0; i < argc; ++i) {
        const char* argument = argv[i];
        if (std::strncmp(argument, "--", 2) != 0) {
            arguments.positional.emplace_back(argument);
        } else if (Listed(flags, argument)) {
            arguments.options[argument] = "";
        } else if (Listed(valueOptions, argument) && i + 1 < argc) {
            arguments.options[argument] = argv[++i];
        } else {
            std::fprintf(stderr, "rycam: %s '%s'\nusage: %s\n",
                         Listed(valueOptions, argument) ? "missing value after" : "unknown option",
                         argument, usage);
            return std::nullopt;
        }
    }
    const size_t count = arguments.positional.size();
    if (count < minPositional || count > maxPositional) {
        std::fprintf(stderr, "usage: %s\n", usage);
        return std::nullopt;
    }
    return arguments;
}

int ReportFailure(const char* what, RYSDK::RESULT result) {
    const wchar_t* text = RYSDK::GetResultText(result);
    std::fprintf(stderr, "rycam: %s failed: %ls (%d)\n", what, text != nullptr ? text : L"?",
                 static_cast<int>(result));
    return kExitFailure;
}

}  // namespace rycam
