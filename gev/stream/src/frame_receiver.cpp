#include "ry/gev/stream/frame_receiver.h"

#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "datagram_socket.h"
#include "frame_assembler.h"
#include "packet_ring.h"
#include "receive_batch.h"
#include "ring_sleep.h"
#include "shared_counters.h"

namespace ry::gev::stream {

namespace {

using detail::Clock;

// Longest sleep of an idle receiving thread; Stop wakes it at once through the event.
constexpr int kIdlePollMs = 200;
constexpr auto kCoalescingNap = std::chrono::microseconds(100);
constexpr size_t kNapUntilTheLast = 12;  // packets a frame still lacks
constexpr unsigned long kTimerSlackNs = 10'000;
// Ring path: datagrams read between two looks at the clock and the settings; how often a
// payload packet wakes the thread (with every trailer) so the frame is copied out while it
// streams in; and how many packets before a frame's usual end it is woken once more, so that
// only those few are left to copy when the trailer lands.
constexpr size_t kRingBatch = 256;
constexpr uint32_t kWakeEveryNthPacket = 128;
constexpr uint32_t kWakeBeforeTheEnd = 8;

class FrameReceiverImpl final : public FrameReceiver {
  public:
    FrameReceiverImpl(const ReceiverEndpoint& endpoint, const ReceiverSettings& settings,
                      ReceiverCallbacks callbacks, detail::DatagramSocket socket,
                      detail::PacketRing ring)
        : endpoint_(endpoint),
          settings_(settings),
          callbacks_(std::move(callbacks)),
          socket_(std::move(socket)),
          ring_(std::move(ring)),
          assembler_(callbacks_, counters_) {}

    ~FrameReceiverImpl() override { Stop(true, nullptr); }

    uint16_t LocalPort() const override { return socket_.Port(); }
    ReceivePath PathInUse() const override {
        return ring_.Valid() ? ReceivePath::PacketRing : ReceivePath::Socket;
    }

    void SetSettings(const ReceiverSettings& settings) override {
        std::lock_guard lock(settingsMutex_);
        settings_ = settings;
        settingsGeneration_.fetch_add(1, std::memory_order_release);
    }

    ReceiverSettings Settings() const override {
        std::lock_guard lock(settingsMutex_);
        return settings_;
    }

    bool Start() override;
    void Stop(bool discardPartial,
              const std::function<void(const LentBuffer&)>& returnBuffer) override;
    bool Running() const override { return running_.load(std::memory_order_acquire); }
    ReceiverCounters Counters() const override { return counters_.Snapshot(); }

  private:
    bool RebindForSettings();
    void ReceiveLoopGuarded();
    void SocketLoop();
    void RingLoop();
    void ReloadSettingsIfChanged(uint64_t& seenGeneration);
    // Packets from any other address, or from another port of the device's address once the
    // device has said which port it streams from, are not this stream's.
    bool FromDevice(uint32_t sourceIp, uint16_t sourcePort) const {
        return (endpoint_.deviceIp == 0 || sourceIp == endpoint_.deviceIp) &&
               (devicePort_ == 0 || sourcePort == devicePort_);
    }
    bool WaitForPackets(int timeoutMs);
    void HandleBatch();
    size_t BatchSizeWanted();
    size_t HandleRing(size_t max);

