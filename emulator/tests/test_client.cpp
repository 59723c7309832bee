#include "test_client.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include "test_image.h"

namespace ry::emulator::testing {

TestClient::TestClient(const std::string& camera_ip, std::uint16_t camera_port)
    : socket_(Endpoint{*parse_ipv4("127.0.0.1"), 0}, false),
      camera_{*parse_ipv4(camera_ip), camera_port} {}

Endpoint TestClient::local() const {
    return {*parse_ipv4("127.0.0.1"), socket_.local_port()};
}

std::uint16_t TestClient::next_id() {
    req_id_ = gev::next_req_id(req_id_);
    return req_id_;
}

void TestClient::send_raw(const std::vector<std::uint8_t>& datagram) {
    socket_.send_to(camera_, datagram);
}

std::optional<Ack> TestClient::transact(const std::vector<std::uint8_t>& datagram,
                                        std::uint16_t req_id, int timeout_ms) {
    send_raw(datagram);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    std::vector<std::uint8_t> buffer(2048);
    while (std::chrono::steady_clock::now() < deadline) {
        Endpoint from;
        const std::size_t n = socket_.receive(buffer, from, 20);
        const auto header = gev::decode_ack_header({buffer.data(), n});
        if (n == 0 || !header || header->ack_id != req_id) {
            continue;
        }
        if (header->acknowledge == static_cast<std::uint16_t>(gev::GvcpAck::Pending)) {
            pending_.push_back(gev::load_be16(buffer.data() + 10));
            continue;
        }
        const auto payload = gev::ack_payload({buffer.data(), n}, *header);
        if (!payload) {
            continue;
        }
        return Ack{*header, {payload->begin(), payload->end()}};
    }
    return std::nullopt;
}

std::optional<Ack> TestClient::read_regs(const std::vector<std::uint32_t>& addresses) {
    const std::uint16_t id = next_id();
    return transact(*gev::make_readreg_command(id, addresses), id);
}

std::uint32_t TestClient::read_reg(std::uint32_t address) {
    const auto ack = read_regs({address});
    EXPECT_TRUE(ack);
    if (!ack)
        return 0;
    EXPECT_EQ(ack->status(), 0) << std::hex << address;
    return ack->payload.size() >= 4 ? gev::load_be32(ack->payload.data()) : 0;
}

std::uint16_t TestClient::write_regs(const std::vector<gev::RegisterWrite>& writes) {
    const std::uint16_t id = next_id();
    const auto ack = transact(*gev::make_writereg_command(id, writes), id);
    return ack ? ack->status() : 0xFFFF;
}

std::uint16_t TestClient::write_reg(std::uint32_t address, std::uint32_t value) {
    return write_regs({{address, value}});
}

std::optional<Ack> TestClient::read_mem(std::uint32_t address, std::uint16_t count) {
    const std::uint16_t id = next_id();
    return transact(gev::make_readmem_command(id, {address, count}), id);
}

std::uint16_t TestClient::write_mem(std::uint32_t address, const std::vector<std::uint8_t>& data) {
    const std::uint16_t id = next_id();
    const auto ack = transact(*gev::make_writemem_command(id, address, data), id);
    return ack ? ack->status() : 0xFFFF;
}

std::vector<std::uint8_t> TestClient::read_block(std::uint32_t address, std::size_t size) {
    std::vector<std::uint8_t> out;
    while (out.size() < size) {
        const std::size_t chunk = std::min<std::size_t>(512, (size - out.size() + 3) / 4 * 4);
        const auto ack = read_mem(address + static_cast<std::uint32_t>(out.size()),
                                  static_cast<std::uint16_t>(chunk));
        if (!ack || ack->status() != 0 || ack->payload.size() < 4) {
            ADD_FAILURE() << "READMEM failed at " << std::hex << address + out.size();
            return out;
        }
        out.insert(out.end(), ack->payload.begin() + 4, ack->payload.end());
    }
    out.resize(size);
    return out;
}

StreamReceiver::StreamReceiver() : socket_(Endpoint{*parse_ipv4("127.0.0.1"), 0}, false) {
    socket_.set_option(SOL_SOCKET, SO_RCVBUF, 16 << 20);
}

std::optional<GvspPacket> StreamReceiver::next(int timeout_ms) {
    std::vector<std::uint8_t> buffer(70000);
    Endpoint from;
    const std::size_t n = socket_.receive(buffer, from, timeout_ms);
    const auto header = gev::decode_gvsp_header({buffer.data(), n});
    if (n == 0 || !header) {
        return std::nullopt;
    }
    const std::size_t skip = gev::gvsp_header_size(header->extended_ids);
    return GvspPacket{*header,
                      {buffer.begin() + static_cast<std::ptrdiff_t>(skip),
                       buffer.begin() + static_cast<std::ptrdiff_t>(n)}};
}

std::vector<GvspPacket> StreamReceiver::next_block(int timeout_ms) {
    std::vector<GvspPacket> packets;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    while (std::chrono::steady_clock::now() < deadline) {
        auto packet = next(50);
        if (!packet) {
            continue;
        }
        packets.push_back(*packet);
        if (packet->header.format == gev::GvspFormat::Trailer) {
            break;
        }
    }
    return packets;
}

void StreamReceiver::drain() {
    while (next(50)) {
    }
}

std::uint16_t open_stream(TestClient& client, const StreamReceiver& receiver,
                          std::uint32_t packet_size) {
    return client.write_regs(
        {{0x0D18, *parse_ipv4("127.0.0.1")}, {0x0D04, packet_size}, {0x0D00, receiver.port()}});
}

std::vector<std::uint8_t> expected_image(std::uint32_t pixel_format, std::uint32_t width,
                                         std::uint32_t height, std::uint64_t block_id) {
    ImageSettings settings;
    settings.pixel_format = pixel_format;
    settings.width = width;
    settings.height = height;
    auto image = make_test_image(settings);
    stamp_block_id(image.data(), image.size(), block_id);
    return image;
}

std::vector<std::uint8_t> assemble(const std::vector<GvspPacket>& packets, std::size_t size,
                                   std::size_t per_packet) {
    std::vector<std::uint8_t> image(size, 0xEE);
    for (const auto& packet : packets) {
        if (packet.header.format != gev::GvspFormat::Payload ||
            gev::is_error(packet.header.status)) {
            continue;
        }
        const std::size_t offset = (packet.header.packet_id - 1) * per_packet;
        if (offset + packet.data.size() <= size) {
            std::copy(packet.data.begin(), packet.data.end(), image.begin() + offset);
        }
    }
    return image;
}

CameraConfig test_camera(int index) {
    CameraConfig config;
    config.address = "127.0.0." + std::to_string(10 + index);
    config.gvcp_port = 0;  // a free port, so that test processes may run side by side
    config.answer_broadcasts = false;
    config.serial = "TEST" + std::to_string(index);
    config.width = 64;
    config.height = 32;
    config.fps = 0;
    return config;
}

}  // namespace ry::emulator::testing
