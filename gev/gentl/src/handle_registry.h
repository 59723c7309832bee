// Every handle the C interface gives out is the address of a module object registered here.
// A call first looks its handle up, so a stale or made-up pointer is answered with
// GC_ERR_INVALID_HANDLE instead of being dereferenced, and holds a shared reference for the
// duration of the call so a concurrent close cannot free the object under it.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace ry::gentl {

enum class ModuleKind { System, Interface, Device, Stream, Event };

class HandleRegistry {
  public:
    template <typename T>
    void* Add(std::shared_ptr<T> module) {
        std::lock_guard lock(mutex_);
        void* handle = module.get();
        entries_[handle] = Entry{T::kKind, std::move(module)};
        return handle;
    }

    template <typename T>
    std::shared_ptr<T> Find(const void* handle) const {
        std::lock_guard lock(mutex_);
        const auto found = entries_.find(handle);
        if (found == entries_.end() || found->second.kind != T::kKind)
            return nullptr;
        return std::static_pointer_cast<T>(found->second.module);
    }

    // Takes the handle out; the caller closes the module it gets back.
    template <typename T>
    std::shared_ptr<T> Remove(const void* handle) {
        std::lock_guard lock(mutex_);
        const auto found = entries_.find(handle);
        if (found == entries_.end() || found->second.kind != T::kKind)
            return nullptr;
        auto module = std::static_pointer_cast<T>(found->second.module);
        entries_.erase(found);
        return module;
    }

    template <typename T, typename Predicate>
    std::shared_ptr<T> FindIf(Predicate&& matches) const {
        std::lock_guard lock(mutex_);
        for (const auto& [handle, entry] : entries_) {
            if (entry.kind != T::kKind)
                continue;
            auto module = std::static_pointer_cast<T>(entry.module);
            if (matches(*module))
                return module;
        }
        return nullptr;
    }

    bool Contains(const void* handle) const {
        std::lock_guard lock(mutex_);
        return entries_.count(handle) != 0;
    }

    // Every registered module of one kind, for closing what the application left open.
    template <typename T>
    std::vector<std::shared_ptr<T>> TakeAll() {
        std::lock_guard lock(mutex_);
        std::vector<std::shared_ptr<T>> taken;
        for (auto it = entries_.begin(); it != entries_.end();) {
            if (it->second.kind == T::kKind) {
                taken.push_back(std::static_pointer_cast<T>(it->second.module));
                it = entries_.erase(it);
            } else {
                ++it;
            }
        }
        return taken;
    }

  private:
    struct Entry {
        ModuleKind kind;
        std::shared_ptr<void> module;
    };
    mutable std::mutex mutex_;
    std::unordered_map<const void*, Entry> entries_;
};

}  // namespace ry::gentl
