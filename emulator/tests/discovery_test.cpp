// Broadcast discovery runs in a private network namespace (only lo), created per test in a
// child process, so that nothing leaves the machine's own network.
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <memory>
#include <set>

#include "test_client.h"

namespace ry::emulator::testing {
namespace {

constexpr int kNoNamespace = 77;

bool bring_loopback_up() {
    const int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    bool ok = ::ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags |= IFF_UP;
    ok = ok && ::ioctl(fd, SIOCSIFFLAGS, &request) == 0;
    ::close(fd);
    return ok;
}

// Runs `body` in a child inside a new network namespace; returns its exit code.
int in_private_network(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWNET) != 0 || !bring_loopback_up()) {
            ::_exit(kNoNamespace);
        }
        int code = 1;
        try {
            code = body();
        } catch (...) {
            code = 2;
        }
        ::_exit(code);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 3;
}

// Broadcasts DISCOVERY from 127.0.0.1 and returns the serial numbers that answered.
std::set<std::string> discover_serials(std::set<std::uint32_t>& ips) {
    UdpSocket socket(Endpoint{*parse_ipv4("127.0.0.1"), 0}, false);
    socket.send_to({0xFFFFFFFF, 3956}, gev::make_discovery_command(0xFFFF, true));
    std::set<std::string> serials;
    std::vector<std::uint8_t> buffer(600);
    Endpoint from;
    while (const std::size_t n = socket.receive(buffer, from, 500)) {
        const auto header = gev::decode_ack_header({buffer.data(), n});
        if (!header || header->acknowledge != 0x0003 || header->ack_id != 0xFFFF) {
            continue;
        }
        const auto info = gev::decode_device_info(*gev::ack_payload({buffer.data(), n}, *header));
        if (info) {
            serials.insert(info->serial_number);
            ips.insert(info->ip);
        }
    }
    return serials;
}

TEST(Discovery, SeveralCamerasOnLoopbackAnswerOneBroadcast) {
    const int code = in_private_network([] {
        std::vector<std::unique_ptr<Camera>> cameras;
        for (int i = 0; i < 3; ++i) {
            CameraConfig config;
            config.address = "127.0.0." + std::to_string(2 + i);
            config.serial = "NS" + std::to_string(i);
            cameras.push_back(std::make_unique<Camera>(config));
        }
        std::set<std::uint32_t> ips;
        const auto serials = discover_serials(ips);
        const bool all = serials == std::set<std::string>{"NS0", "NS1", "NS2"};
        const bool addresses = ips == std::set<std::uint32_t>{0x7F000002, 0x7F000003, 0x7F000004};
        // Unicast discovery reaches exactly one of them.
        TestClient client("127.0.0.3", 3956);
        const auto ack = client.transact(gev::make_discovery_command(5, false), 5);
        const bool unicast = ack && gev::decode_device_info(ack->payload)->serial_number == "NS1";
        return all && addresses && unicast ? 0 : 1;
    });
    if (code == kNoNamespace) {
        GTEST_SKIP() << "cannot create a private network namespace (needs CAP_SYS_ADMIN)";
    }
    EXPECT_EQ(code, 0);
}

TEST(Discovery, WildcardBoundCameraAloneInItsNamespace) {
    const int code = in_private_network([] {
        CameraConfig config;
        config.address = "127.0.0.1";
        config.bind_any = true;
        config.serial = "ALONE";
        Camera camera(config);
        std::set<std::uint32_t> ips;
        return discover_serials(ips) == std::set<std::string>{"ALONE"} ? 0 : 1;
    });
    if (code == kNoNamespace) {
        GTEST_SKIP() << "cannot create a private network namespace (needs CAP_SYS_ADMIN)";
    }
    EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace ry::emulator::testing
