// A UDP socket owned by one object. Addresses and ports are in host byte order throughout;
// the conversion to network order happens only inside the implementation.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace ry::gev::client {

struct Datagram {
    size_t size = 0;
    uint32_t sourceIp = 0;
    uint16_t sourcePort = 0;
};

class UdpSocket {
  public:
    UdpSocket() = default;
    ~UdpSocket();
    UdpSocket(UdpSocket&& other) noexcept;
    UdpSocket& operator=(UdpSocket&& other) noexcept;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    // Creates and binds; port 0 lets the kernel choose. `shareAddress` lets several sockets
    // bind the same address and port. Returns false with errorText set.
    bool Open(uint32_t localIp, uint16_t localPort, std::string* errorText = nullptr,
              bool shareAddress = false);
    bool IsOpen() const { return fd_ >= 0; }
    void Close();

    bool EnableBroadcast();
    bool JoinMulticast(uint32_t group, uint32_t localIp);
    // Multicast datagrams this socket sends leave through the interface with `localIp`.
    bool SetMulticastInterface(uint32_t localIp);
    uint16_t LocalPort() const;
    uint32_t LocalIp() const;

    bool SendTo(uint32_t ip, uint16_t port, std::span<const uint8_t> data) const;
    // Waits at most `timeout` for one datagram; nullopt on time-out or error.
    std::optional<Datagram> Receive(std::span<uint8_t> buffer,
                                    std::chrono::microseconds timeout) const;
    // Drops everything already queued (stale acks from an earlier time-out).
    void Drain() const;

  private:
    int fd_ = -1;
};

// Dotted text of an address in host byte order, and back (nullopt for malformed text).
std::string Ipv4ToText(uint32_t ip);
std::optional<uint32_t> Ipv4FromText(const std::string& text);
std::string MacToText(const uint8_t mac[6]);

}  // namespace ry::gev::client
