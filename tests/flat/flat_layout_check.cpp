// The C header declares its own records and enumerations beside the C++ ones; this file
// makes the compiler refuse any drift between the two: every enumerator has the same value
// (the result and pixel format codes come from one list, the rest are checked by name),
// every record the same size, alignment and field offsets. (The flat functions themselves
// are defined against the C header, so their declarations cannot drift from it.)
#include <cstddef>
#include <cstdint>

#include "rysdk/RyCamera.h"
#include "rysdk/RyCameraTypes.h"
#include "rysdk/RyFeatureTypes.h"
#include "rysdk/RyInfo.h"
#include "rysdk/RyPixelFormat.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"
#include "rysdk/rysdk_c.h"

namespace {

#define RY_SAME_VALUE(name) \
    static_assert(static_cast<int64_t>(::name) == static_cast<int64_t>(RYSDK::name), #name);
#define RY_SAME_CODE(name, value) RY_SAME_VALUE(name)

// clang-format off
#define RY_OTHER_ENUMERATORS(X) \
    X(CCP_PRIVILEGE_NONE) \
    X(CCP_PRIVILEGE_EXCLUSIVE) \
    X(CCP_PRIVILEGE_CONTROL) \
    X(CCP_PRIVILEGE_MONITOR) \
    X(TRIGGER_SOURCE_SOFTWARE) \
    X(TRIGGER_SOURCE_EXTERNAL) \
    X(TRIGGER_ACTIVATION_RISING_EDGE) \
    X(TRIGGER_ACTIVATION_FALLING_EDGE) \
    X(TESTIMAGE_OFF) \
    X(TESTIMAGE_HORIZONTAL_RAMP) \
    X(TESTIMAGE_VERTICAL_RAMP) \
    X(TESTIMAGE_DIAGONAL_RAMP) \
    X(READOUT_NORMAL) \
    X(READOUT_FAST) \
    X(EXPOSURE_MODE_TIMED) \
    X(EXPOSURE_MODE_TRIGGER_WIDTH) \
    X(GAIN_SEL_ALL) \
    X(GAIN_SEL_RED) \
    X(GAIN_SEL_GREEN) \
    X(GAIN_SEL_BLUE) \
    X(BLACKLEVEL_SEL_ALL) \
    X(BLACKLEVEL_SEL_RED) \
    X(BLACKLEVEL_SEL_GREEN) \
    X(BLACKLEVEL_SEL_BLUE) \
    X(STROBE_POLARITY_ACTIVE_HIGH) \
    X(STROBE_POLARITY_ACTIVE_LOW) \
    X(GET_CUSTOM_COMMAND_VALUE) \
    X(GET_CUSTOM_COMMAND_NUM) \
    X(GET_CUSTOM_COMMAND_MIN) \
    X(GET_CUSTOM_COMMAND_MAX) \
    X(GET_CUSTOM_COMMAND_INC) \
    X(GET_CUSTOM_COMMAND_INDEX) \
    X(STREAM_INFO_LOST_FRAMES) \
    X(STREAM_INFO_MISSING_PACKETS)
// clang-format on

RY_RESULT_CODES(RY_SAME_CODE)
RY_PIXEL_FORMAT_CODES(RY_SAME_CODE)
RY_PIXEL_FORMAT_MAKER_CODES(RY_SAME_CODE)
RY_OTHER_ENUMERATORS(RY_SAME_VALUE)
static_assert(RYSDK::RESULT_COUNT == 55, "a result was added: list it above and in the C header");

// Every enumeration is passed as its fixed-width C type.
template <typename C, typename Cxx>
constexpr bool kSameScalar = sizeof(C) == sizeof(Cxx) && alignof(C) == alignof(Cxx);
static_assert(kSameScalar<::RESULT, RYSDK::RESULT>);
static_assert(kSameScalar<::PIXEL_FORMAT, RYSDK::PIXEL_FORMAT>);
static_assert(kSameScalar<::CCP_PRIVILEGE, RYSDK::CCP_PRIVILEGE>);
static_assert(kSameScalar<::TRIGGER_SOURCE, RYSDK::TRIGGER_SOURCE>);
static_assert(kSameScalar<::TESTIMAGE, RYSDK::TESTIMAGE>);
static_assert(kSameScalar<::GAIN_SEL, RYSDK::GAIN_SEL>);
static_assert(kSameScalar<::STREAM_INFO, RYSDK::STREAM_INFO>);

#define RY_SAME_FIELD(C, Cxx, field)                                     \
    static_assert(offsetof(::C, field) == offsetof(RYSDK::Cxx, field) && \
                      sizeof(::C::field) == sizeof(RYSDK::Cxx::field),   \
                  #C "::" #field);
#define RY_SAME_RECORD(C, Cxx) \
    static_assert(sizeof(::C) == sizeof(RYSDK::Cxx) && alignof(::C) == alignof(RYSDK::Cxx), #C);

RY_SAME_RECORD(OBJECT_INFO, OBJECT_INFO)
RY_SAME_FIELD(OBJECT_INFO, OBJECT_INFO, pContext)
RY_SAME_RECORD(IMAGE_INFO, IMAGE_INFO)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, result)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, blockId)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, pixelFormat)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, width)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, height)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, timestamp)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, bufferStatus)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, frameFlag)
RY_SAME_FIELD(IMAGE_INFO, IMAGE_INFO, pImage)
RY_SAME_RECORD(DISCONNECT_INFO, DISCONNECT_INFO)
RY_SAME_FIELD(DISCONNECT_INFO, DISCONNECT_INFO, heartBeatTimeoutTryCount)
RY_SAME_RECORD(RYCAMERA_INFO, RYCAMERA_INFO)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_Result)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_DeviceIndex)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_Name)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_ModelName)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_ManufacturerName)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_IPAddress)
RY_SAME_FIELD(RYCAMERA_INFO, RYCAMERA_INFO, m_MACAddress)
RY_SAME_RECORD(PROPERTY_INFO, _PROPERTY)
RY_SAME_FIELD(PROPERTY_INFO, _PROPERTY, accessMode)
RY_SAME_FIELD(PROPERTY_INFO, _PROPERTY, representation)
RY_SAME_FIELD(PROPERTY_INFO, _PROPERTY, name)
RY_SAME_FIELD(PROPERTY_INFO, _PROPERTY, displayName)
RY_SAME_FIELD(PROPERTY_INFO, _PROPERTY, description)
static_assert(sizeof(::EVENT_DATA) == sizeof(RyGenICam::EVENT_DATA) &&
              offsetof(::EVENT_DATA, object) == offsetof(RyGenICam::EVENT_DATA, object) &&
              offsetof(::EVENT_DATA, data) == offsetof(RyGenICam::EVENT_DATA, data));

}  // namespace
