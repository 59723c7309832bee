#include "ring_sleep.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>

namespace ry::gev::stream::detail {

namespace {

// What a queued wake-up datagram may hold of the socket's buffer: the filter cuts its
// payload, not the kernel's allocation behind it, which for a jumbo frame is up to 16 KiB
// and a little more.
constexpr size_t kQueuedDatagramBytes = 20 * 1024;
constexpr size_t kReadsPerCall = 32;
// A read of the whole socket at the most; what a flood leaves waits for the next emptying.
constexpr size_t kMostReadCalls = 32;
constexpr size_t kMostPacketsBetweenEmptying = kReadsPerCall * kMostReadCalls;

bool Watch(int epoll, int fd, uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = fd;
    return ::epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event) == 0;
}

}  // namespace

RingSleep RingSleep::Open(int socketFd, int stopFd, size_t socketBufferBytes) {
    RingSleep sleep;
    UniqueFd epoll(::epoll_create1(EPOLL_CLOEXEC));
    if (!epoll.Valid() || !Watch(epoll.Get(), socketFd, EPOLLIN | EPOLLET) ||
        !Watch(epoll.Get(), stopFd, EPOLLIN)) {
        return sleep;
    }
    sleep.epoll_ = std::move(epoll);
    sleep.socketFd_ = socketFd;
    sleep.stopFd_ = stopFd;
    // Half the buffer at most.
    sleep.packetsBetweenEmptying_ = std::clamp<size_t>(socketBufferBytes / kQueuedDatagramBytes / 2,
                                                       1, kMostPacketsBetweenEmptying);
    return sleep;
}

bool RingSleep::Wait(int timeoutMs, size_t packetsHandled) {
    packetsSinceEmptying_ += packetsHandled;
    if (packetsSinceEmptying_ >= packetsBetweenEmptying_) {
        EmptySocket();
        return true;
    }
    std::array<epoll_event, 2> events{};
    const int ready = ::epoll_wait(epoll_.Get(), events.data(), events.size(), timeoutMs);
    for (int i = 0; i < ready; ++i) {
        if (events[i].data.fd == stopFd_) {
            return false;
        }
    }
    if (ready == 0) {
        // Nothing woke it: should the socket have filled while the ring overflowed (the
        // wake-ups of packets the ring dropped are not counted), it is emptied here.
        EmptySocket();
    }
    return true;
}

// The datagrams only woke the thread; reading each as it came would cost a system call per
// wake-up. They are read in batches into one scratch area, as none is looked at.
void RingSleep::EmptySocket() {
    packetsSinceEmptying_ = 0;
    iovec scratch{scratch_.data(), scratch_.size()};
    std::array<mmsghdr, kReadsPerCall> headers{};
    for (mmsghdr& header : headers) {
        header.msg_hdr.msg_iov = &scratch;
        header.msg_hdr.msg_iovlen = 1;
    }
    for (size_t i = 0; i < kMostReadCalls; ++i) {
        const int read =
            ::recvmmsg(socketFd_, headers.data(), headers.size(), MSG_DONTWAIT, nullptr);
        if (read < static_cast<int>(headers.size())) {
            return;
        }
    }
}

}  // namespace ry::gev::stream::detail
