#include "gvsp_test_sender.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/udp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <stdexcept>

#include "ry/gev/protocol/gvsp.h"

namespace ry::gev::stream::testing {

namespace {

// Packets are built with the protocol library's encoders, the same the emulator uses; the
// engine decodes with its own reader, so a disagreement between the two shows up here.
std::vector<uint8_t> Header(const BlockSpec& spec, ry::gev::GvspFormat format, uint32_t packetId,
                            size_t dataBytes) {
    ry::gev::GvspHeader header;
    header.block_id = spec.blockId;
    header.packet_id = packetId;
    header.format = format;
    header.extended_ids = spec.extendedIds;
    std::vector<uint8_t> packet(ry::gev::gvsp_header_size(spec.extendedIds) + dataBytes, 0);
    ry::gev::encode_gvsp_header(header, packet);
    return packet;
}

std::vector<uint8_t> Leader(const BlockSpec& spec) {
    std::vector<uint8_t> packet =
        Header(spec, ry::gev::GvspFormat::Leader, 0, ry::gev::kImageLeaderSize);
    ry::gev::ImageLeader leader;
    leader.timestamp = 0x0102030405060708ull + spec.blockId;
    leader.pixel_format = spec.leaderDeclaresSize ? kMono8 : 0;
    leader.size_x = spec.width;
    leader.size_y = spec.height;
    const size_t at = ry::gev::gvsp_header_size(spec.extendedIds);
    ry::gev::encode_image_leader(leader, std::span(packet).subspan(at));
    return packet;
}

std::vector<uint8_t> Trailer(const BlockSpec& spec, uint32_t packetId) {
    std::vector<uint8_t> packet =
        Header(spec, ry::gev::GvspFormat::Trailer, packetId, ry::gev::kImageTrailerSize);
    ry::gev::ImageTrailer trailer;
    trailer.size_y = spec.height;
    const size_t at = ry::gev::gvsp_header_size(spec.extendedIds);
    ry::gev::encode_image_trailer(trailer, std::span(packet).subspan(at));
    return packet;
}

}  // namespace

Block BuildBlock(const BlockSpec& spec) {
    Block block;
    block.spec = spec;
    block.payload.resize(size_t{spec.width} * spec.height);
    for (size_t i = 0; i < block.payload.size(); ++i) {
        block.payload[i] = static_cast<uint8_t>(i * 7 + i / 251 + spec.seed);
    }
    block.packets.push_back(Leader(spec));
    const size_t headerBytes = ry::gev::gvsp_header_size(spec.extendedIds);
    uint32_t packetId = 1;
    for (size_t offset = 0; offset < block.payload.size(); offset += spec.packetDataBytes) {
        const size_t bytes = std::min<size_t>(spec.packetDataBytes, block.payload.size() - offset);
        std::vector<uint8_t> packet = Header(spec, ry::gev::GvspFormat::Payload, packetId++, bytes);
        std::copy_n(block.payload.begin() + static_cast<ptrdiff_t>(offset), bytes,
                    packet.begin() + static_cast<ptrdiff_t>(headerBytes));
        block.packets.push_back(std::move(packet));
    }
    block.packets.push_back(Trailer(spec, packetId));
    return block;
}

std::vector<uint8_t> BuildErrorPacket(const BlockSpec& spec, uint32_t packetId, uint16_t status) {
    std::vector<uint8_t> packet = Header(spec, ry::gev::GvspFormat::Payload, packetId, 0);
    ry::gev::store_be16(packet.data(), status);
    return packet;
}

UdpSender::UdpSender(uint32_t sourceIp, uint16_t destinationPort, uint32_t destinationIp)
    : fd_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)),
      destinationPort_(destinationPort),
      destinationIp_(destinationIp) {
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(sourceIp);
    if (fd_ < 0 || ::bind(fd_, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) {
        throw std::runtime_error("cannot bind the test sender");
    }
}

UdpSender::~UdpSender() {
    ::close(fd_);
}

void UdpSender::Send(const std::vector<uint8_t>& datagram) const {
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(destinationIp_);
    to.sin_port = htons(destinationPort_);
    ::sendto(fd_, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
}

bool UdpSender::SendTrain(const std::vector<std::vector<uint8_t>>& datagrams) const {
    std::vector<uint8_t> train;
    for (const auto& datagram : datagrams) {
        train.insert(train.end(), datagram.begin(), datagram.end());
    }
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(destinationIp_);
    to.sin_port = htons(destinationPort_);
    iovec vector{train.data(), train.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(uint16_t))] = {};
    msghdr message{};
    message.msg_name = &to;
    message.msg_namelen = sizeof to;
    message.msg_iov = &vector;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_UDP;
    header->cmsg_type = UDP_SEGMENT;
    header->cmsg_len = CMSG_LEN(sizeof(uint16_t));
    const auto segment = static_cast<uint16_t>(datagrams.front().size());
    std::memcpy(CMSG_DATA(header), &segment, sizeof segment);
    return ::sendmsg(fd_, &message, 0) == static_cast<ssize_t>(train.size());
}

void UdpSender::SendAll(const Block& block) const {
    SendRange(block, 0, block.TrailerId());
}

void UdpSender::SendRange(const Block& block, uint32_t first, uint32_t last) const {
    for (uint32_t id = first; id <= last && id < block.packets.size(); ++id) {
        Send(block.packets[id]);
    }
}

FrameCollector::FrameCollector(size_t bufferCount, size_t bufferBytes) {
    storage_.reserve(bufferCount);
    for (size_t i = 0; i < bufferCount; ++i) {
        storage_.emplace_back(bufferBytes + kGuardBytes, kFill);
        free_.push_back(LentBuffer{storage_.back().data(), bufferBytes, &storage_.back()});
    }
}

ReceiverCallbacks FrameCollector::Callbacks() {
    ReceiverCallbacks callbacks;
    callbacks.takeBuffer = [this](LentBuffer& buffer) { return Take(buffer); };
    callbacks.deliver = [this](const ReceivedFrame& frame) { Deliver(frame); };
    callbacks.requestResend = [this](uint64_t blockId, uint32_t first, uint32_t last) {
        OnResend(blockId, first, last);
    };
    return callbacks;
}

void FrameCollector::ServeResendsFrom(const UdpSender* sender, const std::vector<Block>* blocks) {
    std::lock_guard lock(mutex_);
    resendSender_ = sender;
    resendBlocks_ = blocks;
}

bool FrameCollector::Take(LentBuffer& buffer) {
    std::lock_guard lock(mutex_);
    if (free_.empty()) {
        return false;
    }
    buffer = free_.front();
    free_.pop_front();
    return true;
}

void FrameCollector::Deliver(const ReceivedFrame& frame) {
    std::lock_guard lock(mutex_);
    frames_.push_back(frame);
    delivered_.notify_all();
}

void FrameCollector::OnResend(uint64_t blockId, uint32_t first, uint32_t last) {
    std::lock_guard lock(mutex_);
    requests_.push_back({blockId, first, last});
    if (resendSender_ == nullptr) {
        return;
    }
    for (const Block& block : *resendBlocks_) {
        if (block.spec.blockId == blockId) {
            resendSender_->SendRange(block, first, last);
        }
    }
}

bool FrameCollector::WaitForFrames(size_t count, int timeoutMs) {
    std::unique_lock lock(mutex_);
    return delivered_.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                               [&] { return frames_.size() >= count; });
}

