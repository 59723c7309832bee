#include "packet_ring.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/filter.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "ry/gev/protocol/byte_order.h"

namespace ry::gev::stream::detail {

namespace {

// A slot holds the kernel's header (80 bytes with the link-layer address for a datagram
// socket) and an IP datagram of up to 9216 bytes, the largest jumbo frame in use. The ring
// holds 1792 to 7168 of them (16 to 64 MiB, from the endpoint's buffer size).
constexpr size_t kSlotBytes = 9296;
constexpr size_t kBlockBytes = 256 * 1024;
constexpr size_t kSlotsPerBlock = kBlockBytes / kSlotBytes;
constexpr size_t kMinRingBytes = 16u << 20;
constexpr size_t kMaxRingBytes = 64u << 20;
constexpr size_t kIpProtocolOffset = 9;
constexpr size_t kIpFragmentOffset = 6;
constexpr size_t kIpDestinationOffset = 16;
constexpr uint32_t kIpFragmentBits = 0x3FFF;  // more-fragments flag and fragment offset
constexpr size_t kUdpHeaderBytes = 8;

std::string SystemError(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
}

void Fail(std::string* errorText, const char* what) {
    if (errorText != nullptr) {
        *errorText = SystemError(what);
    }
}

sock_filter Statement(uint16_t code, uint32_t k) {
    return sock_filter{code, 0, 0, k};
}

sock_filter Jump(uint16_t code, uint32_t k, uint8_t whenTrue, uint8_t whenFalse) {
    return sock_filter{code, whenTrue, whenFalse, k};
}

// Jumps aimed at `kAccept`/`kDrop` are resolved to the two returns appended at the end.
constexpr uint8_t kAccept = 0xFE;
constexpr uint8_t kDrop = 0xFF;

bool Attach(int fd, std::vector<sock_filter> program, uint32_t acceptBytes) {
    const size_t accept = program.size();
    program.push_back(Statement(BPF_RET | BPF_K, acceptBytes));
    program.push_back(Statement(BPF_RET | BPF_K, 0));
    for (size_t i = 0; i < accept; ++i) {
        for (uint8_t* target : {&program[i].jt, &program[i].jf}) {
            if (*target == kAccept || *target == kDrop) {
                const size_t to = *target == kAccept ? accept : accept + 1;
                *target = static_cast<uint8_t>(to - i - 1);
            }
        }
    }
    sock_fprog fprog{static_cast<unsigned short>(program.size()), program.data()};
    return ::setsockopt(fd, SOL_SOCKET, SO_ATTACH_FILTER, &fprog, sizeof fprog) == 0;
}

// For a datagram packet socket offset 0 is the IP header. Takes unfragmented UDP datagrams to
// the port (and address); never the loopback's outgoing copy of a packet.
bool AttachRingFilter(int fd, uint32_t localIp, uint16_t port) {
    std::vector<sock_filter> program{
        Statement(BPF_LD | BPF_W | BPF_ABS, SKF_AD_OFF + SKF_AD_PKTTYPE),
        Jump(BPF_JMP | BPF_JEQ | BPF_K, PACKET_OUTGOING, kDrop, 0),
        Statement(BPF_LD | BPF_B | BPF_ABS, kIpProtocolOffset),
        Jump(BPF_JMP | BPF_JEQ | BPF_K, IPPROTO_UDP, 0, kDrop),
        Statement(BPF_LD | BPF_H | BPF_ABS, kIpFragmentOffset),
        Jump(BPF_JMP | BPF_JSET | BPF_K, kIpFragmentBits, kDrop, 0),
    };
    if (localIp != 0) {
        program.push_back(Statement(BPF_LD | BPF_W | BPF_ABS, kIpDestinationOffset));
        program.push_back(Jump(BPF_JMP | BPF_JEQ | BPF_K, localIp, 0, kDrop));
    }
    program.push_back(Statement(BPF_LDX | BPF_B | BPF_MSH, 0));  // X = IP header length
    program.push_back(Statement(BPF_LD | BPF_H | BPF_IND, 2));   // UDP destination port
    program.push_back(Jump(BPF_JMP | BPF_JEQ | BPF_K, port, kAccept, kDrop));
    return Attach(fd, std::move(program), 0x40000);
}

// The interface holding `ip` (host byte order); 0 when none does.
unsigned InterfaceOf(uint32_t ip) {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) {
        return 0;
    }
    unsigned index = 0;
    for (const ifaddrs* entry = list; entry != nullptr && index == 0; entry = entry->ifa_next) {
        if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET &&
            reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr == htonl(ip)) {
            index = ::if_nametoindex(entry->ifa_name);
        }
    }
    ::freeifaddrs(list);
    return index;
}

}  // namespace

