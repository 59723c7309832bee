// What RyCamera's typed accessors share beyond the common steps: the result rules some
// features keep, the conversions of a read into the API's output types and the macro that
// gives an accessor its log site and feature.
#pragma once

#include "camera/camera_log.h"
#include "camera/standard_features.h"

namespace RYSDK::camera {

// A failed cast of these getters' nodes is reported as a plain error.
inline constexpr FeatureRules kPlainErrorOnKind{RESULT_ERROR_XML_NOT_EXIST_NODE, RESULT_ERROR};
// Features that need a second node, or that only some cameras have, report a missing one as
// an invalid handle; their writers also need the node available now.
inline constexpr FeatureRules kHandleOnMissing{RESULT_ERROR_INVALID_HANDLE,
                                               RESULT_ERROR_XML_NODE_ACCESS_FAILED, true};
inline constexpr FeatureRules kAvailableToWrite{RESULT_ERROR_XML_NOT_EXIST_NODE,
                                                RESULT_ERROR_XML_NODE_ACCESS_FAILED, true};
inline constexpr FeatureRules kCommonRules{};

inline constexpr IntegerWrite kPlainWrite{};
inline constexpr IntegerWrite kClampedWrite{true, 1, RESULT_SUCCESS};
inline constexpr IntegerWrite kWidthWrite{true, 4, RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE};
inline constexpr IntegerWrite kHeightWrite{true, 2, RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE};

// A read converted to the API's output type; integers are truncated to the 32 bits the API
// gives.
template <typename Out>
RESULT ReadAs(const StandardFeature& feature, RESULT (StandardFeature::*read)(int64_t*) const,
              Out* out) {
    int64_t value = 0;
    const RESULT result = (feature.*read)(out == nullptr ? nullptr : &value);
    if (result == RESULT_SUCCESS)
        *out = static_cast<Out>(value);
    return result;
}

template <typename Out>
RESULT ReadInteger(const StandardFeature& feature, Out* out) {
    return ReadAs(feature, &StandardFeature::GetInteger, out);
}

template <typename Out>
RESULT ReadEnumeration(const StandardFeature& feature, Out* out) {
    return ReadAs(feature, &StandardFeature::GetEnumeration, out);
}

template <typename Out>
RESULT ReadLineup(const StandardFeature& feature, unsigned int index, Out* out) {
    RESULT result = feature.CheckOutput(out, L"pnValue is invalid");
    if (result != RESULT_SUCCESS)
        return result;
    int64_t value = static_cast<int64_t>(*out);
    result = feature.Lineup(index, &value);
    if (result == RESULT_SUCCESS)
        *out = static_cast<Out>(value);
    return result;
}

inline RESULT ReadLineupCount(const StandardFeature& feature, unsigned int* count) {
    const RESULT result = feature.CheckOutput(count, L"pnIndex is NULL");
    return result == RESULT_SUCCESS ? feature.LineupCount(count) : result;
}

}  // namespace RYSDK::camera

// Opens an accessor of RyCamera: its log site and its feature, with the feature's rules.
#define RY_FEATURE(method, name, ...)                                \
    RY_CAMERA_SITE(method);                                          \
    const ::RYSDK::camera::StandardFeature feature(*m_Shared, kSite, \
                                                   name __VA_OPT__(, ) __VA_ARGS__)

// The setter and getter of an integer feature.
#define RY_INTEGER_FEATURE(Name, feature_name, write, set_rules, get_rules)                     \
    RESULT RyCamera::Set##Name(unsigned int value) {                                            \
        RY_FEATURE(Set##Name, feature_name, ::RYSDK::camera::set_rules);                        \
        return RY_GUARDED(kSite,                                                                \
                          [&] { return feature.SetInteger(value, ::RYSDK::camera::write); });   \
    }                                                                                           \
    RESULT RyCamera::Get##Name(unsigned int* value) {                                           \
        RY_FEATURE(Get##Name, feature_name, ::RYSDK::camera::get_rules);                        \
        return RY_GUARDED(kSite, [&] { return ::RYSDK::camera::ReadInteger(feature, value); }); \
    }

// The setter and getter of an enumeration whose integer values pass through unchanged.
#define RY_ENUMERATION_FEATURE(Name, feature_name, Type)                                     \
    RESULT RyCamera::Set##Name(Type value) {                                                 \
        RY_FEATURE(Set##Name, feature_name);                                                 \
        return RY_GUARDED(kSite, [&] { return feature.SetEnumeration(value); });             \
    }                                                                                        \
    RESULT RyCamera::Get##Name(Type* value) {                                                \
        RY_FEATURE(Get##Name, feature_name);                                                 \
        return RY_GUARDED(kSite,                                                             \
                          [&] { return ::RYSDK::camera::ReadEnumeration(feature, value); }); \
    }

// The lineup walk and count of an enumeration.
#define RY_LINEUP_FEATURE(Name, feature_name, Type)                                               \
    RESULT RyCamera::Get##Name##Lineup(unsigned int nIndex, Type* pnValue) {                      \
        RY_FEATURE(Get##Name##Lineup, feature_name);                                              \
        return RY_GUARDED(kSite,                                                                  \
                          [&] { return ::RYSDK::camera::ReadLineup(feature, nIndex, pnValue); }); \
    }                                                                                             \
    RESULT RyCamera::Get##Name##LineupNum(unsigned int* pnIndex) {                                \
        RY_FEATURE(Get##Name##LineupNum, feature_name);                                           \
        return RY_GUARDED(kSite,                                                                  \
                          [&] { return ::RYSDK::camera::ReadLineupCount(feature, pnIndex); });    \
    }
