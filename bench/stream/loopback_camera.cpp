#include "loopback_camera.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace ry::bench {

namespace {

constexpr uint32_t kLoopback = 0x7F000001;
constexpr uint32_t kMono8 = 0x01080001;
constexpr size_t kIpUdpAndGvspHeaderBytes = 36;

void PutBe32(uint8_t* at, uint32_t value) {
    at[0] = static_cast<uint8_t>(value >> 24);
    at[1] = static_cast<uint8_t>(value >> 16);
    at[2] = static_cast<uint8_t>(value >> 8);
    at[3] = static_cast<uint8_t>(value);
}

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
    leaderBody_.assign(36, 0);
    leaderBody_[3] = 1;  // image payload
    PutBe32(&leaderBody_[12], kMono8);
    PutBe32(&leaderBody_[16], shape.width);
    PutBe32(&leaderBody_[20], shape.height);
    trailerBody_.assign(8, 0);
    trailerBody_[3] = 1;
    PutBe32(&trailerBody_[4], shape.height);

    const size_t packetData = shape.packetSize - kIpUdpAndGvspHeaderBytes;
    const size_t payloadPackets = (image_.size() + packetData - 1) / packetData;
    const size_t packets = payloadPackets + 2;
    headers_.assign(packets * kHeaderBytes, 0);
    vectors_.resize(packets * 2);
    messages_.resize(packets);
    for (size_t id = 0; id < packets; ++id) {
        uint8_t* header = &headers_[id * kHeaderBytes];
        const uint8_t format = id == 0 ? 1 : (id == packets - 1 ? 2 : 3);
        PutBe32(header + 4, (uint32_t{format} << 24) | static_cast<uint32_t>(id));
        vectors_[2 * id] = {header, kHeaderBytes};
        if (format == 1) {
            vectors_[2 * id + 1] = {leaderBody_.data(), leaderBody_.size()};
        } else if (format == 2) {
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
        headers_[at + 2] = static_cast<uint8_t>(blockId >> 8);
        headers_[at + 3] = static_cast<uint8_t>(blockId);
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
