#include "ry/gev/client/host_interfaces.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "ry/gev/client/udp_socket.h"

namespace ry::gev::client {
namespace {

struct IfAddrsDeleter {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

uint32_t ReadMtu(const std::string& name) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return 1500;
    ifreq request{};
    std::strncpy(request.ifr_name, name.c_str(), IFNAMSIZ - 1);
    const int rc = ::ioctl(fd, SIOCGIFMTU, &request);
    ::close(fd);
    return rc == 0 ? static_cast<uint32_t>(request.ifr_mtu) : 1500;
}

void FillMacAddresses(const ifaddrs* list, std::vector<HostInterface>& interfaces) {
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_PACKET)
            continue;
        const auto* link = reinterpret_cast<const sockaddr_ll*>(entry->ifa_addr);
        if (link->sll_halen != 6)
            continue;
        for (HostInterface& host : interfaces)
            if (host.name == entry->ifa_name)
                std::copy(link->sll_addr, link->sll_addr + 6, host.mac.begin());
    }
}

}  // namespace

std::string HostInterface::Id() const {
    return name + "-" + Ipv4ToText(ip);
}

std::vector<HostInterface> ListHostInterfaces() {
    ifaddrs* raw = nullptr;
    if (::getifaddrs(&raw) != 0)
        return {};
    const std::unique_ptr<ifaddrs, IfAddrsDeleter> list(raw);
    std::vector<HostInterface> interfaces;
    for (const ifaddrs* entry = raw; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        if (!(entry->ifa_flags & IFF_UP))
            continue;
        HostInterface host;
        host.name = entry->ifa_name;
        host.ip = ntohl(reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr);
        if (entry->ifa_netmask)
            host.mask =
                ntohl(reinterpret_cast<const sockaddr_in*>(entry->ifa_netmask)->sin_addr.s_addr);
        host.mtu = ReadMtu(host.name);
        interfaces.push_back(std::move(host));
    }
    FillMacAddresses(raw, interfaces);
    return interfaces;
}

}  // namespace ry::gev::client
