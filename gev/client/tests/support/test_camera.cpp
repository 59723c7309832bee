#include "test_camera.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "ry/gev/protocol/bootstrap.h"
#include "ry/gev/protocol/gvcp.h"
#include "ry/gev/protocol/gvcp_payloads.h"
#include "ry/gev/protocol/gvsp.h"

namespace ry::gev::testing {
namespace {

namespace reg = ry::gev::bootstrap;
using Clock = std::chrono::steady_clock;
constexpr uint32_t kCcpAccessBits = 0x3;

void PutText(std::vector<uint8_t>& memory, uint32_t address, const std::string& text) {
    std::copy(text.begin(), text.end(), memory.begin() + address);
}

}  // namespace

TestCamera::TestCamera(TestCameraOptions options)
    : options_(std::move(options)), memory_(kMemorySize, 0) {
    const auto& mac = options_.mac;
    SetRegister(reg::kVersion, 0x00020000);
    SetRegister(reg::kDeviceMode, 0x80000001);
    SetRegister(reg::kMacHigh, (uint32_t{mac[0]} << 8) | mac[1]);
    SetRegister(reg::kMacLow, (uint32_t{mac[2]} << 24) | (uint32_t{mac[3]} << 16) |
                                  (uint32_t{mac[4]} << 8) | mac[5]);
    SetRegister(reg::kCurrentIp, options_.ip);
    SetRegister(reg::kCurrentSubnetMask, 0xFF000000);
    PutText(memory_, reg::kManufacturerName, "RyTest");
    PutText(memory_, reg::kModelName, options_.model);
    PutText(memory_, reg::kDeviceVersion, "1.0");
    PutText(memory_, reg::kSerialNumber, options_.serial);
    PutText(memory_, reg::kFirstUrl, "Local:test.xml;10000;40");
    PutText(memory_, kXmlAddress, "<RegisterDescription ModelName=\"Test\"/>");
    SetRegister(reg::kMessageChannelCount, 1);
    SetRegister(reg::kStreamChannelCount, 1);
    SetRegister(reg::kGvcpCapability, reg::kCapWriteMem | reg::kCapPacketResend | reg::kCapEvent |
                                          reg::kCapPendingAck | reg::kCapConcatenation);
    SetRegister(reg::kHeartbeatTimeout, options_.heartbeatTimeoutMs);
    SetRegister(reg::kTimestampFrequencyLow, 1000000000);
    SetRegister(reg::kStreamChannelPacketSize, 1500);
    if (!control_.Open(options_.ip, options_.port, nullptr, options_.answerBroadcast))
        throw std::runtime_error("cannot bind the test camera");
    // Broadcasts reach only sockets bound to the broadcast or wildcard address; several
    // cameras share that one with address reuse.
    if (options_.answerBroadcast)
        broadcast_.Open(0xFFFFFFFF, Port(), nullptr, true);
    stream_.Open(options_.ip, 0, nullptr);
    stream_.SetMulticastInterface(options_.ip);  // loopback has no multicast route
    thread_ = std::jthread([this](std::stop_token stop) { Serve(stop); });
}

TestCamera::~TestCamera() {
    thread_.request_stop();
    thread_.join();
}

uint32_t TestCamera::Register(uint32_t address) const {
    std::lock_guard lock(mutex_);
    return load_be32(memory_.data() + address);
}

void TestCamera::SetRegister(uint32_t address, uint32_t value) {
    std::lock_guard lock(mutex_);
    store_be32(memory_.data() + address, value);
}

void TestCamera::WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes) {
    std::lock_guard lock(mutex_);
    std::copy(bytes.begin(), bytes.end(), memory_.begin() + address);
}

std::vector<uint8_t> TestCamera::ReadBytes(uint32_t address, size_t size) const {
    std::lock_guard lock(mutex_);
    return {memory_.begin() + address, memory_.begin() + address + size};
}

void TestCamera::Serve(std::stop_token stop) {
    std::vector<uint8_t> buffer(2048);
    while (!stop.stop_requested()) {
        for (const client::UdpSocket* socket : {&control_, &broadcast_}) {
            if (!socket->IsOpen())
                continue;
            const auto got = socket->Receive(buffer, std::chrono::milliseconds(5));
            if (got && !unplugged_)
                Handle(buffer.data(), got->size, *got, *socket);
        }
    }
}

std::vector<uint8_t> TestCamera::DiscoveryAck(uint16_t id) const {
    std::lock_guard lock(mutex_);
    const auto info = decode_device_info(ConstBytes(memory_.data(), kDiscoveryAckPayloadSize));
    return make_discovery_ack(id, *info);
}

