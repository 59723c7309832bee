#include "ry/gev/protocol/gvcp_payloads.h"

#include <algorithm>
#include <cstring>

namespace ry::gev {
namespace {

constexpr std::uint16_t code(GvcpCommand c) {
    return static_cast<std::uint16_t>(c);
}
constexpr std::uint16_t code(GvcpAck a) {
    return static_cast<std::uint16_t>(a);
}

void put_text(std::uint8_t* field, std::size_t width, const std::string& text) {
    std::memcpy(field, text.data(), std::min(width, text.size()));
}

std::string get_text(const std::uint8_t* field, std::size_t width) {
    const auto* end = std::find(field, field + width, std::uint8_t{0});
    return std::string(field, end);
}

// A header-only or small fixed answer: reserved 16 bits, then a 16-bit index.
std::vector<std::uint8_t> make_index_ack(std::uint16_t status, std::uint16_t acknowledge,
                                         std::uint16_t ack_id, std::uint16_t index) {
    std::uint8_t payload[4] = {0, 0, 0, 0};
    store_be16(payload + 2, index);
    return make_ack(status, acknowledge, ack_id, payload);
}

std::optional<std::uint16_t> decode_index_ack(ConstBytes payload) {
    if (payload.size() < 4) {
        return std::nullopt;
    }
    return load_be16(payload.data() + 2);
}

}  // namespace

// ---- DISCOVERY ---------------------------------------------------------------------------

std::array<std::uint8_t, kDiscoveryAckPayloadSize> encode_device_info(const DeviceInfo& info) {
    std::array<std::uint8_t, kDiscoveryAckPayloadSize> out{};
    std::uint8_t* p = out.data();
    store_be16(p + 0x00, info.version_major);
    store_be16(p + 0x02, info.version_minor);
    store_be32(p + 0x04, info.device_mode);
    std::copy(info.mac.begin(), info.mac.end(), p + 0x0A);
    store_be32(p + 0x10, info.ip_config_supported);
    store_be32(p + 0x14, info.ip_config_current);
    store_be32(p + 0x24, info.ip);
    store_be32(p + 0x34, info.subnet_mask);
    store_be32(p + 0x44, info.gateway);
    put_text(p + 0x48, 32, info.manufacturer);
    put_text(p + 0x68, 32, info.model);
    put_text(p + 0x88, 32, info.device_version);
    put_text(p + 0xA8, 48, info.manufacturer_info);
    put_text(p + 0xD8, 16, info.serial_number);
    put_text(p + 0xE8, 16, info.user_defined_name);
    return out;
}

std::optional<DeviceInfo> decode_device_info(ConstBytes payload) {
    if (payload.size() < kDiscoveryAckPayloadSize) {
        return std::nullopt;
    }
    const std::uint8_t* p = payload.data();
    DeviceInfo info;
    info.version_major = load_be16(p + 0x00);
    info.version_minor = load_be16(p + 0x02);
    info.device_mode = load_be32(p + 0x04);
    std::copy(p + 0x0A, p + 0x10, info.mac.begin());
    info.ip_config_supported = load_be32(p + 0x10);
    info.ip_config_current = load_be32(p + 0x14);
    info.ip = load_be32(p + 0x24);
    info.subnet_mask = load_be32(p + 0x34);
    info.gateway = load_be32(p + 0x44);
    info.manufacturer = get_text(p + 0x48, 32);
    info.model = get_text(p + 0x68, 32);
    info.device_version = get_text(p + 0x88, 32);
    info.manufacturer_info = get_text(p + 0xA8, 48);
    info.serial_number = get_text(p + 0xD8, 16);
    info.user_defined_name = get_text(p + 0xE8, 16);
    return info;
}

std::vector<std::uint8_t> make_discovery_command(std::uint16_t req_id, bool allow_broadcast_ack) {
    const std::uint8_t flags = kFlagAckRequired | (allow_broadcast_ack ? kFlagBroadcastAck : 0);
    return make_command(code(GvcpCommand::Discovery), flags, req_id);
}

std::vector<std::uint8_t> make_discovery_ack(std::uint16_t ack_id, const DeviceInfo& info) {
    const auto payload = encode_device_info(info);
    return make_ack(0, code(GvcpAck::Discovery), ack_id, payload);
}

// ---- READREG / WRITEREG ------------------------------------------------------------------

std::optional<std::vector<std::uint8_t>> make_readreg_command(
    std::uint16_t req_id, const std::vector<std::uint32_t>& addresses) {
    if (addresses.empty() || addresses.size() > kMaxReadRegCount) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> payload(addresses.size() * 4);
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        store_be32(payload.data() + 4 * i, addresses[i]);
    }
    return make_command(code(GvcpCommand::ReadReg), kFlagAckRequired, req_id, payload);
}

