// The subcommands of rycam. Each returns the process exit status.
#pragma once

namespace rycam {

// Exit statuses shared by the subcommands.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNothingFound = 3;

int ListCommand(int argc, char** argv);

}  // namespace rycam
