#include <algorithm>

#include "modules.h"
#include "stream_module.h"

namespace ry::gentl {

stream::ReceiverSettings InterfaceState::StreamSettings() const {
    std::lock_guard lock(mutex);
    return streamSettings;
}

stream::ReceivePath InterfaceState::ReceivePath() const {
    std::lock_guard lock(mutex);
    return receivePath;
}

void InterfaceState::SetReceivePath(stream::ReceivePath path) {
    std::lock_guard lock(mutex);
    receivePath = path;
}

void InterfaceState::UpdateStreamSettings(const stream::ReceiverSettings& settings) {
    std::vector<std::shared_ptr<StreamModule>> live;
    {
        std::lock_guard lock(mutex);
        streamSettings = settings;
        std::erase_if(streams, [](const auto& weak) { return weak.expired(); });
        for (const auto& weak : streams)
            if (auto stream = weak.lock())
                live.push_back(std::move(stream));
    }
    for (const auto& stream : live)
        stream->ApplyInterfaceSettings(settings);
}

void InterfaceState::AddStream(const std::shared_ptr<StreamModule>& stream) {
    std::lock_guard lock(mutex);
    streams.push_back(stream);
}

SystemModule::SystemModule() {
    UpdateInterfaces(nullptr);
}

void SystemModule::UpdateInterfaces(bool* changed) {
    const auto hosts = client::ListHostInterfaces();
    std::lock_guard lock(mutex_);
    std::vector<std::shared_ptr<InterfaceState>> next;
    for (const auto& host : hosts) {
        const auto known = std::find_if(interfaces_.begin(), interfaces_.end(), [&](const auto& s) {
            return s->host.Id() == host.Id() && s->host.mask == host.mask;
        });
        next.push_back(known != interfaces_.end() ? *known
                                                  : std::make_shared<InterfaceState>(host));
    }
    if (changed)
        *changed = next != interfaces_;
    interfaces_ = std::move(next);
}

size_t SystemModule::InterfaceCount() const {
    std::lock_guard lock(mutex_);
    return interfaces_.size();
}

std::shared_ptr<InterfaceState> SystemModule::InterfaceAt(size_t index) const {
    std::lock_guard lock(mutex_);
    return index < interfaces_.size() ? interfaces_[index] : nullptr;
}

std::shared_ptr<InterfaceState> SystemModule::FindInterface(const std::string& id) const {
    std::lock_guard lock(mutex_);
    for (const auto& state : interfaces_)
        if (state->host.Id() == id)
            return state;
    return nullptr;
}

GC_ERROR InterfaceModule::UpdateDevices(bool* changed, uint64_t timeoutMs) {
    client::DiscoveryOptions options;
    options.timeoutMs = static_cast<uint32_t>(std::min<uint64_t>(timeoutMs, 60000));
    {
        std::lock_guard lock(state_->mutex);
        options.listOutsideSubnet = state_->listOutsideSubnet;
    }
    std::vector<client::DiscoveredDevice> found;
    const GC_ERROR rc = client::Discover(state_->host, options, found);
    if (rc != GC_ERR_SUCCESS)
        return rc;
    std::lock_guard lock(state_->mutex);
    bool differs = found.size() != state_->devices.size();
    for (size_t i = 0; !differs && i < found.size(); ++i)
        differs = found[i].Id() != state_->devices[i].Id() || found[i].ip != state_->devices[i].ip;
    if (changed)
        *changed = differs;
    state_->devices = std::move(found);
    return GC_ERR_SUCCESS;
}

std::vector<client::DiscoveredDevice> InterfaceModule::Devices() const {
    std::lock_guard lock(state_->mutex);
    return state_->devices;
}

GC_ERROR InterfaceModule::FindDevice(const std::string& idOrAddress,
                                     client::DiscoveredDevice& device) {
    const auto address = client::Ipv4FromText(idOrAddress);
    {
        std::lock_guard lock(state_->mutex);
        for (const auto& known : state_->devices) {
            if (known.Id() == idOrAddress || (address && known.ip == *address)) {
                device = known;
                return GC_ERR_SUCCESS;
            }
        }
    }
    if (!address)
        return GC_ERR_INVALID_ID;
    // Not listed yet: ask that address alone, so a device can be opened by address without
    // a broadcast (and from outside the interface's subnet).
    client::DiscoveryOptions options;
    options.destination = *address;
    options.listOutsideSubnet = true;
    options.timeoutMs = std::max<uint32_t>(settings_->gvcpTimeoutMs.load(), 100);
    std::vector<client::DiscoveredDevice> found;
    if (client::Discover(state_->host, options, found) != GC_ERR_SUCCESS || found.empty())
        return GC_ERR_INVALID_ID;
    device = found.front();
    return GC_ERR_SUCCESS;
}

}  // namespace ry::gentl
