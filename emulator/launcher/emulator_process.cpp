#include "ry/emulator/emulator_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace ry::emulator {

namespace {

// The read end of the child's standard output, closed whichever way the start ends.
class OutputPipe {
  public:
    OutputPipe() {
        if (::pipe2(fds_, O_CLOEXEC) != 0)
            throw std::runtime_error("cannot create a pipe for the emulator");
    }
    ~OutputPipe() {
        CloseWriteEnd();
        ::close(fds_[0]);
    }
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    int ReadEnd() const { return fds_[0]; }
    int WriteEnd() const { return fds_[1]; }
    // Once the child holds its copy: end of file then means the child is gone.
    void CloseWriteEnd() {
        if (fds_[1] >= 0)
            ::close(fds_[1]);
        fds_[1] = -1;
    }

  private:
    int fds_[2] = {-1, -1};
};

}  // namespace

EmulatorProcess::EmulatorProcess(const std::string& program,
                                 const std::vector<std::string>& arguments, int cameras,
                                 std::chrono::milliseconds timeout) {
    OutputPipe output;
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output.WriteEnd(), STDOUT_FILENO);
    const int spawned =
        ::posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    output.CloseWriteEnd();
    if (spawned != 0) {
        pid_ = -1;
        throw std::runtime_error("cannot start " + program);
    }
    // The emulator prints nothing after its ready lines, so the pipe can go once they came.
    try {
        WaitUntilReady(output.ReadEnd(), cameras, timeout);
    } catch (...) {
        Terminate();
        throw;
    }
}

EmulatorProcess::~EmulatorProcess() {
    Terminate();
}

void EmulatorProcess::WaitUntilReady(int outputFd, int cameras, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::string pending;
    while (static_cast<int>(readyLines_.size()) < cameras) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd waiting{outputFd, POLLIN, 0};
        char chunk[512];
        ssize_t got = 0;
        if (left.count() <= 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0 ||
            (got = ::read(outputFd, chunk, sizeof chunk)) <= 0) {
            throw std::runtime_error("the emulator did not announce its cameras");
        }
        pending.append(chunk, static_cast<size_t>(got));
        for (size_t end; (end = pending.find('\n')) != std::string::npos;) {
            readyLines_.push_back(pending.substr(0, end));
            pending.erase(0, end + 1);
        }
    }
}

void EmulatorProcess::Terminate() noexcept {
    if (pid_ <= 0)
        return;
    ::kill(pid_, SIGTERM);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
}

}  // namespace ry::emulator
