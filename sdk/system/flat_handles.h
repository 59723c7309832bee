// The handles of the flat C interface. Handles are the objects' own addresses, but none is
// dereferenced before this table has found it among the objects the flat interface handed
// out and has not seen closed since: a null, foreign or stale handle gives
// RESULT_ERROR_INVALID_PARAMETER instead of a crash. Every flat entry point checks its handle
// here and nowhere else.
//
// The table holds the one process-wide system object of OpenRyGigE, the interfaces and the
// cameras opened through the flat functions, each with the object it belongs to, so that
// closing an interface or the system forgets everything below it at once.
//
// Thread: any. The table takes its own lock; the objects it returns are used without it.
#pragma once

#include <memory>

#include "core/log/exception_guard.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "rysdk/rysdk_c.h"

namespace RYSDK::flat {

// Lookups: the object behind a handle, or null.
RyGigE* FindSystem(RYGIGE_HANDLE handle) noexcept;
RyInterface* FindInterface(RYINTERFACE_HANDLE handle) noexcept;
RyCamera* FindCamera(RYCAMERA_HANDLE handle) noexcept;
// The object OpenRyGigE created, whether or not its Open succeeded.
RyGigE* ProcessSystem() noexcept;

// Creates the process-wide system object; false when one exists already.
bool CreateSystem(RyGigE*& created);
// Takes the process-wide object out of the table (with everything opened through it) when
// `handle` is that object; null otherwise.
std::unique_ptr<RyGigE> TakeSystem(RYGIGE_HANDLE handle) noexcept;

// Records what a flat function hands out. A camera brings its interface along.
void KeepInterface(RyInterface* adapter);
void KeepCamera(RyCamera* camera);
// Forgets a camera that was closed, or the cameras of an interface that was closed.
void ForgetCamera(const RyCamera* camera) noexcept;
void ForgetCamerasOf(const RyInterface* adapter) noexcept;

// Handle conversions, for the objects' own addresses.
inline RYGIGE_HANDLE ToHandle(RyGigE* system) noexcept {
    return reinterpret_cast<RYGIGE_HANDLE>(system);
}
inline RYINTERFACE_HANDLE ToHandle(RyInterface* adapter) noexcept {
    return reinterpret_cast<RYINTERFACE_HANDLE>(adapter);
}
inline RYCAMERA_HANDLE ToHandle(RyCamera* camera) noexcept {
    return reinterpret_cast<RYCAMERA_HANDLE>(camera);
}

}  // namespace RYSDK::flat
