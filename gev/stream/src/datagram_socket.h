// The receiving side's system handles: the UDP socket and an eventfd that wakes the receiving
// thread when it must stop.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace ry::gev::stream::detail {

class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept;
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd();

    int Get() const { return fd_; }
    bool Valid() const { return fd_ >= 0; }
    int Release();

  private:
    int fd_ = -1;
};

// A UDP socket bound to one address and port with a receive buffer as large as allowed.
class DatagramSocket {
  public:
    // `ip` and `port` in host byte order; 0 means any. Returns an invalid socket and fills
    // `errorText` on failure.
    static DatagramSocket Open(uint32_t ip, uint16_t port, size_t receiveBufferBytes,
                               std::string* errorText);

    bool Valid() const { return fd_.Valid(); }
    int Fd() const { return fd_.Get(); }
    uint16_t Port() const { return port_; }
    uint32_t BoundIp() const { return ip_; }
    size_t ReceiveBufferBytes() const { return receiveBufferBytes_; }

  private:
    UniqueFd fd_;
    uint32_t ip_ = 0;
    uint16_t port_ = 0;
    size_t receiveBufferBytes_ = 0;
};

// Wakes a thread sleeping in poll; Signal may be called from any thread.
class WakeEvent {
  public:
    WakeEvent();
    bool Valid() const { return fd_.Valid(); }
    int Fd() const { return fd_.Get(); }
    void Signal();
    void Drain();

  private:
    UniqueFd fd_;
};

}  // namespace ry::gev::stream::detail
