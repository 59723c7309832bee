#include "ry/gev/client/discovery.h"

#include <algorithm>
#include <chrono>

#include "ry/gev/client/device_answers.h"
#include "ry/gev/client/udp_socket.h"
#include "ry/gev/protocol/gvcp.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::gev::client {
namespace {

using Clock = std::chrono::steady_clock;

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
        auto parsed = ParseDiscoveryAck(ConstBytes(buffer.data(), got->size));
        if (!parsed)
            continue;
        DiscoveredDevice device = std::move(*parsed);
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
        if (const auto result = JudgeForceIpAck(ConstBytes(buffer.data(), got->size), requestId))
            return *result;
    }
    return GC_ERR_TIMEOUT;
}

}  // namespace ry::gev::client
