#include "udp_socket.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace ry::emulator {

sockaddr_in to_sockaddr(Endpoint endpoint) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(endpoint.ip);
    address.sin_port = htons(endpoint.port);
    return address;
}

Endpoint from_sockaddr(const sockaddr_in& address) {
    return {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
}

std::optional<std::uint32_t> parse_ipv4(const std::string& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
        return std::nullopt;
    }
    return ntohl(address.s_addr);
}

std::string format_ipv4(std::uint32_t ip) {
    in_addr address{htonl(ip)};
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

UdpSocket::UdpSocket(Endpoint bind_to, bool reuse_address) {
    fd_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd_ < 0) {
        throw std::runtime_error(std::string("cannot open a UDP socket: ") + std::strerror(errno));
    }
    if (reuse_address) {
        set_option(SOL_SOCKET, SO_REUSEADDR, 1);
    }
    set_option(SOL_SOCKET, SO_BROADCAST, 1);
    const sockaddr_in address = to_sockaddr(bind_to);
    if (::bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const std::string reason = std::strerror(errno);
        ::close(fd_);
        fd_ = -1;
        throw std::runtime_error("cannot bind UDP " + format_ipv4(bind_to.ip) + ":" +
                                 std::to_string(bind_to.port) + ": " + reason);
    }
}

UdpSocket::~UdpSocket() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

UdpSocket::UdpSocket(UdpSocket&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

UdpSocket& UdpSocket::operator=(UdpSocket&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

std::uint16_t UdpSocket::local_port() const {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return 0;
    }
    return ntohs(address.sin_port);
}

bool UdpSocket::send_to(Endpoint to, std::span<const std::uint8_t> data) const {
    const sockaddr_in address = to_sockaddr(to);
    const ssize_t sent = ::sendto(fd_, data.data(), data.size(), MSG_NOSIGNAL,
                                  reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return sent == static_cast<ssize_t>(data.size());
}

std::size_t UdpSocket::receive(std::span<std::uint8_t> buffer, Endpoint& from,
                               int timeout_ms) const {
    pollfd descriptor{fd_, POLLIN, 0};
    if (::poll(&descriptor, 1, timeout_ms) <= 0) {
        return 0;
    }
    sockaddr_in address{};
    socklen_t length = sizeof address;
    const ssize_t received = ::recvfrom(fd_, buffer.data(), buffer.size(), MSG_DONTWAIT,
                                        reinterpret_cast<sockaddr*>(&address), &length);
    if (received <= 0) {
        return 0;  // ECONNREFUSED from an earlier send or a spurious wake-up
    }
    from = from_sockaddr(address);
    return static_cast<std::size_t>(received);
}

void UdpSocket::set_option(int level, int name, int value) const {
    ::setsockopt(fd_, level, name, &value, sizeof value);
}

}  // namespace ry::emulator
