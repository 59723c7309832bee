#include "ry/gev/client/udp_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace ry::gev::client {
namespace {

sockaddr_in MakeAddress(uint32_t ip, uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(ip);
    address.sin_port = htons(port);
    return address;
}

}  // namespace

UdpSocket::~UdpSocket() {
    Close();
}

UdpSocket::UdpSocket(UdpSocket&& other) noexcept : fd_(other.fd_) {
    other.fd_ = -1;
}

UdpSocket& UdpSocket::operator=(UdpSocket&& other) noexcept {
    if (this != &other) {
        Close();
        fd_ = other.fd_;
        other.fd_ = -1;
    }
    return *this;
}

void UdpSocket::Close() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

bool UdpSocket::Open(uint32_t localIp, uint16_t localPort, std::string* errorText,
                     bool shareAddress) {
    Close();
    fd_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd_ < 0) {
        if (errorText)
            *errorText = std::string("socket: ") + std::strerror(errno);
        return false;
    }
    const int on = 1;
    if (shareAddress)
        ::setsockopt(fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = MakeAddress(localIp, localPort);
    if (::bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (errorText)
            *errorText = "bind " + Ipv4ToText(localIp) + ": " + std::strerror(errno);
        Close();
        return false;
    }
    return true;
}

bool UdpSocket::EnableBroadcast() {
    const int on = 1;
    return ::setsockopt(fd_, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) == 0;
}

bool UdpSocket::JoinMulticast(uint32_t group, uint32_t localIp) {
    ip_mreq request{};
    request.imr_multiaddr.s_addr = htonl(group);
    request.imr_interface.s_addr = htonl(localIp);
    return ::setsockopt(fd_, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request) == 0;
}

bool UdpSocket::SetMulticastInterface(uint32_t localIp) {
    in_addr address{};
    address.s_addr = htonl(localIp);
    return ::setsockopt(fd_, IPPROTO_IP, IP_MULTICAST_IF, &address, sizeof address) == 0;
}

uint16_t UdpSocket::LocalPort() const {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return 0;
    return ntohs(address.sin_port);
}

uint32_t UdpSocket::LocalIp() const {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return 0;
    return ntohl(address.sin_addr.s_addr);
}

bool UdpSocket::SendTo(uint32_t ip, uint16_t port, std::span<const uint8_t> data) const {
    const sockaddr_in address = MakeAddress(ip, port);
    const ssize_t sent = ::sendto(fd_, data.data(), data.size(), 0,
                                  reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return sent == static_cast<ssize_t>(data.size());
}

std::optional<Datagram> UdpSocket::Receive(std::span<uint8_t> buffer,
                                           std::chrono::microseconds timeout) const {
    if (fd_ < 0)
        return std::nullopt;
    sockaddr_in source{};
    socklen_t length = sizeof source;
    // Try without waiting first: on a fast peer the answer is often there already and the
    // poll system call would only add latency.
    ssize_t got = ::recvfrom(fd_, buffer.data(), buffer.size(), MSG_DONTWAIT,
                             reinterpret_cast<sockaddr*>(&source), &length);
    if (got < 0) {
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            return std::nullopt;
        pollfd waiter{fd_, POLLIN, 0};
        const auto ms = std::chrono::ceil<std::chrono::milliseconds>(timeout).count();
        if (::poll(&waiter, 1, static_cast<int>(ms)) <= 0)
            return std::nullopt;
        length = sizeof source;
        got = ::recvfrom(fd_, buffer.data(), buffer.size(), MSG_DONTWAIT,
                         reinterpret_cast<sockaddr*>(&source), &length);
        if (got < 0)
            return std::nullopt;
    }
    return Datagram{static_cast<size_t>(got), ntohl(source.sin_addr.s_addr),
                    ntohs(source.sin_port)};
}

void UdpSocket::Drain() const {
    uint8_t scratch[64];
    while (::recv(fd_, scratch, sizeof scratch, MSG_DONTWAIT) >= 0) {
    }
}

std::string Ipv4ToText(uint32_t ip) {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", ip >> 24, (ip >> 16) & 0xFF, (ip >> 8) & 0xFF,
                  ip & 0xFF);
    return text;
}

std::optional<uint32_t> Ipv4FromText(const std::string& text) {
    in_addr address{};
    if (::inet_pton(AF_INET, text.c_str(), &address) != 1)
        return std::nullopt;
    return ntohl(address.s_addr);
}

std::string MacToText(const uint8_t mac[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2],
                  mac[3], mac[4], mac[5]);
    return text;
}

}  // namespace ry::gev::client
