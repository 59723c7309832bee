// A small GigE Vision device for tests: answers GVCP on a real loopback UDP socket from its
// own thread, keeps a register/memory image, tracks the control privilege and heartbeat,
// sends GVSP frames to the stream channel registers and resends packets on request. Knobs
// reproduce the awkward peers the transport layer must survive.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "ry/gev/client/udp_socket.h"

namespace ry::gev::testing {

struct TestCameraOptions {
    uint32_t ip = 0x7F000001;
    uint16_t port = 0;             // 0: ephemeral (tests that do not broadcast)
    bool answerBroadcast = false;  // also listen on 255.255.255.255:port (private namespace)
    std::array<uint8_t, 6> mac{0x02, 0x00, 0x00, 0x00, 0x00, 0x01};
    std::string model = "TestCam";
    std::string serial = "T0001";
    bool silentlyDropRefusedWrites = false;  // no ack at all for a refused write
    bool supportsResend = true;
    uint16_t pendingAckMs = 0;           // answer writes to kSlowRegister with PENDING_ACK first
    uint32_t heartbeatTimeoutMs = 3000;  // initial value of the heartbeat register
};

class TestCamera {
  public:
    static constexpr uint32_t kSlowRegister = 0xA000;
    static constexpr uint32_t kMemorySize = 0x20000;
    static constexpr uint32_t kXmlAddress = 0x10000;

    explicit TestCamera(TestCameraOptions options = {});
    ~TestCamera();

    uint16_t Port() const { return control_.LocalPort(); }
    uint32_t Ip() const { return options_.ip; }

    uint32_t Register(uint32_t address) const;
    void SetRegister(uint32_t address, uint32_t value);
    void WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes);
    std::vector<uint8_t> ReadBytes(uint32_t address, size_t size) const;

    // Stops answering anything, as if the cable were pulled.
    void SetUnplugged(bool unplugged) { unplugged_ = unplugged; }
    // Ignores the next `count` commands (each retry counts as one).
    void DropNextCommands(uint32_t count) { dropCommands_ = count; }
    uint64_t CommandsSeen() const { return commandsSeen_; }
    uint64_t ResendRequests() const { return resendRequests_; }
    uint64_t ReadRegCommands() const { return readRegs_; }

    // Sends one Mono8 frame to the stream channel destination. Packets whose ids are in
    // `skip` are left out (they can still be resent). Returns the block id used.
    uint64_t SendFrame(uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels,
                       const std::set<uint32_t>& skip = {});
    // Sends an EVENT for the message channel.
    bool SendEvent(uint16_t eventId, uint64_t timestamp);

  private:
    void Serve(std::stop_token stop);
    void Handle(const uint8_t* data, size_t size, const client::Datagram& from,
                const client::UdpSocket& via);
    std::vector<uint8_t> Answer(uint8_t flags, uint16_t command, uint16_t id,
                                std::span<const uint8_t> payload, const client::Datagram& from,
                                const client::UdpSocket& via, bool& silent);
    bool MayWrite(const client::Datagram& from);
    void ExpireHeartbeat();
    void Resend(std::span<const uint8_t> payload, uint8_t flags);
    std::vector<uint8_t> DiscoveryAck(uint16_t id) const;

    TestCameraOptions options_;
    client::UdpSocket control_;
    client::UdpSocket broadcast_;
    client::UdpSocket stream_;
    mutable std::mutex mutex_;
    std::vector<uint8_t> memory_;
    uint32_t primaryIp_ = 0;
    uint16_t primaryPort_ = 0;
    std::chrono::steady_clock::time_point lastPrimaryCommand_;
    uint16_t blockId_ = 0;
    std::map<std::pair<uint16_t, uint32_t>, std::vector<uint8_t>> sentPackets_;
    uint16_t eventRequestId_ = 1;
    std::atomic<bool> unplugged_{false};
    std::atomic<uint32_t> dropCommands_{0};
    std::atomic<uint64_t> commandsSeen_{0};
    std::atomic<uint64_t> resendRequests_{0};
    std::atomic<uint64_t> readRegs_{0};
    std::jthread thread_;
};

}  // namespace ry::gev::testing
