#include "emulator_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

extern char** environ;

namespace ry::bench {
namespace {

constexpr auto kStartTimeout = std::chrono::seconds(10);

}  // namespace

EmulatorProcess::EmulatorProcess(const std::string& program,
                                 const std::vector<std::string>& arguments) {
    int output[2];
    if (::pipe2(output, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot create a pipe for the emulator");
    }
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int rc = ::posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    if (rc != 0) {
        ::close(output[0]);
        pid_ = -1;
        throw std::runtime_error("cannot start " + program);
    }
    try {
        WaitForAnnouncement(output[0]);
    } catch (...) {
        ::close(output[0]);
        Terminate();
        throw;
    }
    ::close(output[0]);  // it prints nothing after its announcement
}

EmulatorProcess::~EmulatorProcess() {
    Terminate();
}

void EmulatorProcess::WaitForAnnouncement(int outputFd) {
    const auto deadline = std::chrono::steady_clock::now() + kStartTimeout;
    while (announcement_.empty() || announcement_.back() != '\n') {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd waiting{outputFd, POLLIN, 0};
        char chunk[256];
        ssize_t got = 0;
        if (left.count() <= 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0 ||
            (got = ::read(outputFd, chunk, sizeof chunk)) <= 0) {
            throw std::runtime_error("the emulator did not announce its camera");
        }
        announcement_.append(chunk, static_cast<size_t>(got));
    }
    announcement_.pop_back();
}

void EmulatorProcess::Terminate() {
    if (pid_ <= 0) {
        return;
    }
    ::kill(pid_, SIGTERM);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
}

}  // namespace ry::bench