static std::optional<std::vector<std::uint32_t>> decode_words(ConstBytes payload) {
    if (payload.size() % 4 != 0) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> words(payload.size() / 4);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = load_be32(payload.data() + 4 * i);
    }
    return words;
}

std::optional<std::vector<std::uint32_t>> decode_readreg_command(ConstBytes payload) {
    if (payload.empty() || payload.size() > kGvcpMaxPayload) {
        return std::nullopt;
    }
    return decode_words(payload);
}

std::vector<std::uint8_t> make_readreg_ack(std::uint16_t status, std::uint16_t ack_id,
                                           const std::vector<std::uint32_t>& values) {
    const std::size_t count = std::min(values.size(), kMaxReadRegCount);
    std::vector<std::uint8_t> payload(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        store_be32(payload.data() + 4 * i, values[i]);
    }
    return make_ack(status, code(GvcpAck::ReadReg), ack_id, payload);
}

std::optional<std::vector<std::uint32_t>> decode_readreg_ack(ConstBytes payload) {
    return decode_words(payload);
}

std::optional<std::vector<std::uint8_t>> make_writereg_command(
    std::uint16_t req_id, const std::vector<RegisterWrite>& writes) {
    if (writes.empty() || writes.size() > kMaxWriteRegCount) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> payload(writes.size() * 8);
    for (std::size_t i = 0; i < writes.size(); ++i) {
        store_be32(payload.data() + 8 * i, writes[i].address);
        store_be32(payload.data() + 8 * i + 4, writes[i].value);
    }
    return make_command(code(GvcpCommand::WriteReg), kFlagAckRequired, req_id, payload);
}

std::optional<std::vector<RegisterWrite>> decode_writereg_command(ConstBytes payload) {
    if (payload.empty() || payload.size() % 8 != 0 || payload.size() > kGvcpMaxPayload) {
        return std::nullopt;
    }
    std::vector<RegisterWrite> writes(payload.size() / 8);
    for (std::size_t i = 0; i < writes.size(); ++i) {
        writes[i] = {load_be32(payload.data() + 8 * i), load_be32(payload.data() + 8 * i + 4)};
    }
    return writes;
}

std::vector<std::uint8_t> make_writereg_ack(std::uint16_t status, std::uint16_t ack_id,
                                            std::uint16_t index) {
    return make_index_ack(status, code(GvcpAck::WriteReg), ack_id, index);
}

std::optional<std::uint16_t> decode_writereg_ack(ConstBytes payload) {
    return decode_index_ack(payload);
}

// ---- READMEM / WRITEMEM ------------------------------------------------------------------

std::vector<std::uint8_t> make_readmem_command(std::uint16_t req_id, ReadMemRequest request) {
    std::uint8_t payload[8] = {};
    store_be32(payload, request.address);
    store_be16(payload + 6, request.count);
    return make_command(code(GvcpCommand::ReadMem), kFlagAckRequired, req_id, payload);
}

std::optional<ReadMemRequest> decode_readmem_command(ConstBytes payload) {
    if (payload.size() != 8) {
        return std::nullopt;
    }
    return ReadMemRequest{load_be32(payload.data()), load_be16(payload.data() + 6)};
}

static std::optional<std::vector<std::uint8_t>> address_and_data(std::uint32_t address,
                                                                 ConstBytes data) {
    if (data.size() > kMaxMemoryAccess) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> payload(4 + data.size());
    store_be32(payload.data(), address);
    std::copy(data.begin(), data.end(), payload.begin() + 4);
    return payload;
}

static std::optional<MemoryBlock> decode_address_and_data(ConstBytes payload) {
    if (payload.size() < 4) {
        return std::nullopt;
    }
    return MemoryBlock{load_be32(payload.data()),
                       std::vector<std::uint8_t>(payload.begin() + 4, payload.end())};
}

std::optional<std::vector<std::uint8_t>> make_readmem_ack(std::uint16_t ack_id,
                                                          std::uint32_t address, ConstBytes data) {
    auto payload = address_and_data(address, data);
    if (!payload) {
        return std::nullopt;
    }
    return make_ack(0, code(GvcpAck::ReadMem), ack_id, *payload);
}

