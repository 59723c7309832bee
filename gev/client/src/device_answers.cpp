#include "ry/gev/client/device_answers.h"

#include <algorithm>

#include "ry/gev/client/control_channel.h"

namespace ry::gev::client {
namespace {

DiscoveredDevice FromDeviceInfo(const DeviceInfo& info) {
    DiscoveredDevice device;
    device.mac = info.mac;
    device.ip = info.ip;
    device.mask = info.subnet_mask;
    device.gateway = info.gateway;
    device.deviceMode = info.device_mode;
    device.vendor = info.manufacturer;
    device.model = info.model;
    device.version = info.device_version;
    device.vendorInfo = info.manufacturer_info;
    device.serial = info.serial_number;
    device.userName = info.user_defined_name;
    return device;
}

}  // namespace

AckVerdict JudgeAck(ConstBytes datagram, uint16_t requestId, uint16_t expectedAck) {
    const auto header = decode_ack_header(datagram);
    if (!header || header->ack_id != requestId)
        return {};
    const auto payload = ack_payload(datagram, *header);
    if (!payload)
        return {};
    if (header->acknowledge == static_cast<uint16_t>(GvcpAck::Pending))
        return {AckVerdict::Kind::Pending,
                decode_pending_ack(*payload).value_or(0),
                GC_ERR_SUCCESS,
                {}};
    if (header->acknowledge != expectedAck)
        return {};
    if (is_error(header->status))
        return {AckVerdict::Kind::Error, 0, StatusToError(header->status), {}};
    return {AckVerdict::Kind::Answer, 0, GC_ERR_SUCCESS, *payload};
}

GC_ERROR TakeRegisterValues(ConstBytes payload, std::span<uint32_t> values) {
    const auto read = decode_readreg_ack(payload);
    if (!read || read->size() < values.size())
        return GC_ERR_IO;
    std::copy_n(read->begin(), values.size(), values.begin());
    return GC_ERR_SUCCESS;
}

GC_ERROR TakeMemoryData(ConstBytes payload, uint32_t address, std::span<uint8_t> data) {
    const auto block = decode_readmem_ack(payload);
    if (!block || block->address != address || block->data.size() < data.size())
        return GC_ERR_IO;
    std::copy_n(block->data.begin(), data.size(), data.begin());
    return GC_ERR_SUCCESS;
}

std::optional<DiscoveredDevice> ParseDiscoveryAck(ConstBytes datagram) {
    const auto header = decode_ack_header(datagram);
    if (!header || header->ack_id != kDiscoveryRequestId || header->status != 0 ||
        header->acknowledge != static_cast<uint16_t>(GvcpAck::Discovery))
        return std::nullopt;
    const auto payload = ack_payload(datagram, *header);
    const auto info = payload ? decode_device_info(*payload) : std::nullopt;
    if (!info)
        return std::nullopt;
    return FromDeviceInfo(*info);
}

std::optional<GC_ERROR> JudgeForceIpAck(ConstBytes datagram, uint16_t requestId) {
    const auto header = decode_ack_header(datagram);
    if (!header || header->ack_id != requestId ||
        header->acknowledge != static_cast<uint16_t>(GvcpAck::ForceIp))
        return std::nullopt;
    return is_error(header->status) ? StatusToError(header->status) : GC_ERR_SUCCESS;
}

std::optional<EventMessage> ParseEventMessage(ConstBytes datagram) {
    const auto header = decode_command_header(datagram);
    if (!header)
        return std::nullopt;
    const auto payload = command_payload(datagram, *header);
    if (!payload)
        return std::nullopt;
    std::optional<std::vector<EventItem>> items;
    if (header->command == static_cast<uint16_t>(GvcpCommand::Event))
        items = decode_event_command(header->flags, *payload);
    else if (header->command == static_cast<uint16_t>(GvcpCommand::EventData))
        items = decode_eventdata_command(header->flags, *payload);
    if (!items)
        return std::nullopt;
    EventMessage message{std::move(*items), {}};
    if (header->flags & kFlagAckRequired)
        message.ack = make_ack(0, ack_code_for(header->command), header->req_id);
    return message;
}

}  // namespace ry::gev::client
