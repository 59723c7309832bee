#include "ry/gev/client/discovery.h"

#include <algorithm>
#include <chrono>

#include "ry/gev/client/control_channel.h"
#include "ry/gev/client/udp_socket.h"
#include "ry/gev/protocol/gvcp.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::gev::client {
namespace {

using Clock = std::chrono::steady_clock;
constexpr uint16_t kDiscoveryRequestId = 0xFFFF;

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

std::chrono::microseconds Left(Clock::time_point deadline) {
    return std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
}

}  // namespace

std::string DiscoveredDevice::Id() const {
    return vendor + "-" + model + "-" + (serial.empty() ? MacToText(mac.data()) : serial);
}

std::string DiscoveredDevice::DisplayName() const {
    return vendor + " " + model + " (" + Ipv4ToText(ip) + ")";
}

GC_ERROR Discover(const HostInterface& host, const DiscoveryOptions& options,
                  std::vector<DiscoveredDevice>& found) {
    found.clear();
    UdpSocket socket;
    if (!socket.Open(host.ip, 0, nullptr) || !socket.EnableBroadcast())
        return GC_ERR_SOCKET;
    const auto command = make_discovery_command(kDiscoveryRequestId, true);
    if (!socket.SendTo(options.destination, options.port, command))
        return GC_ERR_SOCKET;
    std::array<uint8_t, kGvcpMaxDatagram + 64> buffer{};
    const auto deadline = Clock::now() + std::chrono::milliseconds(options.timeoutMs);
    while (Clock::now() < deadline) {
        const auto got = socket.Receive(buffer, Left(deadline));
        if (!got)
            break;
        const ConstBytes datagram(buffer.data(), got->size);
        const auto header = decode_ack_header(datagram);
        if (!header || header->ack_id != kDiscoveryRequestId || header->status != 0 ||
            header->acknowledge != static_cast<uint16_t>(GvcpAck::Discovery))
            continue;
        const auto payload = ack_payload(datagram, *header);
        const auto info = payload ? decode_device_info(*payload) : std::nullopt;
        if (!info)
            continue;
        DiscoveredDevice device = FromDeviceInfo(*info);
        if (!options.listOutsideSubnet && !host.Contains(device.ip))
            continue;
        const bool known = std::any_of(found.begin(), found.end(), [&](const auto& other) {
            return other.mac == device.mac && other.ip == device.ip;
        });
        if (!known)
            found.push_back(std::move(device));
    }
    return GC_ERR_SUCCESS;
}

GC_ERROR ForceIp(const HostInterface& host, const std::array<uint8_t, 6>& mac, uint32_t ip,
                 uint32_t mask, uint32_t gateway, uint32_t timeoutMs) {
    UdpSocket socket;
    if (!socket.Open(host.ip, 0, nullptr) || !socket.EnableBroadcast())
        return GC_ERR_SOCKET;
    const uint16_t requestId = 1;
    const auto command = make_forceip_command(requestId, kFlagAckRequired | kFlagBroadcastAck,
                                              ForceIpRequest{mac, ip, mask, gateway});
    if (!socket.SendTo(0xFFFFFFFF, kGvcpPort, command))
        return GC_ERR_SOCKET;
    std::array<uint8_t, kGvcpMaxDatagram + 64> buffer{};
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    while (Clock::now() < deadline) {
        const auto got = socket.Receive(buffer, Left(deadline));
        if (!got)
            break;
        const auto header = decode_ack_header(ConstBytes(buffer.data(), got->size));
        if (!header || header->ack_id != requestId ||
            header->acknowledge != static_cast<uint16_t>(GvcpAck::ForceIp))
            continue;
        return is_error(header->status) ? StatusToError(header->status) : GC_ERR_SUCCESS;
    }
    return GC_ERR_TIMEOUT;
}

}  // namespace ry::gev::client