std::optional<MemoryBlock> decode_readmem_ack(ConstBytes payload) {
    return decode_address_and_data(payload);
}

std::optional<std::vector<std::uint8_t>> make_writemem_command(std::uint16_t req_id,
                                                               std::uint32_t address,
                                                               ConstBytes data) {
    auto payload = address_and_data(address, data);
    if (!payload) {
        return std::nullopt;
    }
    return make_command(code(GvcpCommand::WriteMem), kFlagAckRequired, req_id, *payload);
}

std::optional<MemoryBlock> decode_writemem_command(ConstBytes payload) {
    return decode_address_and_data(payload);
}

std::vector<std::uint8_t> make_writemem_ack(std::uint16_t status, std::uint16_t ack_id,
                                            std::uint16_t index) {
    return make_index_ack(status, code(GvcpAck::WriteMem), ack_id, index);
}

std::optional<std::uint16_t> decode_writemem_ack(ConstBytes payload) {
    return decode_index_ack(payload);
}

// ---- PACKETRESEND ------------------------------------------------------------------------

std::vector<std::uint8_t> make_packetresend_command(std::uint16_t req_id,
                                                    const PacketResendRequest& request) {
    std::vector<std::uint8_t> payload(request.extended_ids ? 20 : 12, 0);
    std::uint8_t* p = payload.data();
    store_be16(p, request.stream_channel);
    if (request.extended_ids) {
        store_be32(p + 4, request.first_packet_id);
        store_be32(p + 8, request.last_packet_id);
        store_be64(p + 12, request.block_id);
    } else {
        store_be16(p + 2, static_cast<std::uint16_t>(request.block_id));
        store_be32(p + 4, request.first_packet_id & 0x00FFFFFF);
        store_be32(p + 8, request.last_packet_id & 0x00FFFFFF);
    }
    const std::uint8_t flags = request.extended_ids ? kFlagExtendedIds : 0;
    return make_command(code(GvcpCommand::PacketResend), flags, req_id, payload);
}

std::optional<PacketResendRequest> decode_packetresend_command(std::uint8_t flags,
                                                               ConstBytes payload) {
    const bool extended = (flags & kFlagExtendedIds) != 0;
    if (payload.size() < (extended ? 20u : 12u)) {
        return std::nullopt;
    }
    const std::uint8_t* p = payload.data();
    PacketResendRequest request;
    request.extended_ids = extended;
    request.stream_channel = load_be16(p);
    if (extended) {
        request.first_packet_id = load_be32(p + 4);
        request.last_packet_id = load_be32(p + 8);
        request.block_id = load_be64(p + 12);
    } else {
        request.block_id = load_be16(p + 2);
        request.first_packet_id = load_be32(p + 4) & 0x00FFFFFF;
        request.last_packet_id = load_be32(p + 8) & 0x00FFFFFF;
    }
    return request;
}

// ---- FORCEIP -----------------------------------------------------------------------------

std::vector<std::uint8_t> make_forceip_command(std::uint16_t req_id, std::uint8_t flags,
                                               const ForceIpRequest& request) {
    std::vector<std::uint8_t> payload(kForceIpPayloadSize, 0);
    std::copy(request.mac.begin(), request.mac.end(), payload.begin() + 2);
    store_be32(payload.data() + 20, request.ip);
    store_be32(payload.data() + 36, request.subnet_mask);
    store_be32(payload.data() + 52, request.gateway);
    return make_command(code(GvcpCommand::ForceIp), flags, req_id, payload);
}

std::optional<ForceIpRequest> decode_forceip_command(ConstBytes payload) {
    if (payload.size() < kForceIpPayloadSize) {
        return std::nullopt;
    }
    ForceIpRequest request;
    std::copy(payload.begin() + 2, payload.begin() + 8, request.mac.begin());
    request.ip = load_be32(payload.data() + 20);
    request.subnet_mask = load_be32(payload.data() + 36);
    request.gateway = load_be32(payload.data() + 52);
    return request;
}

// ---- PENDING_ACK -------------------------------------------------------------------------

std::vector<std::uint8_t> make_pending_ack(std::uint16_t ack_id,
                                           std::uint16_t time_to_completion_ms) {
    return make_index_ack(0, code(GvcpAck::Pending), ack_id, time_to_completion_ms);
}