void TestCamera::ExpireHeartbeat() {
    const auto timeout = std::chrono::milliseconds(load_be32(&memory_[reg::kHeartbeatTimeout]));
    if (primaryPort_ != 0 && Clock::now() - lastPrimaryCommand_ > timeout) {
        primaryIp_ = 0;
        primaryPort_ = 0;
        store_be32(&memory_[reg::kControlChannelPrivilege], 0);
    }
}

bool TestCamera::MayWrite(const client::Datagram& from) {
    return primaryPort_ == 0 || (from.sourceIp == primaryIp_ && from.sourcePort == primaryPort_);
}

void TestCamera::Handle(const uint8_t* data, size_t size, const client::Datagram& from,
                        const client::UdpSocket& via) {
    const ConstBytes datagram(data, size);
    const auto header = decode_command_header(datagram);
    if (!header)
        return;
    const auto payload = command_payload(datagram, *header);
    if (!payload)
        return;
    ++commandsSeen_;
    if (dropCommands_ > 0) {
        --dropCommands_;
        return;
    }
    if (header->command == static_cast<uint16_t>(GvcpCommand::Discovery)) {
        via.SendTo(from.sourceIp, from.sourcePort, DiscoveryAck(header->req_id));
        return;
    }
    if (header->command == static_cast<uint16_t>(GvcpCommand::PacketResend)) {
        ++resendRequests_;
        if (options_.supportsResend)
            Resend(*payload, header->flags);
        return;
    }
    if (&via != &control_)
        return;
    bool silent = false;
    const auto ack =
        Answer(header->flags, header->command, header->req_id, *payload, from, via, silent);
    if (!silent && (header->flags & kFlagAckRequired))
        via.SendTo(from.sourceIp, from.sourcePort, ack);
}

std::vector<uint8_t> TestCamera::Answer(uint8_t, uint16_t command, uint16_t id,
                                        std::span<const uint8_t> payload,
                                        const client::Datagram& from, const client::UdpSocket& via,
                                        bool& silent) {
    const auto error = [&](GevStatus status) {
        return make_ack(static_cast<uint16_t>(status), ack_code_for(command), id);
    };
    std::lock_guard lock(mutex_);
    ExpireHeartbeat();
    const bool fromPrimary =
        primaryPort_ != 0 && from.sourceIp == primaryIp_ && from.sourcePort == primaryPort_;
    if (fromPrimary)
        lastPrimaryCommand_ = Clock::now();
    const auto refuse = [&] {
        silent = options_.silentlyDropRefusedWrites;
        return error(GevStatus::AccessDenied);
    };
    switch (static_cast<GvcpCommand>(command)) {
        case GvcpCommand::ReadReg: {
            const auto addresses = decode_readreg_command(payload);
            if (!addresses)
                return error(GevStatus::InvalidHeader);
            std::vector<uint32_t> values;
            for (uint32_t address : *addresses) {
                if (address % 4 || address + 4 > kMemorySize)
                    return error(GevStatus::InvalidAddress);
                values.push_back(load_be32(&memory_[address]));
            }
            ++readRegs_;
            return make_readreg_ack(0, id, values);
        }
        case GvcpCommand::WriteReg: {
            const auto writes = decode_writereg_command(payload);
            if (!writes)
                return error(GevStatus::InvalidHeader);
            uint16_t index = 0;
            for (const auto& write : *writes) {
                if (write.address % 4 || write.address + 4 > kMemorySize)
                    return make_writereg_ack(static_cast<uint16_t>(GevStatus::InvalidAddress), id,
                                             index);
                if (!MayWrite(from))
                    return refuse();
                if (write.address == reg::kControlChannelPrivilege) {
                    const bool take = (write.value & kCcpAccessBits) != 0;
                    primaryIp_ = take ? from.sourceIp : 0;
                    primaryPort_ = take ? from.sourcePort : 0;
                    lastPrimaryCommand_ = Clock::now();
                }
                if (write.address == kSlowRegister && options_.pendingAckMs > 0) {
                    via.SendTo(from.sourceIp, from.sourcePort,
                               make_pending_ack(id, options_.pendingAckMs));
                    std::this_thread::sleep_for(
                        std::chrono::milliseconds(options_.pendingAckMs / 2));
                }
                store_be32(&memory_[write.address], write.value);
                ++index;
            }
            return make_writereg_ack(0, id, index);
        }
        case GvcpCommand::ReadMem: {
            const auto request = decode_readmem_command(payload);
            if (!request)
                return error(GevStatus::InvalidHeader);
            if (request->address % 4 || request->count % 4 || request->count > kMaxMemoryAccess)
                return error(GevStatus::BadAlignment);
            if (request->address + request->count > kMemorySize)
                return error(GevStatus::InvalidAddress);
            return *make_readmem_ack(id, request->address,
                                     ConstBytes(&memory_[request->address], request->count));
        }
        case GvcpCommand::WriteMem: {
            const auto block = decode_writemem_command(payload);
            if (!block)
                return error(GevStatus::InvalidHeader);
            if (block->address % 4 || block->data.size() % 4 ||
                block->data.size() > kMaxMemoryAccess)
                return error(GevStatus::BadAlignment);
            if (block->address + block->data.size() > kMemorySize)
                return error(GevStatus::InvalidAddress);
            if (!MayWrite(from))
                return refuse();
            std::copy(block->data.begin(), block->data.end(), memory_.begin() + block->address);
            return make_writemem_ack(0, id, static_cast<uint16_t>(block->data.size()));
        }
        default:
            return error(GevStatus::NotImplemented);
    }
}

