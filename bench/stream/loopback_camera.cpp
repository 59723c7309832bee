#include "loopback_camera.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

#include "ry/gev/protocol/gvsp.h"

namespace ry::bench {

namespace {

constexpr uint32_t kLoopback = 0x7F000001;
constexpr uint32_t kMono8 = 0x01080001;

}  // namespace

LoopbackCamera::LoopbackCamera(const CameraShape& shape, uint16_t destinationPort)
    : fd_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(kLoopback);
    to.sin_port = htons(destinationPort);
    if (fd_ < 0 || ::connect(fd_, reinterpret_cast<sockaddr*>(&to), sizeof to) != 0) {
        throw std::runtime_error("cannot connect the benchmark camera");
    }
    BuildPackets(shape);
}

LoopbackCamera::~LoopbackCamera() {
    ::close(fd_);
}

void LoopbackCamera::BuildPackets(const CameraShape& shape) {
    image_.resize(size_t{shape.width} * shape.height);
    for (size_t i = 0; i < image_.size(); ++i) {
        image_[i] = static_cast<uint8_t>(i * 13 + i / 4093);
    }
    ry::gev::ImageLeader leader;
    leader.pixel_format = kMono8;
    leader.size_x = shape.width;
    leader.size_y = shape.height;
    leaderBody_.assign(ry::gev::kImageLeaderSize, 0);
    ry::gev::encode_image_leader(leader, leaderBody_);
    ry::gev::ImageTrailer trailer;
    trailer.size_y = shape.height;
    trailerBody_.assign(ry::gev::kImageTrailerSize, 0);
    ry::gev::encode_image_trailer(trailer, trailerBody_);

    const size_t packetData = ry::gev::gvsp_payload_per_packet(shape.packetSize, false);
    const size_t payloadPackets = (image_.size() + packetData - 1) / packetData;
    const size_t packets = payloadPackets + 2;
    headers_.assign(packets * kHeaderBytes, 0);
    vectors_.resize(packets * 2);
    messages_.resize(packets);
    for (size_t id = 0; id < packets; ++id) {
        uint8_t* header = &headers_[id * kHeaderBytes];
        ry::gev::GvspHeader fields;
        fields.packet_id = static_cast<uint32_t>(id);
        fields.format = id == 0 ? ry::gev::GvspFormat::Leader
                                : (id == packets - 1 ? ry::gev::GvspFormat::Trailer
                                                     : ry::gev::GvspFormat::Payload);
        ry::gev::encode_gvsp_header(fields, std::span(header, kHeaderBytes));
        vectors_[2 * id] = {header, kHeaderBytes};
        if (fields.format == ry::gev::GvspFormat::Leader) {
            vectors_[2 * id + 1] = {leaderBody_.data(), leaderBody_.size()};
        } else if (fields.format == ry::gev::GvspFormat::Trailer) {
            vectors_[2 * id + 1] = {trailerBody_.data(), trailerBody_.size()};
        } else {
            const size_t offset = (id - 1) * packetData;
            vectors_[2 * id + 1] = {image_.data() + offset,
                                    std::min(packetData, image_.size() - offset)};
        }
        messages_[id] = mmsghdr{};
        messages_[id].msg_hdr.msg_iov = &vectors_[2 * id];
        messages_[id].msg_hdr.msg_iovlen = 2;
    }
}

size_t LoopbackCamera::SendFrame(uint16_t blockId) {
    for (size_t at = 0; at < headers_.size(); at += kHeaderBytes) {
        ry::gev::store_be16(&headers_[at + 2], blockId);
    }
    size_t sent = 0;
    while (sent < messages_.size()) {
        const unsigned count = static_cast<unsigned>(std::min(kSendBatch, messages_.size() - sent));
        const int done = ::sendmmsg(fd_, &messages_[sent], count, 0);
        if (done <= 0) {
            break;  // a refused datagram is simply lost, as on a wire
        }
        sent += static_cast<size_t>(done);
    }
    return image_.size();
}

}  // namespace ry::bench
