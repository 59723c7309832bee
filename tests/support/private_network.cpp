#include "private_network.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace rytest {

bool InPrivateNetwork() {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return false;
    bool onlyLoopback = true;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        if ((entry->ifa_flags & IFF_LOOPBACK) == 0)
            onlyLoopback = false;
    }
    ::freeifaddrs(list);
    return onlyLoopback;
}

}  // namespace rytest
