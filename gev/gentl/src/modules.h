// The module objects behind the C handles: system, interface, device, stream and event.
// Each has kKind for the handle registry. Shared settings live in small structs that the
// system and interface hand down to what they open, so a pseudo-address write reaches the
// modules it governs.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "RyGenTL.h"
#include "event_channel.h"
#include "handle_registry.h"
#include "ry/gev/client/discovery.h"
#include "ry/gev/client/host_interfaces.h"
#include "ry/gev/stream/frame_receiver.h"

namespace ry::gentl {

namespace client = ry::gev::client;
namespace stream = ry::gev::stream;

class StreamModule;
class DeviceModule;

// Written through the system port.
struct SystemSettings {
    std::atomic<uint32_t> gvcpTimeoutMs{500};
    std::atomic<bool> mtuOptimize{false};
    std::atomic<uint32_t> mtuTimeoutMs{200};
};

// One per host address, shared by every handle opened on it, so the device list and the
// stream settings outlive a single TLOpenInterface/IFClose pair.
struct InterfaceState {
    explicit InterfaceState(client::HostInterface hostInterface) : host(std::move(hostInterface)) {}

    const client::HostInterface host;
    mutable std::mutex mutex;
    bool listOutsideSubnet = false;
    std::vector<client::DiscoveredDevice> devices;
    stream::ReceiverSettings streamSettings;
    stream::ReceivePath receivePath = stream::ReceivePath::Automatic;  // for streams opened next
    std::vector<std::weak_ptr<StreamModule>> streams;

    stream::ReceiverSettings StreamSettings() const;
    stream::ReceivePath ReceivePath() const;
    void SetReceivePath(stream::ReceivePath path);
    // Changes the settings and pushes them into every stream still open on this interface.
    void UpdateStreamSettings(const stream::ReceiverSettings& settings);
    void AddStream(const std::shared_ptr<StreamModule>& stream);
};

class SystemModule {
  public:
    static constexpr ModuleKind kKind = ModuleKind::System;

    SystemModule();
    // Re-reads the host's interfaces; `changed` tells whether the list differs.
    void UpdateInterfaces(bool* changed);
    size_t InterfaceCount() const;
    std::shared_ptr<InterfaceState> InterfaceAt(size_t index) const;
    std::shared_ptr<InterfaceState> FindInterface(const std::string& id) const;
    const std::shared_ptr<SystemSettings>& Settings() const { return settings_; }

  private:
    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<InterfaceState>> interfaces_;
    std::shared_ptr<SystemSettings> settings_ = std::make_shared<SystemSettings>();
};

class InterfaceModule {
  public:
    static constexpr ModuleKind kKind = ModuleKind::Interface;

    InterfaceModule(std::shared_ptr<InterfaceState> state, std::shared_ptr<SystemSettings> settings)
        : state_(std::move(state)), settings_(std::move(settings)) {}

    const std::shared_ptr<InterfaceState>& State() const { return state_; }
    const std::shared_ptr<SystemSettings>& Settings() const { return settings_; }
    GC_ERROR UpdateDevices(bool* changed, uint64_t timeoutMs);
    // By identifier, or by dotted address (unicast discovery when not listed yet).
    GC_ERROR FindDevice(const std::string& idOrAddress, client::DiscoveredDevice& device);
    std::vector<client::DiscoveredDevice> Devices() const;

  private:
    std::shared_ptr<InterfaceState> state_;
    std::shared_ptr<SystemSettings> settings_;
};

class EventModule {
  public:
    static constexpr ModuleKind kKind = ModuleKind::Event;

    EventModule(std::shared_ptr<EventChannel> channel, EVENT_TYPE type, void* source)
        : channel(std::move(channel)), type(type), source(source) {}

    const std::shared_ptr<EventChannel> channel;
    const EVENT_TYPE type;
    void* const source;
};

// Answers an interface information command for one host address.
GC_ERROR QueryInterfaceInfo(const client::HostInterface& host, INTERFACE_INFO_CMD cmd,
                            INFO_DATATYPE* type, void* buffer, size_t* size);

// Answers a device information command from what discovery learned.
GC_ERROR QueryDeviceInfo(const client::DiscoveredDevice& device, DEVICE_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size);

}  // namespace ry::gentl
