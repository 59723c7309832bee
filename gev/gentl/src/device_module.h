// One opened camera: its control channel, the privilege and heartbeat that keep it, the
// message channel that brings its events, and the error event that reports its loss.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "modules.h"
#include "ry/gev/client/control_channel.h"
#include "ry/gev/client/heartbeat.h"
#include "ry/gev/client/message_channel.h"

namespace ry::gentl {

class DeviceModule : public std::enable_shared_from_this<DeviceModule> {
  public:
    static constexpr ModuleKind kKind = ModuleKind::Device;

    DeviceModule(std::shared_ptr<InterfaceState> iface, std::shared_ptr<SystemSettings> settings,
                 client::DiscoveredDevice info);
    ~DeviceModule();

    GC_ERROR Open(DEVICE_ACCESS_FLAGS flags);
    void Close();
    GC_ERROR ReleasePrivilege();

    bool Privileged() const;
    client::ControlChannel& Control() { return control_; }
    const client::DiscoveredDevice& Info() const { return info_; }
    const std::shared_ptr<InterfaceState>& Interface() const { return iface_; }
    const std::shared_ptr<SystemSettings>& Settings() const { return settings_; }
    uint32_t StreamChannelCount() const { return streamChannels_; }
    uint64_t TimestampFrequency() const { return timestampFrequency_; }
    DEVICE_ACCESS_FLAGS AccessFlags() const { return flags_; }
    const std::shared_ptr<EventChannel>& ErrorEvents() const { return errorEvents_; }

    // Applies the system's GVCP time-out to the control channel (it may change any time).
    void RefreshBudget();
    GC_ERROR ReadPort(uint64_t address, void* buffer, size_t size);
    GC_ERROR WritePort(uint64_t address, const void* buffer, size_t size);
    GC_ERROR PortUrl(std::string& url);

    GC_ERROR SetHeartbeatTimeout(uint32_t timeoutMs);
    uint32_t HeartbeatTimeout() const;
    GC_ERROR SetHeartbeatCheckCount(int32_t count);
    int32_t HeartbeatCheckCount() const;

    GC_ERROR SetEventRoute(uint16_t eventId, const std::string& name, RY_EVENT_CALLBACK callback,
                           void* context);
    void SetMulticast(bool enable, uint32_t group);
    bool Multicast(uint32_t& group) const;

    // The stream of this device, one at a time.
    bool ClaimStream(const std::shared_ptr<StreamModule>& stream);
    std::shared_ptr<StreamModule> Stream() const;

  private:
    struct EventRoute {
        std::string name;
        RY_EVENT_CALLBACK callback = nullptr;
        void* context = nullptr;
    };
    GC_ERROR TakePrivilege(DEVICE_ACCESS_FLAGS flags);
    void OnDeviceEvent(const gev::EventItem& item);
    void OnLost(GC_ERROR error);

    const std::shared_ptr<InterfaceState> iface_;
    const std::shared_ptr<SystemSettings> settings_;
    const client::DiscoveredDevice info_;
    client::ControlChannel control_;
    std::unique_ptr<client::Heartbeat> heartbeat_;
    client::MessageChannel messages_;
    std::shared_ptr<EventChannel> errorEvents_ = std::make_shared<EventChannel>();

    mutable std::mutex mutex_;
    DEVICE_ACCESS_FLAGS flags_ = DEVICE_ACCESS_READONLY;
    bool privileged_ = false;
    uint32_t streamChannels_ = 0;
    uint32_t messageChannels_ = 0;
    uint64_t timestampFrequency_ = 0;
    uint32_t heartbeatTimeoutMs_ = 3000;
    uint32_t heartbeatCheckCount_ = 3;
    bool multicast_ = false;
    uint32_t multicastGroup_ = 0;
    std::map<uint16_t, EventRoute> routes_;
    std::weak_ptr<StreamModule> stream_;
};

}  // namespace ry::gentl