    const ReceiverEndpoint endpoint_;
    mutable std::mutex settingsMutex_;
    ReceiverSettings settings_;
    uint16_t devicePort_ = 0;  // the receiving thread's copy of settings_.deviceSourcePort
    std::atomic<uint64_t> settingsGeneration_{1};
    const ReceiverCallbacks callbacks_;
    detail::DatagramSocket socket_;
    detail::PacketRing ring_;      // invalid on the socket path
    detail::RingSleep ringSleep_;  // the ring path's, opened at each start
    detail::SharedCounters counters_;
    detail::FrameAssembler assembler_;
    detail::ReceiveBatch batch_;
    std::vector<detail::PlacementHint> hints_ =
        std::vector<detail::PlacementHint>(batch_.HintCapacity());
    size_t hintCount_ = 0;
    detail::WakeEvent wake_;
    std::atomic<bool> stopRequested_{false};
    std::atomic<bool> running_{false};
    std::mutex lifecycleMutex_;
    std::thread thread_;
};

uint32_t BindAddress(const ReceiverEndpoint& endpoint, const ReceiverSettings& settings) {
    return settings.acceptAnyInterface ? 0 : endpoint.localIp;
}

// The socket stays bound on the ring path too: the host then never answers the device's
// packets with port-unreachable, and its filter lets through the packets that wake the
// receiving thread.
bool OpenPath(uint32_t ip, uint16_t port, const ReceiverEndpoint& endpoint,
              detail::DatagramSocket& socket, detail::PacketRing& ring, std::string* errorText) {
    socket = detail::DatagramSocket::Open(ip, port, endpoint.socketBufferBytes, errorText);
    if (!socket.Valid() || endpoint.receivePath == ReceivePath::Socket) {
        return socket.Valid();
    }
    std::string ringError;
    ring = detail::PacketRing::Open(ip, socket.Port(), endpoint.socketBufferBytes, &ringError);
    if (ring.Valid() && !detail::AttachWakeFilter(socket.Fd(), kWakeEveryNthPacket, 0)) {
        ring = detail::PacketRing{};
        ringError = "cannot filter the stream socket";
    }
    if (!ring.Valid() && endpoint.receivePath == ReceivePath::PacketRing) {
        if (errorText != nullptr) {
            *errorText = ringError;
        }
        socket = detail::DatagramSocket{};
        return false;
    }
    return true;
}

// The LAG setting decides which local address the socket (and the ring) listens on; the port
// stays the one the device was told about.
bool FrameReceiverImpl::RebindForSettings() {
    const uint32_t wanted = BindAddress(endpoint_, Settings());
    if (wanted == socket_.BoundIp()) {
        return true;
    }
    const uint16_t port = socket_.Port();
    ReceiverEndpoint sameAsBefore = endpoint_;
    sameAsBefore.receivePath = PathInUse();
    socket_ = detail::DatagramSocket{};
    ring_ = detail::PacketRing{};
    return OpenPath(wanted, port, sameAsBefore, socket_, ring_, nullptr);
}

bool FrameReceiverImpl::Start() {
    std::lock_guard lock(lifecycleMutex_);
    if (thread_.joinable()) {
        if (Running() && !stopRequested_.load(std::memory_order_acquire)) {
            return true;
        }
        // A callback stopped the thread, or one threw and ended it: finish that stop first.
        thread_.join();
        assembler_.CloseAll(false, nullptr);
    }
    if (!wake_.Valid() || !RebindForSettings()) {
        return false;
    }
    if (ring_.Valid()) {
        ringSleep_ =
            detail::RingSleep::Open(socket_.Fd(), wake_.Fd(), socket_.ReceiveBufferBytes());
        if (!ringSleep_.Valid()) {
            return false;
        }
    }
    assembler_.Reset();
    wake_.Drain();
    stopRequested_.store(false, std::memory_order_release);
    running_.store(true, std::memory_order_release);
    thread_ = std::thread([this] { ReceiveLoopGuarded(); });
    return true;
}

void FrameReceiverImpl::Stop(bool discardPartial,
                             const std::function<void(const LentBuffer&)>& returnBuffer) {
    if (thread_.joinable() && std::this_thread::get_id() == thread_.get_id()) {
        // Called from a callback: the thread cannot wait for itself. It ends after this
        // batch; the frames in progress come back at the next Stop from another thread.
        stopRequested_.store(true, std::memory_order_release);
        return;
    }
    std::lock_guard lock(lifecycleMutex_);
    if (!thread_.joinable()) {
        return;
    }
    stopRequested_.store(true, std::memory_order_release);
    wake_.Signal();
    thread_.join();
    assembler_.CloseAll(discardPartial, returnBuffer);
    running_.store(false, std::memory_order_release);
}

void FrameReceiverImpl::ReloadSettingsIfChanged(uint64_t& seenGeneration) {
    const uint64_t generation = settingsGeneration_.load(std::memory_order_acquire);
    if (generation != seenGeneration) {
        seenGeneration = generation;
        const ReceiverSettings settings = Settings();
        devicePort_ = settings.deviceSourcePort;
        assembler_.Configure(settings);
    }
}

// False when the thread was asked to stop.
bool FrameReceiverImpl::WaitForPackets(int timeoutMs) {
    pollfd fds[2] = {{socket_.Fd(), POLLIN, 0}, {wake_.Fd(), POLLIN, 0}};
    const int ready = ::poll(fds, 2, timeoutMs);
    return !(ready > 0 && (fds[1].revents & POLLIN) != 0);
}

void FrameReceiverImpl::HandleBatch() {
    const auto now = Clock::now();
    for (size_t k = 0; k < batch_.PacketCount(); ++k) {
        const detail::ReceivedPacket& packet = batch_.Packet(k);
        if (!FromDevice(batch_.SourceIp(packet.message), batch_.SourcePort(packet.message))) {
            assembler_.OnForeignDatagram();
        } else if (batch_.Truncated(packet.message)) {
            assembler_.OnTruncatedDatagram();
        } else {
            assembler_.OnDatagram(packet.bytes, packet.size, now, packet.inPlace);
        }
    }
}

// A callback that throws ends the receiving thread rather than the process; the lender sees
// Running() turn false.
void FrameReceiverImpl::ReceiveLoopGuarded() {
    ::prctl(PR_SET_TIMERSLACK, kTimerSlackNs);             // keeps the naps close to their length
    ::pthread_setname_np(::pthread_self(), "ry-gvsp-rx");  // found easily in top and perf
    try {
        if (ring_.Valid()) {
            RingLoop();
        } else {
            SocketLoop();
        }
    } catch (...) {
        assembler_.Publish();
    }
    running_.store(false, std::memory_order_release);
}

// With a frame under way the batch is cut where its known packets end, so the next frame's
// packets are read once its leader has opened it and can be aimed at its buffer too. With
// no frame open, a few datagrams are enough to find the next leader.
size_t FrameReceiverImpl::BatchSizeWanted() {
    constexpr size_t kProbeMessages = 4;
    constexpr size_t kBeyondPlan = 2;  // the trailer and the next leader
    const size_t train = batch_.TrainLength();
    hintCount_ = assembler_.PlanPlacements(hints_.data(),
                                           std::min(hints_.size(), batch_.Capacity() * train));
    if (hintCount_ != 0) {
        return std::min(batch_.Capacity(), (hintCount_ + train - 1) / train + kBeyondPlan);
    }
    return assembler_.HasOpenFrame() ? batch_.Capacity() : kProbeMessages;
}

void FrameReceiverImpl::SocketLoop() {
    uint64_t seenGeneration = 0;
    bool batchWasFull = false;
    size_t lastCount = 0;
    while (!stopRequested_.load(std::memory_order_acquire)) {
        ReloadSettingsIfChanged(seenGeneration);
        const size_t wanted = BatchSizeWanted();
        // A full batch means more is waiting: skip the poll and read again.
        if (!batchWasFull && lastCount > 0 && assembler_.HasOpenFrame() &&
            hintCount_ > kNapUntilTheLast) {
            // Mid-frame, a short batch means the thread is ahead of the wire. A nap lets the
            // socket gather a fuller batch and spares the sender a wake-up per few packets,
            // which on loopback it pays for. The frame's last packets are waited for in poll,
            // so that the frame is handed over as soon as its trailer lands.
            std::this_thread::sleep_for(kCoalescingNap);
        } else if (!batchWasFull) {
            const int timeoutMs = assembler_.MillisecondsToNextDeadline(Clock::now(), kIdlePollMs);
            if (!WaitForPackets(timeoutMs)) {
                break;
            }
        }
        const size_t count = batch_.ReceiveFrom(socket_.Fd(), hints_.data(), hintCount_, wanted);
        batchWasFull = count == wanted;
        lastCount = count;
        HandleBatch();
        assembler_.Service(Clock::now());
        assembler_.Publish();
    }
    assembler_.Publish();
}

size_t FrameReceiverImpl::HandleRing(size_t max) {
    const auto now = Clock::now();
    detail::RingDatagram datagram;
    size_t handled = 0;
    for (; handled < max && ring_.Peek(datagram); ++handled) {
        if (!FromDevice(datagram.sourceIp, datagram.sourcePort)) {
            assembler_.OnForeignDatagram();
        } else if (datagram.truncated) {
            assembler_.OnTruncatedDatagram();
        } else {
            assembler_.OnDatagram(datagram.bytes, datagram.size, now);
        }
        ring_.Release();
    }
    return handled;
}

// Reads ready ring slots without a system call and sleeps on the stream socket, which its
// filter wakes about once per kWakeEveryNthPacket packets, shortly before a frame's usual end
// and at every trailer. Packets that land after the last look wait for the next wake-up, the
// next deadline of a frame (resend, time-out) or at most kIdlePollMs.
void FrameReceiverImpl::RingLoop() {
    uint64_t seenGeneration = 0;
    uint32_t wakeFilterEnd = 0;
    size_t handledSinceSleep = 0;
    while (!stopRequested_.load(std::memory_order_acquire)) {
        ReloadSettingsIfChanged(seenGeneration);
        const size_t handled = HandleRing(kRingBatch);
        handledSinceSleep += handled;
        const auto now = Clock::now();
        assembler_.Service(now);
        assembler_.Publish();
        if (const uint32_t end = assembler_.UsualLastPayloadId();
            end != wakeFilterEnd && end > 2 * kWakeBeforeTheEnd) {
            wakeFilterEnd = end;  // once per stream, or when the frame size changes
            detail::AttachWakeFilter(socket_.Fd(), kWakeEveryNthPacket, end - kWakeBeforeTheEnd);
        }
        if (handled == kRingBatch) {
            continue;
        }
        if (!ringSleep_.Wait(assembler_.MillisecondsToNextDeadline(now, kIdlePollMs),
                             std::exchange(handledSinceSleep, 0))) {
            break;
        }
    }
    assembler_.Publish();
}

}  // namespace

std::unique_ptr<FrameReceiver> FrameReceiver::Create(const ReceiverEndpoint& endpoint,
                                                     const ReceiverSettings& settings,
                                                     ReceiverCallbacks callbacks,
                                                     std::string* errorText) {
    detail::DatagramSocket socket;
    detail::PacketRing ring;
    if (!OpenPath(BindAddress(endpoint, settings), endpoint.localPort, endpoint, socket, ring,
                  errorText)) {
        return nullptr;
    }
    return std::make_unique<FrameReceiverImpl>(endpoint, settings, std::move(callbacks),
                                               std::move(socket), std::move(ring));
}

}  // namespace ry::gev::stream