uint64_t TestCamera::SendFrame(uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels,
                               const std::set<uint32_t>& skip) {
    uint32_t destination = 0, port = 0, packetSize = 0;
    {
        std::lock_guard lock(mutex_);
        destination = load_be32(&memory_[reg::kStreamChannelDestination]);
        port = load_be32(&memory_[reg::kStreamChannelPort]) & 0xFFFF;
        packetSize = load_be32(&memory_[reg::kStreamChannelPacketSize]) & 0xFFFF;
        blockId_ = next_block_id16(blockId_);
    }
    const uint16_t block = blockId_;
    const size_t perPacket = gvsp_payload_per_packet(packetSize, false);
    const uint32_t payloadPackets = gvsp_payload_packet_count(pixels.size(), perPacket);
    std::vector<std::vector<uint8_t>> packets;
    const auto packet = [&](GvspFormat format, uint32_t packetId) {
        std::vector<uint8_t> bytes(kGvspHeaderSize);
        GvspHeader header;
        header.block_id = block;
        header.packet_id = packetId;
        header.format = format;
        encode_gvsp_header(header, bytes);
        return bytes;
    };
    auto leader = packet(GvspFormat::Leader, 0);
    leader.resize(kGvspHeaderSize + kImageLeaderSize);
    ImageLeader image;
    image.pixel_format = 0x01080001;
    image.size_x = width;
    image.size_y = height;
    image.timestamp = 1000 + block;
    encode_image_leader(image, MutableBytes(leader).subspan(kGvspHeaderSize));
    packets.push_back(std::move(leader));
    for (uint32_t i = 0; i < payloadPackets; ++i) {
        auto bytes = packet(GvspFormat::Payload, i + 1);
        const size_t offset = i * perPacket;
        const size_t count = std::min(perPacket, pixels.size() - offset);
        bytes.insert(bytes.end(), pixels.begin() + offset, pixels.begin() + offset + count);
        packets.push_back(std::move(bytes));
    }
    auto trailer = packet(GvspFormat::Trailer, payloadPackets + 1);
    trailer.resize(kGvspHeaderSize + kImageTrailerSize);
    encode_image_trailer(ImageTrailer{static_cast<uint16_t>(GvspPayloadType::Image), height},
                         MutableBytes(trailer).subspan(kGvspHeaderSize));
    packets.push_back(std::move(trailer));
    for (uint32_t id = 0; id < packets.size(); ++id) {
        if (!skip.count(id))
            stream_.SendTo(destination, static_cast<uint16_t>(port), packets[id]);
        std::lock_guard lock(mutex_);
        sentPackets_[{block, id}] = packets[id];
    }
    return block;
}

void TestCamera::Resend(std::span<const uint8_t> payload, uint8_t flags) {
    const auto request = decode_packetresend_command(flags, payload);
    if (!request)
        return;
    uint32_t destination = 0, port = 0;
    std::vector<std::vector<uint8_t>> packets;
    {
        std::lock_guard lock(mutex_);
        destination = load_be32(&memory_[reg::kStreamChannelDestination]);
        port = load_be32(&memory_[reg::kStreamChannelPort]) & 0xFFFF;
        for (uint32_t id = request->first_packet_id; id <= request->last_packet_id; ++id) {
            const auto found = sentPackets_.find({static_cast<uint16_t>(request->block_id), id});
            if (found != sentPackets_.end())
                packets.push_back(found->second);
        }
    }
    for (const auto& bytes : packets)
        stream_.SendTo(destination, static_cast<uint16_t>(port), bytes);
}

bool TestCamera::SendEvent(uint16_t eventId, uint64_t timestamp) {
    uint32_t destination = 0, port = 0;
    {
        std::lock_guard lock(mutex_);
        destination = load_be32(&memory_[reg::kMessageChannelDestination]);
        port = load_be32(&memory_[reg::kMessageChannelPort]) & 0xFFFF;
    }
    if (port == 0)
        return false;
    EventItem item;
    item.event_id = eventId;
    item.timestamp = timestamp;
    const auto command = make_event_command(eventRequestId_++, false, {item});
    return command && stream_.SendTo(destination, static_cast<uint16_t>(port), *command);
}

}  // namespace ry::gev::testing
