// Where the receiving thread of the ring path sleeps: on the stream socket, whose filter lets
// through only the packets that should wake it, and on the stop event.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "datagram_socket.h"

namespace ry::gev::stream::detail {

class RingSleep {
  public:
    RingSleep() = default;
    // Watches `socketFd` edge-triggered, so that every datagram the filter lets through wakes
    // the thread without being read first, and `stopFd` for as long as it is readable. An
    // invalid sleep when the kernel refuses either.
    static RingSleep Open(int socketFd, int stopFd, size_t socketBufferBytes);

    bool Valid() const { return epoll_.Valid(); }

    // Sleeps until a wake-up datagram lands, the stop event fires or `timeoutMs` passes
    // (negative: no limit). False when the stop event fired.
    bool Wait(int timeoutMs);

  private:
    void EmptySocketWhenDue();

    UniqueFd epoll_;
    int socketFd_ = -1;
    int stopFd_ = -1;
    // Wake-up datagrams stay queued until this many have woken the thread; then the socket is
    // emptied in one go. Sized so that they never fill the socket's buffer.
    size_t wakesBetweenEmptying_ = 1;
    size_t wakesSinceEmptying_ = 0;
    std::array<uint8_t, 64> scratch_{};
};

}  // namespace ry::gev::stream::detail
