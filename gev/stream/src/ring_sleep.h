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
    // (negative: no limit). `packetsHandled` is how many ring packets the thread took since
    // it last slept: each may have left a wake-up datagram queued. When they are due to be
    // read off, Wait reads them and returns without sleeping, since one of them may be the
    // wake-up for a packet the thread has not yet taken: it looks at the ring again first.
    // False when the stop event fired.
    bool Wait(int timeoutMs, size_t packetsHandled);

  private:
    void EmptySocket();

    UniqueFd epoll_;
    int socketFd_ = -1;
    int stopFd_ = -1;
    // The wake-up datagrams stay queued until the packets handled since the socket was last
    // emptied could have left this many; then it is emptied in one go. Every wake-up datagram
    // is also a packet in the ring, so the count bounds them, and the socket's buffer never
    // fills: a full one would drop the next wake-up and leave the thread asleep.
    size_t packetsBetweenEmptying_ = 1;
    size_t packetsSinceEmptying_ = 0;
    std::array<uint8_t, 64> scratch_{};
};

}  // namespace ry::gev::stream::detail
