#include "system/flat_handles.h"

#include <map>
#include <mutex>
#include <set>

namespace RYSDK::flat {
namespace {

struct HandleTable {
    std::mutex lock;
    std::unique_ptr<RyGigE> system;
    std::set<const RyInterface*> interfaces;
    std::map<const RyCamera*, const RyInterface*> cameras;  // camera -> its interface
};

HandleTable& Table() noexcept {
    static HandleTable table;
    return table;
}

template <typename Map, typename Key>
bool Holds(const Map& map, Key key) noexcept {
    return key != nullptr && map.find(key) != map.end();
}

}  // namespace

RyGigE* FindSystem(RYGIGE_HANDLE handle) noexcept {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    RyGigE* system = table.system.get();
    return handle != nullptr && ToHandle(system) == handle ? system : nullptr;
}

RyInterface* FindInterface(RYINTERFACE_HANDLE handle) noexcept {
    auto& table = Table();
    auto* adapter = reinterpret_cast<RyInterface*>(handle);
    std::lock_guard guard(table.lock);
    return Holds(table.interfaces, adapter) ? adapter : nullptr;
}

RyCamera* FindCamera(RYCAMERA_HANDLE handle) noexcept {
    auto& table = Table();
    auto* camera = reinterpret_cast<RyCamera*>(handle);
    std::lock_guard guard(table.lock);
    return Holds(table.cameras, camera) ? camera : nullptr;
}

RyGigE* ProcessSystem() noexcept {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    return table.system.get();
}

bool CreateSystem(RyGigE*& created) {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    if (table.system != nullptr)
        return false;
    table.system = std::make_unique<RyGigE>();
    created = table.system.get();
    return true;
}

std::unique_ptr<RyGigE> TakeSystem(RYGIGE_HANDLE handle) noexcept {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    if (handle == nullptr || ToHandle(table.system.get()) != handle)
        return nullptr;
    table.cameras.clear();
    table.interfaces.clear();
    return std::move(table.system);
}

void KeepInterface(RyInterface* adapter) {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    if (adapter != nullptr)
        table.interfaces.insert(adapter);
}

void KeepCamera(RyCamera* camera) {
    if (camera == nullptr)
        return;
    RyInterface* adapter = nullptr;
    camera->GetRyInterface(&adapter);
    auto& table = Table();
    std::lock_guard guard(table.lock);
    table.cameras.emplace(camera, adapter);
    if (adapter != nullptr)
        table.interfaces.insert(adapter);
}

void ForgetCamera(const RyCamera* camera) noexcept {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    table.cameras.erase(camera);
}

void ForgetCamerasOf(const RyInterface* adapter) noexcept {
    auto& table = Table();
    std::lock_guard guard(table.lock);
    std::erase_if(table.cameras, [adapter](const auto& entry) { return entry.second == adapter; });
}

}  // namespace RYSDK::flat
