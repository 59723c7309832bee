// The shape every plain flat function shares: find the handle (RESULT_ERROR_INVALID_PARAMETER
// when the table does not hold it), then call one method inside the exception guard. The C
// header's records and enumerations have the C++ ones' layouts (checked below and in the
// tests), so arguments pass through by a cast that checks size and alignment.
#pragma once

#include <type_traits>

#include "system/flat_handles.h"

namespace RYSDK::flat {

// A pointer to a C record or enumeration as the C++ type of the same layout.
template <typename To, typename From>
To* As(From* from) noexcept {
    static_assert(sizeof(To) == sizeof(From) && alignof(To) == alignof(From));
    return reinterpret_cast<To*>(from);
}

// A C enumeration value (a fixed-width integer) as the C++ enumeration.
template <typename To, typename From>
constexpr To Enum(From value) noexcept {
    static_assert(std::is_enum_v<To> && sizeof(To) == sizeof(From));
    return static_cast<To>(value);
}

// Callback types differ only in their records' namespaces; the records have one layout, so
// the C function is called through the C++ type. The detour through void (*)() tells the
// compiler the cast is meant.
template <typename To, typename From>
To FunctionAs(From callback) noexcept {
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(callback));
}
inline RYSDK::pImageCallbackFn Callback(::pImageCallbackFn callback) noexcept {
    return FunctionAs<RYSDK::pImageCallbackFn>(callback);
}
inline RYSDK::pDisconnectCallbackFn Callback(::pDisconnectCallbackFn callback) noexcept {
    return FunctionAs<RYSDK::pDisconnectCallbackFn>(callback);
}
inline RYSDK::pEventCallbackFn Callback(::pEventCallbackFn callback) noexcept {
    return FunctionAs<RYSDK::pEventCallbackFn>(callback);
}

template <typename Object, typename Body>
::RESULT OnObject(Object* object, const core::LogSite& site, Body&& body) noexcept {
    if (object == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    return core::RunGuarded(site, __LINE__, [&] { return body(*object); });
}

template <typename Body>
::RESULT OnSystem(RYGIGE_HANDLE handle, const core::LogSite& site, Body&& body) noexcept {
    return OnObject<RyGigE>(FindSystem(handle), site, body);
}
template <typename Body>
::RESULT OnInterface(RYINTERFACE_HANDLE handle, const core::LogSite& site, Body&& body) noexcept {
    return OnObject<RyInterface>(FindInterface(handle), site, body);
}
template <typename Body>
::RESULT OnCamera(RYCAMERA_HANDLE handle, const core::LogSite& site, Body&& body) noexcept {
    return OnObject<RyCamera>(FindCamera(handle), site, body);
}

}  // namespace RYSDK::flat

#define RY_FLAT_SITE(name)                          \
    static constexpr ::RYSDK::core::LogSite kSite { \
        L"RyFlat", L## #name                        \
    }

// RY_FLAT_FORWARD(Camera, CameraGetWidth, (RYCAMERA_HANDLE handle, uint32_t* width),
//                 GetWidth(width)): a flat function that checks its handle and calls
// `call` on the object. The handle parameter is always named `handle`.
#define RY_FLAT_FORWARD(Kind, name, params, call)                                                 \
    extern "C" RYSDK_API ::RESULT name params {                                                   \
        RY_FLAT_SITE(name);                                                                       \
        return ::RYSDK::flat::On##Kind(handle, kSite, [&](auto& object) { return object.call; }); \
    }

// The same for a method that takes `out` by reference: a null `out` gives
// RESULT_ERROR_INVALID_PARAMETER and calls nothing.
#define RY_FLAT_FORWARD_OUT(Kind, name, params, out, call)                                 \
    extern "C" RYSDK_API ::RESULT name params {                                            \
        RY_FLAT_SITE(name);                                                                \
        return ::RYSDK::flat::On##Kind(handle, kSite, [&](auto& object) {                  \
            return out == nullptr ? ::RYSDK::RESULT_ERROR_INVALID_PARAMETER : object.call; \
        });                                                                                \
    }

namespace RYSDK::flat {

inline void Keep(RyInterface* adapter) {
    KeepInterface(adapter);
}
inline void Keep(RyCamera* camera) {
    KeepCamera(camera);
}

// Runs `open` (which fills an Object**) and hands the object out: recorded in the table and
// stored through `out` whenever the method gives one back, which includes a camera whose
// description could not be loaded.
template <typename Object, typename Handle, typename Open>
RESULT HandOut(Handle* out, Open&& open) {
    if (out == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    Object* made = nullptr;
    const RESULT result = open(&made);
    if (made != nullptr) {
        Keep(made);
        *out = ToHandle(made);
    }
    return result;
}

// Opens a camera through the system or an interface (`key`: its index or name) with the C
// arguments, whose callbacks take the C records.
template <typename Owner, typename Key>
RESULT OpenCameraOf(Owner& owner, Key key, RYCAMERA_HANDLE* out, uint32_t buffers, uint32_t width,
                    uint32_t height, uint32_t packetSize, void* object, ::pImageCallbackFn image,
                    ::pDisconnectCallbackFn disconnect) {
    return HandOut<RyCamera>(out, [&](RyCamera** opened) {
        return owner.OpenCamera(key, opened, buffers, width, height, packetSize, object,
                                Callback(image), Callback(disconnect));
    });
}

// The switches are bool in the classes and int32_t in C; `enabled` is written only on
// success.
template <typename Get>
RESULT ReadSwitch(int32_t* enabled, Get&& get) {
    if (enabled == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    bool value = false;
    const RESULT result = get(&value);
    if (result == RESULT_SUCCESS)
        *enabled = value ? 1 : 0;
    return result;
}

}  // namespace RYSDK::flat
