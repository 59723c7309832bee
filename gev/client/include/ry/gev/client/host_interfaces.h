// The host's IPv4 interfaces that are up, loopback included, as the system module lists them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ry::gev::client {

struct HostInterface {
    std::string name;  // kernel name, e.g. "lo", "eth0"
    uint32_t ip = 0;   // host byte order
    uint32_t mask = 0;
    std::array<uint8_t, 6> mac{};
    uint32_t mtu = 1500;

    bool Contains(uint32_t address) const { return (address & mask) == (ip & mask); }
    // "<name>-<dotted address>": unique per address even when a link carries several.
    std::string Id() const;
};

std::vector<HostInterface> ListHostInterfaces();

}  // namespace ry::gev::client