PacketRing::~PacketRing() {
    if (map_ != nullptr) {
        ::munmap(map_, mapBytes_);
    }
}

PacketRing::PacketRing(PacketRing&& other) noexcept {
    *this = std::move(other);
}

PacketRing& PacketRing::operator=(PacketRing&& other) noexcept {
    if (this != &other) {
        if (map_ != nullptr) {
            ::munmap(map_, mapBytes_);
        }
        fd_ = std::move(other.fd_);
        map_ = std::exchange(other.map_, nullptr);
        mapBytes_ = std::exchange(other.mapBytes_, 0);
        slots_ = std::exchange(other.slots_, 0);
        next_ = std::exchange(other.next_, 0);
    }
    return *this;
}

PacketRing PacketRing::Open(uint32_t localIp, uint16_t port, size_t ringBytes,
                            std::string* errorText) {
    PacketRing ring;
    // Protocol 0: nothing arrives before the filter and the ring are in place and bind names
    // the protocol.
    UniqueFd fd(::socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!fd.Valid()) {
        Fail(errorText, "cannot open the packet socket");
        return ring;
    }
    const int version = TPACKET_V2;
    const int one = 1;
    if (::setsockopt(fd.Get(), SOL_PACKET, PACKET_VERSION, &version, sizeof version) != 0 ||
        !AttachRingFilter(fd.Get(), localIp, port)) {
        Fail(errorText, "cannot set up the packet socket");
        return ring;
    }
    // The filter drops the loopback's outgoing copies too; this spares the kernel the work.
    ::setsockopt(fd.Get(), SOL_PACKET, PACKET_IGNORE_OUTGOING, &one, sizeof one);
    const size_t bytes = std::clamp(ringBytes, kMinRingBytes, kMaxRingBytes);
    tpacket_req request{};
    request.tp_block_size = kBlockBytes;
    request.tp_block_nr = static_cast<unsigned>(bytes / kBlockBytes);
    request.tp_frame_size = kSlotBytes;
    request.tp_frame_nr = static_cast<unsigned>(kSlotsPerBlock) * request.tp_block_nr;
    if (::setsockopt(fd.Get(), SOL_PACKET, PACKET_RX_RING, &request, sizeof request) != 0) {
        Fail(errorText, "cannot set up the packet ring");
        return ring;
    }
    const size_t mapBytes = size_t{request.tp_block_size} * request.tp_block_nr;
    void* map = ::mmap(nullptr, mapBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd.Get(), 0);
    if (map == MAP_FAILED) {
        Fail(errorText, "cannot map the packet ring");
        return ring;
    }
    ring.map_ = static_cast<uint8_t*>(map);
    ring.mapBytes_ = mapBytes;
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_IP);
    address.sll_ifindex = localIp != 0 ? static_cast<int>(InterfaceOf(localIp)) : 0;
    if (::bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Fail(errorText, "cannot bind the packet socket");
        return ring;
    }
    ring.slots_ = request.tp_frame_nr;
    ring.fd_ = std::move(fd);
    return ring;
}