std::vector<ReceivedFrame> FrameCollector::Frames() {
    std::lock_guard lock(mutex_);
    return frames_;
}

std::vector<uint8_t> FrameCollector::Bytes(const ReceivedFrame& frame) const {
    return std::vector<uint8_t>(frame.buffer.data, frame.buffer.data + frame.bytesFilled);
}

bool FrameCollector::GuardsIntact() {
    std::lock_guard lock(mutex_);
    for (const std::vector<uint8_t>& storage : storage_) {
        const auto guard = storage.end() - static_cast<ptrdiff_t>(kGuardBytes);
        if (std::any_of(guard, storage.end(), [](uint8_t b) { return b != kFill; })) {
            return false;
        }
    }
    return true;
}

size_t FrameCollector::FreeBuffers() {
    std::lock_guard lock(mutex_);
    return free_.size();
}

void FrameCollector::Give(const LentBuffer& buffer) {
    std::lock_guard lock(mutex_);
    free_.push_back(buffer);
}

std::vector<FrameCollector::ResendRequest> FrameCollector::Requests() {
    std::lock_guard lock(mutex_);
    return requests_;
}

namespace {
ReceivePath pathUnderTest = ReceivePath::Socket;
}  // namespace

void SetPathUnderTest(ReceivePath path) {
    pathUnderTest = path;
}

ReceivePath PathUnderTest() {
    return pathUnderTest;
}

ReceiverEndpoint LoopbackEndpoint() {
    ReceiverEndpoint endpoint;
    endpoint.deviceIp = kDeviceIp;
    endpoint.localIp = kDeviceIp;
    endpoint.socketBufferBytes = 4u << 20;
    endpoint.receivePath = pathUnderTest;
    return endpoint;
}

std::string PathName(const ::testing::TestParamInfo<ReceivePath>& info) {
    return info.param == ReceivePath::PacketRing ? "PacketRing" : "Socket";
}

Harness::Harness(ReceiverSettings settings, size_t buffers, size_t bufferBytes)
    : collector(buffers, bufferBytes) {
    const ReceiverEndpoint endpoint = LoopbackEndpoint();
    std::string error;
    receiver = FrameReceiver::Create(endpoint, settings, collector.Callbacks(), &error);
    if (!receiver || receiver->PathInUse() != endpoint.receivePath) {
        throw std::runtime_error("cannot create the receiver: " + error);
    }
    device = std::make_unique<UdpSender>(kDeviceIp, receiver->LocalPort());
    if (!receiver->Start()) {
        throw std::runtime_error("cannot start the receiver");
    }
}

Harness::~Harness() {
    receiver->Stop(true, nullptr);
}

}  // namespace ry::gev::stream::testing
