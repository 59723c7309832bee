// The receiving side's system handles: the UDP socket, a batch of receive slots filled by one
// recvmmsg call, and an eventfd that wakes the receiving thread when it must stop.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

// Receive slots for one recvmmsg call, allocated once. Each slot is large enough for any UDP
// datagram, so a cut-off datagram can only come from a sender lying about its length.
class ReceiveBatch {
  public:
    static constexpr size_t kDefaultMessages = 64;
    static constexpr size_t kSlotBytes = 65536;

    explicit ReceiveBatch(size_t messages = kDefaultMessages);

    // Drains up to Capacity() waiting datagrams without blocking; returns how many arrived.
    size_t ReceiveFrom(int fd);

    size_t Capacity() const { return headers_.size(); }
    const uint8_t* Data(size_t i) const { return storage_.data() + i * kSlotBytes; }
    size_t Size(size_t i) const { return headers_[i].msg_len; }
    bool Truncated(size_t i) const { return (headers_[i].msg_hdr.msg_flags & MSG_TRUNC) != 0; }
    uint32_t SourceIp(size_t i) const { return ntohl(sources_[i].sin_addr.s_addr); }

  private:
    std::vector<uint8_t> storage_;
    std::vector<iovec> vectors_;
    std::vector<sockaddr_in> sources_;
    std::vector<mmsghdr> headers_;
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
