#include "emulator_process.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

extern char** environ;

namespace rytest {

std::string EmulatorPath() {
    return RY_EMULATOR_PATH;
}

EmulatorProcess::EmulatorProcess(const std::vector<std::string>& arguments, int cameras,
                                 int timeoutMs) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0)
        return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);

    std::vector<std::string> argv{EmulatorPath()};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& argument : argv)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const int spawned =
        ::posix_spawn(&pid_, argv[0].c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    output_ = pipeFds[0];
    if (spawned != 0) {
        pid_ = -1;
        return;
    }

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    std::string pending;
    while (static_cast<int>(lines_.size()) < cameras) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return;
        pollfd fd{output_, POLLIN, 0};
        if (::poll(&fd, 1, static_cast<int>(left.count())) <= 0)
            return;
        char chunk[512];
        const ssize_t got = ::read(output_, chunk, sizeof(chunk));
        if (got <= 0)
            return;
        pending.append(chunk, static_cast<size_t>(got));
        for (size_t end; (end = pending.find('\n')) != std::string::npos;) {
            lines_.push_back(pending.substr(0, end));
            pending.erase(0, end + 1);
        }
    }
    ready_ = true;
}

EmulatorProcess::~EmulatorProcess() {
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        int status = 0;
        ::waitpid(pid_, &status, 0);
    }
    if (output_ >= 0)
        ::close(output_);
}

}  // namespace rytest
