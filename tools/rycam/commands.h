// The subcommands of rycam. Each takes the arguments after its name and returns the process
// exit status (see cli.h).
#pragma once

namespace rycam {

int ListCommand(int argc, char** argv);
int InfoCommand(int argc, char** argv);
int FeaturesCommand(int argc, char** argv);
int GetCommand(int argc, char** argv);
int SetCommand(int argc, char** argv);
int SerialCommand(int argc, char** argv);
int FileCommand(int argc, char** argv);
int GrabCommand(int argc, char** argv);
int StatsCommand(int argc, char** argv);
int EmulateCommand(int argc, char** argv);

}  // namespace rycam
