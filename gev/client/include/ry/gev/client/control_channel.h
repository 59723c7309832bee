// The GVCP control channel to one device: request/acknowledge with retries, PENDING_ACK,
// register and memory access split into protocol-sized pieces, and PACKETRESEND. One socket,
// shared by the application's calls and the heartbeat; a mutex keeps exchanges whole.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "RyGenTLErrors.h"
#include "ry/gev/client/udp_socket.h"
#include "ry/gev/protocol/gvcp.h"

namespace ry::gev::client {

// How long one request may take in total, and how many times it is sent within that time.
// A time-out of 0 sets no limit: the request is sent again every kUnlimitedResendMs until it
// is answered or AbortWaits() is called. PENDING_ACKs may stretch a limited request by at
// most pendingLimitMs in all, however many the device sends.
struct RequestBudget {
    uint32_t timeoutMs = 500;
    uint32_t attempts = 3;
    uint32_t pendingLimitMs = 10000;
};

struct RegisterPair {
    uint32_t address = 0;
    uint32_t value = 0;
};

// GVCP acknowledge status -> transport code.
GC_ERROR StatusToError(uint16_t status);

class ControlChannel {
  public:
    // Largest READMEM/WRITEMEM piece; below the protocol's 536 so every peer accepts it.
    static constexpr size_t kMemoryChunk = 512;

    bool Open(uint32_t localIp, uint32_t deviceIp, uint16_t devicePort, std::string* errorText);
    uint32_t LocalIp() const { return socket_.LocalIp(); }
    uint16_t LocalPort() const { return socket_.LocalPort(); }
    uint32_t DeviceIp() const { return deviceIp_; }

    void SetBudget(RequestBudget budget);
    RequestBudget Budget() const;
    // For a channel whose device is closing: every request without a limit, waiting now or
    // made later, ends with GC_ERR_ABORT; bounded requests go on as their budget says.
    void AbortWaits();

    static constexpr uint32_t kUnlimitedResendMs = 500;

    GC_ERROR ReadRegisters(std::span<const uint32_t> addresses, std::span<uint32_t> values);
    GC_ERROR ReadRegister(uint32_t address, uint32_t& value);
    GC_ERROR ReadRegister(uint32_t address, uint32_t& value, RequestBudget budget);
    GC_ERROR WriteRegisters(std::span<const RegisterPair> writes);
    GC_ERROR WriteRegister(uint32_t address, uint32_t value);

    // Any address and size: unaligned edges are read (and for writes merged) as whole words.
    GC_ERROR ReadMemory(uint64_t address, std::span<uint8_t> data);
    GC_ERROR WriteMemory(uint64_t address, std::span<const uint8_t> data);

    // Fire and forget: devices never acknowledge PACKETRESEND.
    void SendPacketResend(uint16_t channel, uint64_t blockId, uint32_t first, uint32_t last,
                          bool extendedIds);

  private:
    using Payload = std::vector<uint8_t>;
    struct WordRange {
        uint32_t start = 0;
        size_t size = 0;
        size_t skip = 0;     // bytes before the caller's first one
        bool exact = false;  // the caller's range is whole words already
    };
    static std::optional<WordRange> CoverWords(uint64_t address, size_t size);
    // How one request waits for its acknowledge.
    struct Wait {
        bool unlimited = false;
        std::chrono::milliseconds perAttempt{0};
        std::chrono::steady_clock::time_point latest;  // no PENDING_ACK moves a wait past it
        uint16_t requestId = 0;
        uint16_t expectedAck = 0;
    };
    GC_ERROR Exchange(GvcpCommand command, std::span<const uint8_t> request, uint16_t requestId,
                      RequestBudget budget, Payload& answer);
    GC_ERROR AwaitAck(const Wait& wait, Payload& answer);
    uint16_t NextRequestId();
    GC_ERROR ReadAligned(uint32_t address, std::span<uint8_t> data);
    GC_ERROR WriteAligned(uint32_t address, std::span<const uint8_t> data);

    UdpSocket socket_;
    uint32_t deviceIp_ = 0;
    uint16_t devicePort_ = 0;
    mutable std::mutex mutex_;
    RequestBudget budget_;
    std::atomic<bool> unlimitedAborted_{false};
    uint16_t requestId_ = 0;
    std::atomic<uint16_t> resendId_{1};
};

}  // namespace ry::gev::client
