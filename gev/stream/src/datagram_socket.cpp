#include "datagram_socket.h"

#include <arpa/inet.h>
#include <netinet/udp.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ry::gev::stream::detail {

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = other.Release();
    }
    return *this;
}

UniqueFd::~UniqueFd() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

int UniqueFd::Release() {
    const int fd = fd_;
    fd_ = -1;
    return fd;
}

namespace {

std::string SystemError(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
}

// SO_RCVBUFFORCE passes the administrator's cap when we hold CAP_NET_ADMIN; otherwise the
// plain option gives whatever the cap allows. The kernel reports twice the usable size.
size_t EnlargeReceiveBuffer(int fd, size_t wanted) {
    const int request = static_cast<int>(std::min<size_t>(wanted, INT32_MAX / 2));
    if (::setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &request, sizeof request) != 0) {
        ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &request, sizeof request);
    }
    int granted = 0;
    socklen_t length = sizeof granted;
    ::getsockopt(fd, SOL_SOCKET, SO_RCVBUF, &granted, &length);
    return static_cast<size_t>(granted) / 2;
}

}  // namespace

DatagramSocket DatagramSocket::Open(uint32_t ip, uint16_t port, size_t receiveBufferBytes,
                                    std::string* errorText) {
    DatagramSocket socket;
    UniqueFd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd.Valid()) {
        if (errorText != nullptr) {
            *errorText = SystemError("cannot create the stream socket");
        }
        return socket;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(ip);
    address.sin_port = htons(port);
    if (::bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (errorText != nullptr) {
            *errorText = SystemError("cannot bind the stream socket");
        }
        return socket;
    }
    socklen_t length = sizeof address;
    ::getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &length);
    socket.receiveBufferBytes_ = EnlargeReceiveBuffer(fd.Get(), receiveBufferBytes);
    // Trains of equal-sized packets (segmentation offload on the sender, GRO on the NIC's
    // path) then arrive as one datagram: one queue entry and one receive slot for many
    // packets. Kernels without it deliver packet by packet, which works as well.
    const int takeTrainsWhole = 1;
    ::setsockopt(fd.Get(), SOL_UDP, UDP_GRO, &takeTrainsWhole, sizeof takeTrainsWhole);
    socket.ip_ = ip;
    socket.port_ = ntohs(address.sin_port);
    socket.fd_ = std::move(fd);
    return socket;
}

WakeEvent::WakeEvent() : fd_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

void WakeEvent::Signal() {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(fd_.Get(), &one, sizeof one);
}

void WakeEvent::Drain() {
    uint64_t value = 0;
    [[maybe_unused]] const ssize_t read = ::read(fd_.Get(), &value, sizeof value);
}

}  // namespace ry::gev::stream::detail