std::optional<std::uint16_t> decode_pending_ack(ConstBytes payload) {
    return decode_index_ack(payload);
}

// ---- EVENT / EVENTDATA -------------------------------------------------------------------

namespace {

std::size_t item_size(bool extended) {
    return extended ? kExtendedEventItemSize : kEventItemSize;
}

void encode_event_item(const EventItem& item, bool extended, std::uint8_t* p) {
    if (extended) {
        store_be16(p, static_cast<std::uint16_t>(kExtendedEventItemSize + item.data.size()));
        store_be16(p + 2, item.event_id);
        store_be16(p + 4, item.stream_channel);
        store_be16(p + 6, 0);
        store_be64(p + 8, item.block_id);
        store_be64(p + 16, item.timestamp);
    } else {
        store_be16(p, 0);
        store_be16(p + 2, item.event_id);
        store_be16(p + 4, item.stream_channel);
        store_be16(p + 6, static_cast<std::uint16_t>(item.block_id));
        store_be64(p + 8, item.timestamp);
    }
}

EventItem decode_event_item(const std::uint8_t* p, bool extended) {
    EventItem item;
    item.event_id = load_be16(p + 2);
    item.stream_channel = load_be16(p + 4);
    if (extended) {
        item.block_id = load_be64(p + 8);
        item.timestamp = load_be64(p + 16);
    } else {
        item.block_id = load_be16(p + 6);
        item.timestamp = load_be64(p + 8);
    }
    return item;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> make_event_command(std::uint16_t req_id, bool extended_ids,
                                                            const std::vector<EventItem>& items) {
    const std::size_t size = item_size(extended_ids);
    if (items.empty() || items.size() * size > kGvcpMaxPayload) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> payload(items.size() * size);
    for (std::size_t i = 0; i < items.size(); ++i) {
        EventItem bare = items[i];
        bare.data.clear();
        encode_event_item(bare, extended_ids, payload.data() + i * size);
    }
    const std::uint8_t flags = kFlagAckRequired | (extended_ids ? kFlagExtendedIds : 0);
    return make_command(code(GvcpCommand::Event), flags, req_id, payload);
}

std::optional<std::vector<EventItem>> decode_event_command(std::uint8_t flags, ConstBytes payload) {
    const bool extended = (flags & kFlagExtendedIds) != 0;
    const std::size_t size = item_size(extended);
    if (payload.empty() || payload.size() % size != 0) {
        return std::nullopt;
    }
    std::vector<EventItem> items;
    for (std::size_t off = 0; off < payload.size(); off += size) {
        items.push_back(decode_event_item(payload.data() + off, extended));
    }
    return items;
}

std::optional<std::vector<std::uint8_t>> make_eventdata_command(std::uint16_t req_id,
                                                                bool extended_ids,
                                                                const EventItem& item) {
    const std::size_t size = item_size(extended_ids);
    if (size + item.data.size() > kGvcpMaxPayload) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> payload(size + item.data.size());
    encode_event_item(item, extended_ids, payload.data());
    std::copy(item.data.begin(), item.data.end(), payload.begin() + size);
    const std::uint8_t flags = kFlagAckRequired | (extended_ids ? kFlagExtendedIds : 0);
    return make_command(code(GvcpCommand::EventData), flags, req_id, payload);
}

std::optional<std::vector<EventItem>> decode_eventdata_command(std::uint8_t flags,
                                                               ConstBytes payload) {
    const bool extended = (flags & kFlagExtendedIds) != 0;
    const std::size_t size = item_size(extended);
    std::vector<EventItem> items;
    if (!extended) {
        // One item; everything after it is its data.
        if (payload.size() < size) {
            return std::nullopt;
        }
        items.push_back(decode_event_item(payload.data(), false));
        items.back().data.assign(payload.begin() + size, payload.end());
        return items;
    }
    std::size_t off = 0;
    while (off < payload.size()) {
        if (payload.size() - off < size) {
            return std::nullopt;
        }
        const std::size_t event_size = load_be16(payload.data() + off);
        if (event_size < size || event_size > payload.size() - off) {
            return std::nullopt;
        }
        items.push_back(decode_event_item(payload.data() + off, true));
        items.back().data.assign(payload.begin() + off + size, payload.begin() + off + event_size);
        off += event_size;
    }
    if (items.empty()) {
        return std::nullopt;
    }
    return items;
}

}  // namespace ry::gev
