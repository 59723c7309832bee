// RAII UDP socket with the few operations the camera needs.
#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace ry::emulator {

struct Endpoint {
    std::uint32_t ip = 0;  // host order: first octet in the most significant byte
    std::uint16_t port = 0;
    bool operator==(const Endpoint&) const = default;
};

sockaddr_in to_sockaddr(Endpoint endpoint);
Endpoint from_sockaddr(const sockaddr_in& address);
// Parses dotted IPv4 text; nullopt for anything else.
std::optional<std::uint32_t> parse_ipv4(const std::string& text);
std::string format_ipv4(std::uint32_t ip);

class UdpSocket {
  public:
    UdpSocket() = default;
    // Opens and binds; throws std::runtime_error naming the address when that fails.
    UdpSocket(Endpoint bind_to, bool reuse_address);
    ~UdpSocket();
    UdpSocket(UdpSocket&& other) noexcept;
    UdpSocket& operator=(UdpSocket&& other) noexcept;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    int fd() const { return fd_; }
    bool is_open() const { return fd_ >= 0; }
    std::uint16_t local_port() const;

    // Returns false when the kernel refused the datagram (the caller treats it as lost).
    bool send_to(Endpoint to, std::span<const std::uint8_t> data) const;
    // Waits up to timeout_ms; returns the byte count (0 on timeout) and the sender.
    std::size_t receive(std::span<std::uint8_t> buffer, Endpoint& from, int timeout_ms) const;
    void set_option(int level, int name, int value) const;

  private:
    int fd_ = -1;
};

}  // namespace ry::emulator
