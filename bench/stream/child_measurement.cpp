#include "child_measurement.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <type_traits>

namespace ry::bench {
namespace {

static_assert(std::is_trivially_copyable_v<ReceiverReport>);

class Pipe {
  public:
    Pipe() {
        if (::pipe2(fds_, O_CLOEXEC) != 0) {
            fds_[0] = fds_[1] = -1;
        }
    }
    ~Pipe() {
        CloseReader();
        CloseWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool Valid() const { return fds_[0] >= 0; }
    int Reader() const { return fds_[0]; }
    int Writer() const { return fds_[1]; }
    void CloseReader() { Close(fds_[0]); }
    void CloseWriter() { Close(fds_[1]); }

  private:
    static void Close(int& fd) {
        if (fd >= 0) {
            ::close(fd);
        }
        fd = -1;
    }
    int fds_[2];
};

[[noreturn]] void RunChild(const std::function<std::optional<ReceiverReport>()>& measure,
                           int writer) {
    const auto figures = measure();
    bool reported = false;
    if (figures) {
        reported =
            ::write(writer, &*figures, sizeof *figures) == static_cast<ssize_t>(sizeof *figures);
    }
    std::fflush(nullptr);
    // No exit handlers: the parent's benchmark state and emulator belong to the parent.
    ::_exit(reported ? 0 : 1);
}

}  // namespace

std::optional<ReceiverReport> MeasureInChild(
    const std::function<std::optional<ReceiverReport>()>& measure, std::chrono::seconds limit) {
    Pipe pipe;
    if (!pipe.Valid()) {
        return std::nullopt;
    }
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) {
        return std::nullopt;
    }
    if (child == 0) {
        pipe.CloseReader();
        RunChild(measure, pipe.Writer());
    }
    pipe.CloseWriter();
    ReceiverReport figures;
    pollfd waiting{pipe.Reader(), POLLIN, 0};
    const bool ready =
        ::poll(&waiting, 1, static_cast<int>(limit.count() * 1000)) > 0 &&
        ::read(pipe.Reader(), &figures, sizeof figures) == static_cast<ssize_t>(sizeof figures);
    if (!ready) {
        ::kill(child, SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!ready || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return std::nullopt;
    }
    return figures;
}

}  // namespace ry::bench
