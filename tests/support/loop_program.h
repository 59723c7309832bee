// The start of the programs that open a camera in a loop (the soak and the open benchmark):
// the cycle count from "--cycles=N" and the check that they run in a private network.
#pragma once

namespace rytest {

// Leaves `cycles` as given unless "--cycles=N" says otherwise. Returns 0 to go on, or the
// exit status after telling the user what is wrong.
int PrepareLoopProgram(int argc, char** argv, int& cycles);

}  // namespace rytest
