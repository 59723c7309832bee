/// \file
/// Values the typed feature accessors of RyCamera take and give. They are passed to the
/// camera as the integer values of its GenICam enumeration entries unless a comment says how
/// they are mapped.
#pragma once

#include <cstdint>

namespace RYSDK {

/// "Software", or "External" (on cameras that call it so, "Ext").
enum TRIGGER_SOURCE : int32_t {
    TRIGGER_SOURCE_SOFTWARE = 0,
    TRIGGER_SOURCE_EXTERNAL = 1,
};

/// The camera's "TriggerActivation" entry values.
enum TRIGGER_ACTIVATION : int32_t {
    TRIGGER_ACTIVATION_RISING_EDGE = 0,
    TRIGGER_ACTIVATION_FALLING_EDGE = 1,
};

/// Test images, written to "TestImageSelector" as 0, 1, 2 then 3, and 3.
enum TESTIMAGE : int32_t {
    TESTIMAGE_OFF = 0,
    TESTIMAGE_HORIZONTAL_RAMP = 3,
    TESTIMAGE_VERTICAL_RAMP = 7,
    TESTIMAGE_DIAGONAL_RAMP = 8,
};

/// The camera's "ReadoutMode" entry values.
enum READOUT : int32_t {
    READOUT_NORMAL = 0,
    READOUT_FAST = 1,
};

/// The camera's "ExposureMode" entry values: a set exposure time, or as long as the
/// trigger pulse lasts.
enum EXPOSURE_MODE : int32_t {
    EXPOSURE_MODE_TIMED = 0,
    EXPOSURE_MODE_TRIGGER_WIDTH = 1,
};

/// The camera's "GainSelector" entry values.
enum GAIN_SEL : int32_t {
    GAIN_SEL_ALL = 0,
    GAIN_SEL_RED = 1,
    GAIN_SEL_GREEN = 2,
    GAIN_SEL_BLUE = 3,
};

/// The camera's "BlackLevelSelector" entry values.
enum BLACKLEVEL_SEL : int32_t {
    BLACKLEVEL_SEL_ALL = 0,
    BLACKLEVEL_SEL_RED = 1,
    BLACKLEVEL_SEL_GREEN = 2,
    BLACKLEVEL_SEL_BLUE = 3,
};

/// The level the camera's strobe output takes while it is active.
enum STROBE_POLARITY : int32_t {
    STROBE_POLARITY_ACTIVE_HIGH = 0,
    STROBE_POLARITY_ACTIVE_LOW = 1,
};

/// What GetCustomCommand reads of a feature; entry i of an enumeration is 245 + i.
enum GET_CUSTOM_COMMAND : int32_t {
    GET_CUSTOM_COMMAND_VALUE = 240,
    GET_CUSTOM_COMMAND_NUM = 241,
    GET_CUSTOM_COMMAND_MIN = 242,
    GET_CUSTOM_COMMAND_MAX = 243,
    GET_CUSTOM_COMMAND_INC = 244,
    GET_CUSTOM_COMMAND_INDEX = 245,
};

}  // namespace RYSDK
