// libFuzzer target: a sequence of GVSP packets through the engine's own receive batch and
// reassembly, as the socket path runs them: each packet goes through a datagram socket pair
// into a batch aimed at the places the open frame still lacks, then into the assembler, with
// the clock moved on between packets so resend rounds and time-outs run too.
//
// Input: one byte of settings, then records of [milliseconds to advance][length, 2 bytes big
// endian][packet]. Settings bits: 0 extended ids, 1 resend, 2 frequent resend, 3-4 buffer size
// (1, 4, 16 or 64 KiB), 5-7 packet size hint (learn, 576, 1000, 1500, 4000, 8000, 9000, 300).
//
// Every lent buffer must come back exactly once, never filled past its size, and no counter may
// report more missing packets than the buffers could hold.
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "frame_assembler.h"
#include "receive_batch.h"

namespace {

using namespace ry::gev::stream;
using namespace ry::gev::stream::detail;

constexpr size_t kBuffers = 4;
constexpr size_t kBatch = 8;  // below the default queue length of a datagram socket pair
constexpr size_t kBufferBytes[] = {1024, 4096, 16384, 65536};
constexpr uint32_t kPacketSizes[] = {0, 576, 1000, 1500, 4000, 8000, 9000, 300};

void Check(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

class Lender {
  public:
    explicit Lender(size_t bytes) {
        for (size_t i = 0; i < kBuffers; ++i) {
            // Separate allocations of the exact size: a write past one is a sanitizer report.
            storage_.emplace_back(bytes);
            free_.push_back(i);
        }
    }

    ReceiverCallbacks Callbacks() {
        ReceiverCallbacks callbacks;
        callbacks.takeBuffer = [this](LentBuffer& buffer) {
            if (free_.empty()) {
                return false;
            }
            const size_t i = free_.back();
            free_.pop_back();
            buffer = {storage_[i].data(), storage_[i].size(), reinterpret_cast<void*>(i)};
            return true;
        };
        callbacks.deliver = [this](const ReceivedFrame& frame) {
            Check(frame.bytesFilled <= frame.buffer.size);
            Check(frame.missingPackets <= frame.buffer.size + 2);
            Give(frame.buffer);
        };
        callbacks.requestResendWithIdMode = [](uint64_t, uint32_t first, uint32_t last, bool) {
            Check(first <= last);
        };
        return callbacks;
    }

    void Give(const LentBuffer& buffer) {
        const auto i = reinterpret_cast<size_t>(buffer.tag);
        Check(i < kBuffers && buffer.data == storage_[i].data());
        for (size_t j : free_) {
            Check(j != i);  // given back twice
        }
        free_.push_back(i);
    }

    bool AllBack() const { return free_.size() == kBuffers; }

  private:
    std::vector<std::vector<uint8_t>> storage_;
    std::vector<size_t> free_;
};

struct SocketPair {
    SocketPair() { Check(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0, fds) == 0); }
    ~SocketPair() {
        ::close(fds[0]);
        ::close(fds[1]);
    }
    int fds[2];
};

struct Record {
    uint32_t advanceMs;
    const uint8_t* bytes;
    size_t size;
};

std::vector<Record> Records(const uint8_t* data, size_t size) {
    std::vector<Record> records;
    size_t at = 0;
    while (at + 3 <= size) {
        const uint32_t advance = data[at];
        const size_t length =
            std::min<size_t>(size_t{data[at + 1]} << 8 | data[at + 2], size - at - 3);
        records.push_back({advance, data + at + 3, length});
        at += 3 + length;
    }
    return records;
}

// One batch as the receiving thread runs it: aim, receive, place, then the clock-driven work.
void RunBatch(FrameAssembler& assembler, ReceiveBatch& batch, std::vector<PlacementHint>& hints,
              int fd, TimePoint now) {
    const size_t planned = assembler.PlanPlacements(hints.data(), hints.size());
    const size_t received = batch.ReceiveFrom(fd, hints.data(), planned, kBatch);
    Check(received <= kBatch);
    for (size_t k = 0; k < batch.PacketCount(); ++k) {
        const ReceivedPacket& packet = batch.Packet(k);
        if (batch.Truncated(packet.message)) {
            assembler.OnTruncatedDatagram();
        } else {
            assembler.OnDatagram(packet.bytes, packet.size, now, packet.inPlace);
        }
    }
    assembler.Service(now);
    assembler.Publish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const uint8_t flags = data[0];
    ReceiverSettings settings;
    settings.extendedIds = (flags & 1) != 0;
    settings.resendEnabled = (flags & 2) != 0;
    settings.frequentResend = (flags & 4) != 0;
    settings.packetSize = kPacketSizes[flags >> 5];
    settings.resendTimeoutMs = 5;
    settings.imageTimeoutMs = 50;
    const size_t bufferBytes = kBufferBytes[(flags >> 3) & 3];

    Lender lender(bufferBytes);
    const ReceiverCallbacks callbacks = lender.Callbacks();
    SharedCounters counters;
    FrameAssembler assembler(callbacks, counters);
    assembler.Configure(settings);
    assembler.Reset();
    ReceiveBatch batch(kBatch);
    std::vector<PlacementHint> hints(batch.HintCapacity());
    SocketPair pair;

    TimePoint now{};
    size_t queued = 0;
    const std::vector<Record> records = Records(data + 1, size - 1);
    for (const Record& record : records) {
        if (::send(pair.fds[1], record.bytes, record.size, 0) >= 0) {
            ++queued;
        }
        now += std::chrono::milliseconds(record.advanceMs);
        if (queued == kBatch || record.advanceMs != 0) {
            RunBatch(assembler, batch, hints, pair.fds[0], now);
            queued = 0;
        }
    }
    RunBatch(assembler, batch, hints, pair.fds[0], now);
    assembler.Service(now + std::chrono::seconds(1));
    assembler.CloseAll(false, nullptr);
    Check(lender.AllBack());
    const ReceiverCounters totals = counters.Snapshot();
    Check(totals.framesDelivered + totals.framesDroppedNoBuffer <= records.size());
    Check(totals.packetsMissing <= totals.framesDelivered * (bufferBytes + 2));
    return 0;
}
