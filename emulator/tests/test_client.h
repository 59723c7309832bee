// A small GVCP/GVSP client for the tests: real UDP sockets on loopback.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ry/emulator/camera.h"
#include "ry/gev/protocol/gvcp_payloads.h"
#include "ry/gev/protocol/gvsp.h"
#include "udp_socket.h"

namespace ry::emulator::testing {

struct Ack {
    gev::GvcpAckHeader header;
    std::vector<std::uint8_t> payload;
    std::uint16_t status() const { return header.status; }
};

class TestClient {
  public:
    TestClient(const std::string& camera_ip, std::uint16_t camera_port);

    // Sends a datagram and waits for the acknowledge with the matching ack_id (PENDING_ACKs
    // are collected in pending()). nullopt on timeout.
    std::optional<Ack> transact(const std::vector<std::uint8_t>& datagram, std::uint16_t req_id,
                                int timeout_ms = 1000);
    std::uint16_t next_id();

    std::optional<Ack> read_regs(const std::vector<std::uint32_t>& addresses);
    std::uint32_t read_reg(std::uint32_t address);  // fails the test on error
    std::uint16_t write_regs(const std::vector<gev::RegisterWrite>& writes);  // status
    std::uint16_t write_reg(std::uint32_t address, std::uint32_t value);
    std::optional<Ack> read_mem(std::uint32_t address, std::uint16_t count);
    std::uint16_t write_mem(std::uint32_t address, const std::vector<std::uint8_t>& data);
    std::vector<std::uint8_t> read_block(std::uint32_t address, std::size_t size);
    void send_raw(const std::vector<std::uint8_t>& datagram);

    std::uint16_t take_control(std::uint32_t ccp = 2) { return write_reg(0x0A00, ccp); }
    const std::vector<std::uint16_t>& pending() const { return pending_; }
    Endpoint local() const;

  private:
    UdpSocket socket_;
    Endpoint camera_;
    std::uint16_t req_id_ = 100;
    std::vector<std::uint16_t> pending_;
};

// A stream receiver bound to 127.0.0.1.
struct GvspPacket {
    gev::GvspHeader header;
    std::vector<std::uint8_t> data;  // after the header
};

class StreamReceiver {
  public:
    StreamReceiver();
    std::uint16_t port() const { return socket_.local_port(); }
    std::optional<GvspPacket> next(int timeout_ms = 1000);
    // Collects packets until a trailer arrives or the timeout passes.
    std::vector<GvspPacket> next_block(int timeout_ms = 2000);
    void drain();

  private:
    UdpSocket socket_;
};

// Sets SCDA/SCP to the receiver and the packet size; returns the WRITEREG status.
std::uint16_t open_stream(TestClient& client, const StreamReceiver& receiver,
                          std::uint32_t packet_size = 1500);

// The bytes a frame of `block_id` must carry.
std::vector<std::uint8_t> expected_image(std::uint32_t pixel_format, std::uint32_t width,
                                         std::uint32_t height, std::uint64_t block_id);

// Reassembles payload packets by packet id; missing bytes stay 0xEE.
std::vector<std::uint8_t> assemble(const std::vector<GvspPacket>& packets, std::size_t size,
                                   std::size_t per_packet);

// A camera on a loopback address of its own with a test port, so tests do not collide.
CameraConfig test_camera(int index);

}  // namespace ry::emulator::testing
