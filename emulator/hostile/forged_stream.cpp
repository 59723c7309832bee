#include <chrono>

#include "hostile_device.h"
#include "ry/gev/protocol/gvsp.h"
#include "ry/gev/protocol/pixel_formats.h"
#include "udp_socket.h"

namespace ry::emulator::hostile {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kPayloadBytes = 1400;
constexpr std::uint64_t kBlockIdsSprayed = 64;  // a stream that just started uses these
constexpr int kBurst = 16;
constexpr auto kBurstPause = std::chrono::milliseconds(2);

Bytes packet(const gev::GvspHeader& header, std::size_t data_size, std::uint8_t fill) {
    Bytes out(gev::gvsp_header_size(header.extended_ids) + data_size, fill);
    gev::encode_gvsp_header(header, out);
    return out;
}

Bytes leader(gev::GvspHeader header, bool absurd) {
    header.format = gev::GvspFormat::Leader;
    header.packet_id = 0;
    gev::ImageLeader leader;
    leader.pixel_format = 0x01080001;  // Mono8
    leader.size_x = absurd ? 0xFFFFFFFF : 640;
    leader.size_y = absurd ? 0xFFFFFFFF : 480;
    leader.padding_x = absurd ? 0xFFFF : 0;
    Bytes out = packet(header, gev::kImageLeaderSize, 0);
    gev::encode_image_leader(leader, gev::MutableBytes(out).subspan(out.size() - 36));
    return out;
}

Bytes trailer(gev::GvspHeader header) {
    header.format = gev::GvspFormat::Trailer;
    header.packet_id = 2;  // ends the block after one payload packet
    Bytes out = packet(header, gev::kImageTrailerSize, 0);
    gev::encode_image_trailer({static_cast<std::uint16_t>(gev::GvspPayloadType::Image), 1},
                              gev::MutableBytes(out).subspan(out.size() - 8));
    return out;
}

Bytes payload(gev::GvspHeader header, std::uint32_t packet_id, std::size_t size) {
    header.format = gev::GvspFormat::Payload;
    header.packet_id = packet_id;
    return packet(header, size, 0xEE);
}

}  // namespace

std::vector<std::uint8_t> forge_stream_packet(std::uint64_t n) {
    gev::GvspHeader header;
    header.extended_ids = (n / 16) % 2 == 1;
    header.block_id = (n / 32) % kBlockIdsSprayed + 1;
    const std::uint32_t last_id = header.extended_ids ? 0xFFFFFFFF : 0xFFFFFF;
    switch (n % 8) {
        case 0:
            return leader(header, n % 16 >= 8);
        case 1:
            return payload(header, static_cast<std::uint32_t>(n % 1000) + 1, kPayloadBytes);
        case 2:
            return payload(header, last_id, 16);
        case 3:
            return trailer(header);
        case 4: {
            Bytes cut = leader(header, false);
            cut.resize(5);
            return cut;
        }
        case 5: {
            Bytes unknown = payload(header, 1, 64);
            unknown[4] = static_cast<std::uint8_t>((unknown[4] & 0xF0) | 0x0F);
            return unknown;
        }
        case 6: {
            Bytes short_leader = leader(header, false);
            short_leader.resize(gev::gvsp_header_size(header.extended_ids) + 2);
            return short_leader;
        }
        default:
            header.status = static_cast<std::uint16_t>(0x8001);
            header.flags = gev::kGvspFlagResent;
            return payload(header, 1, kPayloadBytes + 7000);
    }
}

struct ForgedStream::Sources {
    std::vector<UdpSocket> sockets;
};

ForgedStream::ForgedStream(const std::vector<std::string>& source_addresses,
                           std::uint32_t target_ip, std::uint16_t target_port)
    : sources_(std::make_unique<Sources>()) {
    for (const std::string& address : source_addresses) {
        const auto ip = parse_ipv4(address);
        if (!ip)
            throw std::runtime_error("not an IPv4 address: " + address);
        sources_->sockets.emplace_back(Endpoint{*ip, 0}, false);
    }
    if (sources_->sockets.empty())
        throw std::runtime_error("a forged stream needs a source address");
    sender_ = std::thread([this, target_ip, target_port] { run(target_ip, target_port); });
}

ForgedStream::~ForgedStream() {
    quit_ = true;
    sender_.join();
}

void ForgedStream::run(std::uint32_t target_ip, std::uint16_t target_port) {
    const Endpoint target{target_ip, target_port};
    std::uint64_t n = 0;
    while (!quit_) {
        for (int i = 0; i < kBurst; ++i, ++n) {
            const UdpSocket& socket = sources_->sockets[n % sources_->sockets.size()];
            if (socket.send_to(target, forge_stream_packet(n)))
                ++sent_;
        }
        std::this_thread::sleep_for(kBurstPause);
    }
}

}  // namespace ry::emulator::hostile
