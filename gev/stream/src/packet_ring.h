// The second receive path: a memory-mapped packet ring (AF_PACKET, TPACKET_V2) bound to the
// stream's interface and filtered in the kernel to the stream's UDP port. The kernel copies
// each datagram into a ring slot and marks the slot ready; the receiving thread reads ready
// slots without a system call and hands the UDP payload to the same assembler the socket
// path feeds.
//
// Why V2 and not V3: a V3 block reaches user space only when it is full or at its retire
// timeout (at least one jiffy, 4 ms at HZ=250), so the last packets of a frame wait in a
// block nobody may read yet. A V2 slot is marked ready as soon as its copy is done, so the
// thread may read the trailer the moment it lands and choose its own wake-up schedule: it
// sleeps on the stream's UDP socket, whose own filter lets through only trailers, error
// packets and every Nth payload packet (WakeFilter). The ring's per-packet wake-ups then find
// no sleeper and cost the kernel next to nothing.
#pragma once

#include <sys/uio.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "datagram_socket.h"

namespace ry::gev::stream::detail {

// One datagram read from the ring: the UDP payload and where it came from.
struct RingDatagram {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    uint32_t sourceIp = 0;  // host byte order
    uint16_t sourcePort = 0;
    bool truncated = false;  // longer than a ring slot: its tail is lost
};

class PacketRing {
  public:
    PacketRing() = default;
    ~PacketRing();
    PacketRing(PacketRing&& other) noexcept;
    PacketRing& operator=(PacketRing&& other) noexcept;
    PacketRing(const PacketRing&) = delete;
    PacketRing& operator=(const PacketRing&) = delete;

    // A ring of about `ringBytes` for UDP datagrams to `port` (host byte order). `localIp`
    // non-zero binds the ring to the interface holding that address and takes only
    // datagrams to it; 0 takes the port on every interface. Fails (returns an invalid ring
    // and fills `errorText`) without CAP_NET_RAW.
    static PacketRing Open(uint32_t localIp, uint16_t port, size_t ringBytes,
                           std::string* errorText);

    bool Valid() const { return fd_.Valid(); }

    // The next ready datagram, or false when the ring holds none. Release it before the
    // next call.
    bool Peek(RingDatagram& out);
    void Release();

  private:
    uint8_t* Slot(size_t index) const;

    UniqueFd fd_;
    uint8_t* map_ = nullptr;
    size_t mapBytes_ = 0;
    size_t slots_ = 0;
    size_t next_ = 0;
};

// Lets through to the stream's UDP socket only the packets that should wake the receiving
// thread of the ring path: trailers, error packets, every `everyNth` (a power of two) payload
// packet, so the thread empties the ring while a frame streams in and never falls far
// behind, and packet `nearEndId` a few packets before the frame's end, so that the thread has
// copied out the bulk of the frame by the time its trailer lands. False when the kernel
// refuses the filter.
bool AttachWakeFilter(int udpFd, uint32_t everyNth, uint32_t nearEndId);

}  // namespace ry::gev::stream::detail
