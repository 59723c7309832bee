// Discovery broadcasts on every interface it sees, so tests that discover refuse to run
// unless the only interface with an IPv4 address is loopback (a private namespace).
#pragma once

namespace rytest {

bool InPrivateNetwork();

inline constexpr const char* kPrivateNetworkAdvice =
    "discovery tests run only in a private network namespace: "
    "bash scripts/in-private-net.sh ctest --test-dir build";

}  // namespace rytest
