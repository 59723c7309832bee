// The GVSP receiving engine: one UDP socket, one receiving thread, frames reassembled straight
// into caller-owned buffers. It knows nothing of GenTL handles, queues or events; the data
// stream module of the producer lends it buffers one frame at a time and takes them back
// filled (complete or not). Everything here may be called from any thread except where noted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ry::gev::stream {

// Live settings; SetSettings may change them while the engine runs.
struct ReceiverSettings {
    uint32_t imageTimeoutMs = 3000;  // a frame unfinished this long after its leader is closed
    uint32_t resendTimeoutMs = 100;  // wait for a resent packet before asking again
    uint32_t maxResendRequests = 3;  // per missing range and frame
    bool resendEnabled = true;
    bool frequentResend = false;      // ask as soon as a gap is seen, not at the trailer/timeout
    bool acceptAnyInterface = false;  // LAG: accept the stream on every host address
                                      // (applied by Create and by each Start)
    // Stream channel packet size (SCPS: the IP datagram of a full data packet). It tells the
    // engine where payload packets go before it has seen one; 0 learns it from the stream.
    uint32_t packetSize = 0;
    // The device was told to send 64-bit block ids (GVSP configuration). Packets of the other
    // id mode are not this stream's: they are dropped and counted as rejected.
    bool extendedIds = false;
    // The port the device streams from (SCSP), when it says: packets from its address but
    // another port are not this stream's. 0 accepts every port of the device's address.
    uint16_t deviceSourcePort = 0;
};

// How datagrams reach the engine.
enum class ReceivePath : uint32_t {
    Automatic = 0,   // the packet ring when the process may open one, else the socket
    Socket = 1,      // recvmmsg on the stream's UDP socket
    PacketRing = 2,  // a memory-mapped packet ring (needs CAP_NET_RAW); Create fails without
};

struct ReceiverEndpoint {
    uint32_t deviceIp = 0;   // host byte order; packets from any other source are dropped
                             // (0 accepts every source)
    uint32_t localIp = 0;    // host byte order; 0 binds every address
    uint16_t localPort = 0;  // 0 lets the kernel choose; read the choice with LocalPort()
    // SO_RCVBUFFORCE, falling back to SO_RCVBUF (capped by net.core.rmem_max). Memory is
    // only taken while datagrams wait; 256 MiB rides out ~30 ms without the receiving thread
    // at 8 GB/s, which a busy two-core machine needs now and then.
    size_t socketBufferBytes = 256u << 20;
    // Chosen once by Create; PathInUse() tells which one it took.
    ReceivePath receivePath = ReceivePath::Automatic;
};

// A buffer lent to the engine. `data`/`size` are the caller's memory; `tag` is returned
// untouched so the lender can find its own record.
struct LentBuffer {
    uint8_t* data = nullptr;
    size_t size = 0;
    void* tag = nullptr;
};

enum class FrameStatus : uint32_t {
    Complete = 0,
    Incomplete = 1,  // packets still missing after the resend budget or time-out
    TooSmall = 2,    // the payload did not fit the lent buffer; the rest was dropped
};

// What the engine learned about one frame. Image fields come from the leader.
struct ReceivedFrame {
    LentBuffer buffer;
    FrameStatus status = FrameStatus::Complete;
    uint64_t blockId = 0;
    uint64_t timestamp = 0;
    uint32_t payloadType = 0;
    uint32_t pixelFormat = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t offsetX = 0;
    uint32_t offsetY = 0;
    uint32_t paddingX = 0;
    uint32_t paddingY = 0;
    size_t bytesFilled = 0;       // payload bytes placed into the buffer
    uint32_t missingPackets = 0;  // packets never received
    uint32_t resentPackets = 0;   // packets that arrived after a resend request
};

struct ReceiverCounters {
    uint64_t framesDelivered = 0;  // complete or not, handed back through the callback
    uint64_t framesIncomplete = 0;
    uint64_t framesDroppedNoBuffer = 0;  // a leader arrived and no buffer was lent
    uint64_t packetsReceived = 0;
    uint64_t packetsMissing = 0;
    uint64_t packetsResent = 0;  // arrived after a resend request
    uint64_t resendRequests = 0;
    uint64_t bytesReceived = 0;
    uint64_t packetsDuplicated = 0;  // a packet id already placed in its block
    uint64_t packetsRejected = 0;    // short, truncated, malformed, not fitting the block, of
                                     // the other id mode, or of a block id out of sequence
    uint64_t packetsIgnored = 0;     // late blocks, unsupported formats, foreign senders
};

struct ReceiverCallbacks {
    // Called on the receiving thread when a new block begins; returns false when no buffer
    // is available (the frame is dropped and counted). Must not block.
    std::function<bool(LentBuffer&)> takeBuffer;
    // Called on the receiving thread with every frame the engine closes, complete or not.
    std::function<void(const ReceivedFrame&)> deliver;
    // Called on the receiving thread to ask the device to resend packets [first, last] of a
    // block (PACKETRESEND goes over the control channel, which the engine does not own).
    std::function<void(uint64_t blockId, uint32_t firstPacket, uint32_t lastPacket)> requestResend;
    // The same request with the id mode of the block: extended ids need the 64-bit request
    // layout even while block ids are small. Used instead of requestResend when set.
    std::function<void(uint64_t blockId, uint32_t firstPacket, uint32_t lastPacket,
                       bool extendedIds)>
        requestResendWithIdMode;
};

class FrameReceiver {
  public:
    // Binds the socket; returns null and sets `errorText` when that fails.
    static std::unique_ptr<FrameReceiver> Create(const ReceiverEndpoint& endpoint,
                                                 const ReceiverSettings& settings,
                                                 ReceiverCallbacks callbacks,
                                                 std::string* errorText);
    virtual ~FrameReceiver() = default;

    virtual uint16_t LocalPort() const = 0;
    // Socket or PacketRing: the path Create chose.
    virtual ReceivePath PathInUse() const = 0;
    virtual void SetSettings(const ReceiverSettings& settings) = 0;
    virtual ReceiverSettings Settings() const = 0;

    // Starts and stops the receiving thread. Stop returns the buffer of a frame in progress
    // through `deliver` as Incomplete unless `discardPartial` is set, in which case it goes
    // back through `returnBuffer` without a frame. Those calls happen on the caller's thread,
    // after the receiving thread has ended. Called from a callback, Stop only asks the thread
    // to end; the frames in progress then come back at the next Stop or Start.
    virtual bool Start() = 0;
    virtual void Stop(bool discardPartial,
                      const std::function<void(const LentBuffer&)>& returnBuffer) = 0;
    virtual bool Running() const = 0;

    virtual ReceiverCounters Counters() const = 0;
};

}  // namespace ry::gev::stream
