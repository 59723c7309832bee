// Broadcast discovery on one host interface, and FORCEIP.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "RyGenTLErrors.h"
#include "ry/gev/client/host_interfaces.h"

namespace ry::gev::client {

struct DiscoveredDevice {
    std::array<uint8_t, 6> mac{};
    uint32_t ip = 0;  // the address the device reports, not the datagram's source
    uint32_t mask = 0;
    uint32_t gateway = 0;
    uint32_t deviceMode = 0;
    std::string vendor;
    std::string model;
    std::string version;
    std::string vendorInfo;
    std::string serial;
    std::string userName;

    // "<vendor>-<model>-<serial or MAC text>": stable across address changes.
    std::string Id() const;
    std::string DisplayName() const;
};

struct DiscoveryOptions {
    uint32_t timeoutMs = 100;
    bool listOutsideSubnet = false;  // keep devices whose address is not in the host's subnet
    uint16_t port = 3956;            // tests point this at peers on other ports
    uint32_t destination = 0xFFFFFFFF;
};

// Sends DISCOVERY from the interface's address and collects answers until the time-out,
// one entry per MAC. Returns GC_ERR_SOCKET (with nothing found) when the socket fails.
GC_ERROR Discover(const HostInterface& host, const DiscoveryOptions& options,
                  std::vector<DiscoveredDevice>& found);

// Broadcasts FORCEIP for `mac` and waits for its acknowledge.
GC_ERROR ForceIp(const HostInterface& host, const std::array<uint8_t, 6>& mac, uint32_t ip,
                 uint32_t mask, uint32_t gateway, uint32_t timeoutMs);

}  // namespace ry::gev::client