uint8_t* PacketRing::Slot(size_t index) const {
    return map_ + (index / kSlotsPerBlock) * kBlockBytes + (index % kSlotsPerBlock) * kSlotBytes;
}

bool PacketRing::Peek(RingDatagram& out) {
    auto* header = reinterpret_cast<tpacket2_hdr*>(Slot(next_));
    if ((__atomic_load_n(&header->tp_status, __ATOMIC_ACQUIRE) & TP_STATUS_USER) == 0) {
        return false;
    }
    const uint8_t* ip = reinterpret_cast<const uint8_t*>(header) + header->tp_net;
    const size_t captured = header->tp_snaplen;
    const size_t ipHeader = size_t{ip[0] & 0x0Fu} * 4;
    out = RingDatagram{};
    out.truncated = header->tp_len > captured;
    if (captured < ipHeader + kUdpHeaderBytes) {
        out.truncated = true;
        return true;
    }
    out.sourceIp = ry::gev::load_be32(ip + 12);
    out.sourcePort = ry::gev::load_be16(ip + ipHeader);
    const size_t udpBytes = ry::gev::load_be16(ip + ipHeader + 4);
    out.bytes = ip + ipHeader + kUdpHeaderBytes;
    const size_t available = captured - ipHeader;
    out.truncated = out.truncated || udpBytes > available || udpBytes < kUdpHeaderBytes;
    out.size = std::max(std::min(udpBytes, available), kUdpHeaderBytes) - kUdpHeaderBytes;
    return true;
}

void PacketRing::Release() {
    auto* header = reinterpret_cast<tpacket2_hdr*>(Slot(next_));
    __atomic_store_n(&header->tp_status, TP_STATUS_KERNEL, __ATOMIC_RELEASE);
    next_ = next_ + 1 == slots_ ? 0 : next_ + 1;
}

// For a UDP socket offset 0 is the UDP header; the GVSP header follows at 8.
bool AttachWakeFilter(int udpFd, uint32_t everyNth, uint32_t nearEndId) {
    constexpr uint32_t kStatus = 8;
    constexpr uint32_t kFormat = 12;            // EI flag and format; then the 24-bit packet id
    constexpr uint32_t kExtendedPacketId = 24;  // 8 + 16
    constexpr uint32_t kTrailer = 2;
    const uint32_t idMask = everyNth - 1;
    std::vector<sock_filter> program{
        Statement(BPF_LD | BPF_H | BPF_ABS, kStatus),
        Jump(BPF_JMP | BPF_JSET | BPF_K, 0x8000, kAccept, 0),  // error packets
        Statement(BPF_LD | BPF_B | BPF_ABS, kFormat),
        Statement(BPF_ALU | BPF_AND | BPF_K, 0x0F),
        Jump(BPF_JMP | BPF_JEQ | BPF_K, kTrailer, kAccept, 0),
        Statement(BPF_LD | BPF_B | BPF_ABS, kFormat),
        Jump(BPF_JMP | BPF_JSET | BPF_K, 0x80, 2, 0),
        Statement(BPF_LD | BPF_W | BPF_ABS, kFormat),  // standard: packet id in the low 24 bits
        Jump(BPF_JMP | BPF_JA, 1, 0, 0),
        Statement(BPF_LD | BPF_W | BPF_ABS, kExtendedPacketId),
        Statement(BPF_ALU | BPF_AND | BPF_K, 0x00FFFFFF),
        Jump(BPF_JMP | BPF_JEQ | BPF_K, 0, kDrop, 0),  // a leader has nothing yet to copy
        Jump(BPF_JMP | BPF_JEQ | BPF_K, nearEndId, kAccept, 0),
        Statement(BPF_ALU | BPF_AND | BPF_K, idMask),
        Jump(BPF_JMP | BPF_JEQ | BPF_K, 0, kAccept, kDrop),
    };
    return Attach(udpFd, std::move(program), 64);
}

}  // namespace ry::gev::stream::detail
