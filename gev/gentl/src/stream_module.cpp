#include "stream_module.h"

#include <array>
#include <chrono>

#include "device_module.h"
#include "ry/gev/protocol/bootstrap.h"

namespace ry::gentl {
namespace {

namespace reg = ry::gev::bootstrap;
constexpr uint32_t kFireTestPacket = 0x80000000;
constexpr uint32_t kDoNotFragment = 0x40000000;
constexpr uint32_t kPacketSizeMask = 0x0000FFFF;
constexpr uint32_t kIpUdpHeaders = 28;
constexpr uint32_t kLargestPacket = 9000;

bool IsMulticast(uint32_t ip) {
    return (ip >> 28) == 0xE;
}

// Each size's test packet gets a quarter of the detection time-out. A detection without a
// limit of its own waits for each packet as long as a control request may take (its
// default when that has no limit either): the probe still has sizes to fall back on.
uint32_t ProbeWaitMs(const SystemSettings& settings) {
    constexpr uint32_t kDefaultRequestMs = 500;
    const uint32_t detection = settings.mtuTimeoutMs.load();
    if (detection != 0)
        return std::max<uint32_t>(detection / 4, 5);
    const uint32_t request = settings.gvcpTimeoutMs.load();
    return request != 0 ? request : kDefaultRequestMs;
}

}  // namespace

StreamModule::StreamModule(std::shared_ptr<DeviceModule> device, uint32_t channel)
    : device_(std::move(device)), channel_(channel) {}

StreamModule::~StreamModule() {
    Close();
}

bool StreamModule::IsOpen() const {
    std::lock_guard lock(mutex_);
    return open_;
}

uint16_t StreamModule::LocalPort() const {
    return receiver_ ? receiver_->LocalPort() : 0;
}

GC_ERROR StreamModule::Open() {
    const auto& host = device_->Interface()->host;
    uint32_t group = 0;
    const bool multicast = device_->Multicast(group) && IsMulticast(group);
    stream::ReceiverEndpoint endpoint;
    endpoint.deviceIp = device_->Info().ip;
    stream::ReceiverSettings settings = device_->Interface()->StreamSettings();
    // Multicast datagrams and, in LAG mode, datagrams on other host addresses only reach a
    // socket bound to the wildcard address.
    endpoint.localIp = (multicast || settings.acceptAnyInterface) ? 0 : host.ip;
    endpoint.receivePath = device_->Interface()->ReceivePath();
    if (device_->Privileged()) {
        if (device_->Settings()->mtuOptimize.load())
            packetSize_ = NegotiatePacketSize();
        uint32_t scps = 0;
        if (packetSize_ == 0 &&
            device_->Control().ReadRegister(
                reg::stream_channel_register(reg::kStreamChannelPacketSize, channel_), scps) ==
                GC_ERR_SUCCESS)
            packetSize_ = scps & kPacketSizeMask;
    }
    settings.packetSize = packetSize_;
    stream::ReceiverCallbacks callbacks;
    callbacks.takeBuffer = [this](stream::LentBuffer& lent) { return TakeBuffer(lent); };
    callbacks.deliver = [this](const stream::ReceivedFrame& frame) { Deliver(frame); };
    callbacks.requestResendWithIdMode = [this](uint64_t block, uint32_t first, uint32_t last,
                                               bool extendedIds) {
        device_->Control().SendPacketResend(static_cast<uint16_t>(channel_), block, first, last,
                                            extendedIds);
    };
    receiver_ = stream::FrameReceiver::Create(endpoint, settings, std::move(callbacks), nullptr);
    if (!receiver_)
        return GC_ERR_OPEN_STREAM;
    if (multicast) {
        if (!multicastMembership_.Open(0, 0, nullptr) ||
            !multicastMembership_.JoinMulticast(group, host.ip)) {
            receiver_.reset();
            return GC_ERR_OPEN_STREAM;
        }
    }
    if (device_->Privileged()) {
        const GC_ERROR rc = ConfigureChannel(receiver_->LocalPort());
        if (rc != GC_ERR_SUCCESS) {
            receiver_.reset();
            return rc;
        }
    }
    std::lock_guard lock(mutex_);
    open_ = true;
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::ConfigureChannel(uint16_t port) {
    uint32_t group = 0;
    const bool multicast = device_->Multicast(group) && IsMulticast(group);
    const uint32_t destination = multicast ? group : device_->Interface()->host.ip;
    const client::RegisterPair setup[] = {
        {reg::stream_channel_register(reg::kStreamChannelDestination, channel_), destination},
        {reg::stream_channel_register(reg::kStreamChannelPort, channel_), port}};
    GC_ERROR rc = GC_ERR_SUCCESS;
    // One write at a time: devices without concatenation accept a single pair per command.
    for (const auto& pair : setup)
        if ((rc = device_->Control().WriteRegister(pair.address, pair.value)) != GC_ERR_SUCCESS)
            break;
    return rc;
}

// Fires test packets at a socket of our own, largest size first, and keeps the first size
// that arrives whole. A device that never sends a test packet keeps its own packet size.
uint32_t StreamModule::NegotiatePacketSize() {
    client::UdpSocket probe;
    const auto& host = device_->Interface()->host;
    if (!probe.Open(host.ip, 0, nullptr) || ConfigureChannel(probe.LocalPort()) != GC_ERR_SUCCESS)
        return 0;
    const uint32_t ceiling = std::min(host.mtu, kLargestPacket) & ~3u;
    const uint32_t candidates[] = {ceiling, 8192, 6000, 4000, 3000, 1500, 1400, 1000, 576};
    const auto wait = std::chrono::milliseconds(ProbeWaitMs(*device_->Settings()));
    const uint32_t scpsAddress =
        reg::stream_channel_register(reg::kStreamChannelPacketSize, channel_);
    uint32_t original = 0;
    if (device_->Control().ReadRegister(scpsAddress, original) != GC_ERR_SUCCESS)
        return 0;
    std::vector<uint8_t> buffer(kLargestPacket + 64);
    uint32_t chosen = 0;
    for (uint32_t size : candidates) {
        if (size > ceiling || size < 576)
            continue;
        probe.Drain();
        if (device_->Control().WriteRegister(
                scpsAddress, size | kFireTestPacket | kDoNotFragment) != GC_ERR_SUCCESS)
            break;
        const auto got = probe.Receive(buffer, wait);
        if (got && got->size == size - kIpUdpHeaders) {
            chosen = size;
            break;
        }
    }
    // Without an answer the device keeps the packet size it had.
    device_->Control().WriteRegister(scpsAddress,
                                     chosen != 0 ? chosen : original & ~kFireTestPacket);
    return chosen;
}

namespace {

// The settings the stream learns from the device, as opposed to those the interface sets.
void CopyLearned(const stream::ReceiverSettings& from, stream::ReceiverSettings& to) {
    to.packetSize = from.packetSize;
    to.extendedIds = from.extendedIds;
    to.deviceSourcePort = from.deviceSourcePort;
}

bool SameLearned(const stream::ReceiverSettings& a, const stream::ReceiverSettings& b) {
    return a.packetSize == b.packetSize && a.extendedIds == b.extendedIds &&
           a.deviceSourcePort == b.deviceSourcePort;
}

}  // namespace

void StreamModule::ApplyInterfaceSettings(const stream::ReceiverSettings& settings) {
    if (!receiver_)
        return;
    // What the stream learned from the device stays; the interface's settings come on top.
    stream::ReceiverSettings next = settings;
    CopyLearned(receiver_->Settings(), next);
    receiver_->SetSettings(next);
}

// The application changes the stream through the device's own registers after the stream
// was opened: 64-bit block ids (the engine drops packets of the other mode) and the packet
// size (which tells the engine where payload packets go before it has seen one). Both are
// read again at each start, with the port the device streams from when it says (SCSP, valid
// once the channel is open). A device without the id register sends 16-bit ids.
void StreamModule::FollowDeviceSettings() {
    const stream::ReceiverSettings current = receiver_->Settings();
    stream::ReceiverSettings settings = current;
    uint32_t config = 0;
    settings.extendedIds =
        device_->Control().ReadRegister(reg::kGvspConfiguration, config) == GC_ERR_SUCCESS &&
        (config & reg::kGvspConfigExtendedIds) != 0;
    uint32_t scps = 0;
    if (device_->Control().ReadRegister(
            reg::stream_channel_register(reg::kStreamChannelPacketSize, channel_), scps) ==
            GC_ERR_SUCCESS &&
        (scps & kPacketSizeMask) != 0) {
        packetSize_ = scps & kPacketSizeMask;
        settings.packetSize = packetSize_;
    }
    uint32_t capability = 0;
    uint32_t scsp = 0;
    if (device_->Control().ReadRegister(reg::kGvspCapability, capability) == GC_ERR_SUCCESS &&
        (capability & reg::kGvspCapSourcePort) != 0 &&
        device_->Control().ReadRegister(
            reg::stream_channel_register(reg::kStreamChannelSourcePort, channel_), scsp) ==
            GC_ERR_SUCCESS)
        settings.deviceSourcePort = static_cast<uint16_t>(scsp & kPacketSizeMask);
    if (!SameLearned(settings, current))
        receiver_->SetSettings(settings);
}

void StreamModule::StopReceiver(bool discardPartial) {
    if (!receiver_ || !receiver_->Running())
        return;
    receiver_->Stop(discardPartial, [this](const stream::LentBuffer& lent) { ReturnBuffer(lent); });
}

GC_ERROR StreamModule::StartAcquisition() {
    {
        std::lock_guard lock(mutex_);
        if (!open_)
            return GC_ERR_INVALID_HANDLE;
        // Starting a running stream changes nothing: callers restart without knowing.
        if (acquiring_)
            return GC_ERR_SUCCESS;
        acquiring_ = true;
        grabbing_ = true;
    }
    FollowDeviceSettings();
    if (!receiver_->Start()) {
        std::lock_guard lock(mutex_);
        acquiring_ = false;
        return GC_ERR_OPEN_STREAM;
    }
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::StopAcquisition(ACQ_STOP_FLAGS flags) {
    if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
        return GC_ERR_INVALID_PARAMETER;
    {
        std::lock_guard lock(mutex_);
        if (!open_)
            return GC_ERR_INVALID_HANDLE;
    }
    StopReceiver(flags == ACQ_STOP_FLAGS_KILL);
    std::lock_guard lock(mutex_);
    acquiring_ = false;
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::SetGrabbing(bool on) {
    std::lock_guard lock(mutex_);
    if (!open_)
        return GC_ERR_INVALID_HANDLE;
    grabbing_ = on;
    return GC_ERR_SUCCESS;
}

void StreamModule::Close() {
    {
        std::lock_guard lock(mutex_);
        if (!open_)
            return;
        open_ = false;
    }
    StopReceiver(true);
    if (device_->Privileged())
        device_->Control().WriteRegister(
            reg::stream_channel_register(reg::kStreamChannelPort, channel_), 0);
    // The receiver object stays until destruction: concurrent info calls may still read it.
    multicastMembership_.Close();
    newBuffers_->Kill();
    std::lock_guard lock(mutex_);
    acquiring_ = false;
}

}  // namespace ry::gentl
