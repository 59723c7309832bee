// State of the loaded library: whether GCInitLib ran and the registry of live handles. The C
// interface has no context argument, so this one object per process is where calls meet.
#pragma once

#include <exception>
#include <mutex>
#include <new>

#include "RyGenTL.h"
#include "handle_registry.h"

namespace ry::gentl {

class SystemModule;

struct Library {
    std::mutex mutex;
    bool initialized = false;
    void* system = nullptr;  // the TL handle while open
    HandleRegistry handles;
};

Library& TheLibrary();

// Closes every module still registered (devices stop their threads, streams their
// receivers) and forgets every handle.
void CloseEverything();

// Runs one C entry point: exceptions never cross the C boundary.
template <typename Body>
GC_ERROR Guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return GC_ERR_MEMORY_ALLOCATION;
    } catch (...) {
        return GC_ERR_ERROR;
    }
}

template <typename T>
std::shared_ptr<T> Find(const void* handle) {
    return TheLibrary().handles.Find<T>(handle);
}

// Runs one C entry point on the module behind `handle`, or answers GC_ERR_INVALID_HANDLE.
template <typename T, typename Body>
GC_ERROR WithModule(const void* handle, Body&& body) noexcept {
    return Guarded([&]() -> GC_ERROR {
        const auto module = Find<T>(handle);
        if (!module)
            return GC_ERR_INVALID_HANDLE;
        return body(module);
    });
}

}  // namespace ry::gentl
