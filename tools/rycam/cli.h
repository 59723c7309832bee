// What every subcommand shares: its arguments, and the messages and exit statuses of its
// failures.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "rysdk/RyResult.h"

namespace rycam {

// Exit statuses shared by the subcommands.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;       // the camera or the SDK refused
inline constexpr int kExitUsage = 2;         // the command line is wrong
inline constexpr int kExitNothingFound = 3;  // no camera, or none that matches

// A command line split into positional arguments and "--name value" options; "--name"
// options listed as flags take no value.
struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;

    bool Has(const std::string& name) const { return options.count(name) != 0; }
    std::string Get(const std::string& name, const std::string& fallback) const;
    // The option as an unsigned number; nullopt (after a message) when it is not one.
    std::optional<unsigned long> Number(const std::string& name, unsigned long fallback) const;
};

// Parses argv against the options a command knows. Prints the usage line and returns
// nullopt when an option is unknown, lacks its value, or the positional count is not in
// [minPositional, maxPositional].
std::optional<Arguments> ParseArguments(int argc, char** argv, const char* usage,
                                        std::initializer_list<const char*> valueOptions,
                                        std::initializer_list<const char*> flags,
                                        size_t minPositional, size_t maxPositional);

// "rycam: <what> failed: <result text> (<number>)" on stderr; returns kExitFailure.
int ReportFailure(const char* what, RYSDK::RESULT result);

}  // namespace rycam
