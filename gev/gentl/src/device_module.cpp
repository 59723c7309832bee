#include "device_module.h"

#include <algorithm>

#include "ry/gev/protocol/bootstrap.h"
#include "stream_module.h"

namespace ry::gentl {
namespace {

namespace reg = ry::gev::bootstrap;
constexpr uint32_t kCcpExclusive = 0x1;
constexpr uint32_t kCcpControl = 0x2;
constexpr uint32_t kMinHeartbeatMs = 500;

// What each request of a close may take when the application's setting has no limit.
constexpr uint32_t kClosingBudgetMs = 500;

}  // namespace

DeviceModule::DeviceModule(std::shared_ptr<InterfaceState> iface,
                           std::shared_ptr<SystemSettings> settings, client::DiscoveredDevice info)
    : iface_(std::move(iface)), settings_(std::move(settings)), info_(std::move(info)) {}

DeviceModule::~DeviceModule() {
    Close();
}

void DeviceModule::RefreshBudget() {
    control_.SetBudget({settings_->gvcpTimeoutMs.load(), 3});
}

GC_ERROR DeviceModule::Open(DEVICE_ACCESS_FLAGS flags) {
    if (flags < DEVICE_ACCESS_NONE || flags > DEVICE_ACCESS_EXCLUSIVE)
        return GC_ERR_INVALID_PARAMETER;
    if (!control_.Open(iface_->host.ip, info_.ip, gev::kGvcpPort, nullptr))
        return GC_ERR_SOCKET;
    RefreshBudget();
    flags_ = flags;
    if (flags == DEVICE_ACCESS_CONTROL || flags == DEVICE_ACCESS_EXCLUSIVE) {
        const GC_ERROR rc = TakePrivilege(flags);
        if (rc != GC_ERR_SUCCESS)
            return rc;
    }
    const GC_ERROR rc = control_.ReadRegister(reg::kStreamChannelCount, streamChannels_);
    if (rc != GC_ERR_SUCCESS) {
        Close();
        return rc;
    }
    if (control_.ReadRegister(reg::kMessageChannelCount, messageChannels_) != GC_ERR_SUCCESS)
        messageChannels_ = 0;
    uint32_t high = 0, low = 0;
    if (control_.ReadRegister(reg::kTimestampFrequencyHigh, high) == GC_ERR_SUCCESS &&
        control_.ReadRegister(reg::kTimestampFrequencyLow, low) == GC_ERR_SUCCESS)
        timestampFrequency_ = (uint64_t{high} << 32) | low;
    return GC_ERR_SUCCESS;
}

GC_ERROR DeviceModule::TakePrivilege(DEVICE_ACCESS_FLAGS flags) {
    const uint32_t request = flags == DEVICE_ACCESS_EXCLUSIVE ? kCcpExclusive : kCcpControl;
    GC_ERROR rc = control_.WriteRegister(reg::kControlChannelPrivilege, request);
    if (rc != GC_ERR_SUCCESS) {
        // Some devices drop a refused write without an answer: a time-out while another
        // application holds the privilege is a refusal, not a network fault.
        uint32_t holder = 0;
        if (rc == GC_ERR_TIMEOUT &&
            control_.ReadRegister(reg::kControlChannelPrivilege, holder) == GC_ERR_SUCCESS &&
            (holder & (kCcpExclusive | kCcpControl)) != 0)
            rc = GC_ERR_ACCESS_DENIED;
        return rc;
    }
    uint32_t deviceTimeout = 0;
    if (control_.ReadRegister(reg::kHeartbeatTimeout, deviceTimeout) == GC_ERR_SUCCESS &&
        deviceTimeout >= kMinHeartbeatMs)
        heartbeatTimeoutMs_ = deviceTimeout;
    heartbeat_ =
        std::make_unique<client::Heartbeat>(control_, [this](GC_ERROR error) { OnLost(error); });
    heartbeat_->SetTimeoutMs(heartbeatTimeoutMs_);
    heartbeat_->SetCheckCount(heartbeatCheckCount_);
    heartbeat_->Start();
    std::lock_guard lock(mutex_);
    privileged_ = true;
    return GC_ERR_SUCCESS;
}

void DeviceModule::OnLost(GC_ERROR error) {
    {
        std::lock_guard lock(mutex_);
        privileged_ = false;
    }
    errorEvents_->Push(EventRecord::Of(RY_DEVICE_ERROR_DATA{0, error}));
}

GC_ERROR DeviceModule::ReleasePrivilege() {
    if (heartbeat_)
        heartbeat_->Stop();
    bool wasPrivileged = false;
    {
        std::lock_guard lock(mutex_);
        std::swap(wasPrivileged, privileged_);
    }
    if (!wasPrivileged)
        return GC_ERR_SUCCESS;
    if (messages_.Running())
        control_.WriteRegister(reg::kMessageChannelPort, 0);
    return control_.WriteRegister(reg::kControlChannelPrivilege, 0);
}

void DeviceModule::Close() {
    // A request waiting without limit must not keep the close waiting for it, and the close's
    // own requests must end even when the device is gone.
    control_.AbortWaits();
    if (control_.Budget().timeoutMs == 0)
        control_.SetBudget({kClosingBudgetMs, 3});
    if (auto stream = Stream())
        stream->Close();
    messages_.Stop();
    if (control_.LocalPort() != 0)
        ReleasePrivilege();
    heartbeat_.reset();
    errorEvents_->Kill();
}

bool DeviceModule::Privileged() const {
    std::lock_guard lock(mutex_);
    return privileged_;
}

GC_ERROR DeviceModule::ReadPort(uint64_t address, void* buffer, size_t size) {
    RefreshBudget();
    return control_.ReadMemory(address, std::span(static_cast<uint8_t*>(buffer), size));
}

GC_ERROR DeviceModule::WritePort(uint64_t address, const void* buffer, size_t size) {
    if (flags_ == DEVICE_ACCESS_READONLY || flags_ == DEVICE_ACCESS_NONE)
        return GC_ERR_ACCESS_DENIED;
    RefreshBudget();
    return control_.WriteMemory(address, std::span(static_cast<const uint8_t*>(buffer), size));
}

GC_ERROR DeviceModule::PortUrl(std::string& url) {
    std::string text(reg::kUrlSize, '\0');
    const GC_ERROR rc = ReadPort(reg::kFirstUrl, text.data(), text.size());
    if (rc != GC_ERR_SUCCESS)
        return rc;
    text.resize(std::find(text.begin(), text.end(), '\0') - text.begin());
    url = std::move(text);
    return GC_ERR_SUCCESS;
}

GC_ERROR DeviceModule::SetHeartbeatTimeout(uint32_t timeoutMs) {
    if (timeoutMs < kMinHeartbeatMs)
        return GC_ERR_INVALID_PARAMETER;
    uint32_t previous = 0;
    {
        std::lock_guard lock(mutex_);
        previous = heartbeatTimeoutMs_;
        heartbeatTimeoutMs_ = timeoutMs;
        // Beat at the new pace before the device applies a shorter time-out.
        if (heartbeat_)
            heartbeat_->SetTimeoutMs(timeoutMs);
    }
    if (!Privileged())
        return GC_ERR_SUCCESS;
    const GC_ERROR rc = control_.WriteRegister(reg::kHeartbeatTimeout, timeoutMs);
    if (rc != GC_ERR_SUCCESS) {
        std::lock_guard lock(mutex_);
        heartbeatTimeoutMs_ = previous;
        if (heartbeat_)
            heartbeat_->SetTimeoutMs(previous);
    }
    return rc;
}

uint32_t DeviceModule::HeartbeatTimeout() const {
    std::lock_guard lock(mutex_);
    return heartbeatTimeoutMs_;
}

GC_ERROR DeviceModule::SetHeartbeatCheckCount(int32_t count) {
    if (count < 1 || count > 100)
        return GC_ERR_INVALID_PARAMETER;
    std::lock_guard lock(mutex_);
    heartbeatCheckCount_ = static_cast<uint32_t>(count);
    if (heartbeat_)
        heartbeat_->SetCheckCount(heartbeatCheckCount_);
    return GC_ERR_SUCCESS;
}

int32_t DeviceModule::HeartbeatCheckCount() const {
    std::lock_guard lock(mutex_);
    return static_cast<int32_t>(heartbeatCheckCount_);
}

GC_ERROR DeviceModule::SetEventRoute(uint16_t eventId, const std::string& name,
                                     RY_EVENT_CALLBACK callback, void* context) {
    if (messageChannels_ == 0)
        return GC_ERR_NOT_AVAILABLE;
    if (!Privileged())
        return GC_ERR_ACCESS_DENIED;
    {
        std::lock_guard lock(mutex_);
        if (!callback) {
            routes_.erase(eventId);
            return GC_ERR_SUCCESS;
        }
        routes_[eventId] = EventRoute{name, callback, context};
    }
    if (messages_.Running())
        return GC_ERR_SUCCESS;
    if (!messages_.Start(
            iface_->host.ip, info_.ip, [this](const gev::EventItem& item) { OnDeviceEvent(item); },
            nullptr))
        return GC_ERR_SOCKET;
    const client::RegisterPair setup[] = {{reg::kMessageChannelDestination, iface_->host.ip},
                                          {reg::kMessageChannelPort, messages_.LocalPort()}};
    return control_.WriteRegisters(setup);
}

void DeviceModule::OnDeviceEvent(const gev::EventItem& item) {
    EventRoute route;
    {
        std::lock_guard lock(mutex_);
        const auto found = routes_.find(item.event_id);
        if (found == routes_.end())
            return;
        route = found->second;
    }
    RY_EVENT_DATA data{};
    data.eventId = item.event_id;
    data.streamChannel = item.stream_channel;
    data.dataSize = static_cast<uint32_t>(item.data.size());
    data.context = route.context;
    data.blockId = item.block_id;
    data.timestamp = item.timestamp;
    data.data = item.data.empty() ? nullptr : item.data.data();
    route.callback(route.name.data(), &data);
}

void DeviceModule::SetMulticast(bool enable, uint32_t group) {
    std::lock_guard lock(mutex_);
    multicast_ = enable;
    multicastGroup_ = group;
}

bool DeviceModule::Multicast(uint32_t& group) const {
    std::lock_guard lock(mutex_);
    group = multicastGroup_;
    return multicast_;
}

bool DeviceModule::ClaimStream(const std::shared_ptr<StreamModule>& stream) {
    std::lock_guard lock(mutex_);
    if (auto current = stream_.lock(); current && current->IsOpen())
        return false;
    stream_ = stream;
    return true;
}

std::shared_ptr<StreamModule> DeviceModule::Stream() const {
    std::lock_guard lock(mutex_);
    return stream_.lock();
}

}  // namespace ry::gentl
