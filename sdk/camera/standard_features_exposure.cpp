// RyCamera's typed accessors of exposure, gain, black level, mirror and strobe.
#include "camera/standard_features_accessors.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::kHandleOnMissing;
using camera::ReadEnumeration;
using camera::StandardFeature;
using core::kLogErr;
using RyGenApi::IEnumeration;
using RyGenApi::IFloat;
using RyGenApi::IInteger;

namespace {

// The selector, then the value: both nodes must exist and neither may be read-only; the
// value is checked against the value node's range (0.0 to 9999.0 when it gives none).
struct SelectorAndValue {
    const camera::CameraShared& shared;
    const core::LogSite& site;
    const char* selectorName;
    const char* valueName;

    RESULT Write(int64_t selector, double value, bool integerOnly) const {
        const camera::FeatureAccess access(shared, site);
        const StandardFeature selectorFeature(shared, site, selectorName, kHandleOnMissing);
        const StandardFeature valueFeature(shared, site, valueName, kHandleOnMissing);
        IEnumeration* selectorNode = nullptr;
        RESULT result = access.CheckNodeMap();
        if (result == RESULT_SUCCESS)
            result = selectorFeature.Find(selectorNode);
        RyGenApi::INode* valueNode = nullptr;
        if (result == RESULT_SUCCESS)
            result = valueFeature.Find(valueNode);
        if (result != RESULT_SUCCESS)
            return result;
        auto* integer = valueFeature.Node<IInteger>();
        auto* floating = integerOnly ? nullptr : valueFeature.Node<IFloat>();
        double minimum = 0.0, maximum = 9999.0;
        if (integer != nullptr) {
            minimum = static_cast<double>(integer->GetMin());
            maximum = static_cast<double>(integer->GetMax());
        } else if (floating != nullptr) {
            minimum = floating->GetMin();
            maximum = floating->GetMax();
        }
        result = access.CheckNotReadOnly(*valueNode, valueName);
        if (result == RESULT_SUCCESS)
            result = access.CheckNotReadOnly(*selectorNode, selectorName);
        if (result != RESULT_SUCCESS)
            return result;
        if (value < minimum || value > maximum) {
            RY_LOG_EVENT(site, kLogErr, L"%ls(%f) is out of range [%f, %f]",
                         core::Widen(valueName).c_str(), value, minimum, maximum);
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        selectorFeature.Node<IEnumeration>()->SetIntValue(selector, true);
        if (integer != nullptr)
            valueFeature.Node<IInteger>()->SetValue(static_cast<int64_t>(value), true);
        else if (floating != nullptr)
            valueFeature.Node<IFloat>()->SetValue(value, true);
        return RESULT_SUCCESS;
    }
};

}  // namespace

RESULT RyCamera::SetExposureMode(EXPOSURE_MODE mode) {
    RY_FEATURE(SetExposureMode, "ExposureMode", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        const RESULT result = feature.ForWriting(
            node, mode == EXPOSURE_MODE_TIMED || mode == EXPOSURE_MODE_TRIGGER_WIDTH);
        return result == RESULT_SUCCESS ? feature.SetEnumeration(mode != EXPOSURE_MODE_TIMED)
                                        : result;
    });
}

RESULT RyCamera::GetExposureMode(EXPOSURE_MODE* mode) {
    RY_FEATURE(GetExposureMode, "ExposureMode", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, mode); });
}

RY_INTEGER_FEATURE(ExposureTime, "ExposureTime", kPlainWrite, kHandleOnMissing, kHandleOnMissing)

RESULT RyCamera::SetGain(GAIN_SEL selector, float gain) {
    RY_CAMERA_SITE(SetGain);
    return RY_GUARDED(kSite, [&] {
        return SelectorAndValue{*m_Shared, kSite, "GainSelector", "Gain"}.Write(selector, gain,
                                                                                false);
    });
}

RESULT RyCamera::GetGain(GAIN_SEL* selector, float* gain) {
    RY_CAMERA_SITE(GetGain);
    return RY_GUARDED(kSite, [&] {
        const StandardFeature selectorFeature(*m_Shared, kSite, "GainSelector", kHandleOnMissing);
        const StandardFeature gainFeature(*m_Shared, kSite, "Gain", kHandleOnMissing);
        RESULT result = selectorFeature.CheckOutput(selector, L"pSelector is NULL");
        if (result == RESULT_SUCCESS)
            result = gainFeature.CheckOutput(gain, L"pfGain is NULL");
        int64_t current = 0;
        if (result == RESULT_SUCCESS)
            result = selectorFeature.GetEnumeration(&current);
        RyGenApi::INode* node = nullptr;
        if (result == RESULT_SUCCESS)
            result = gainFeature.Find(node);
        if (result != RESULT_SUCCESS)
            return result;
        *selector = static_cast<GAIN_SEL>(current);
        if (auto* integer = gainFeature.Node<IInteger>())
            *gain = static_cast<float>(integer->GetValue());
        else if (auto* floating = gainFeature.Node<IFloat>())
            *gain = static_cast<float>(floating->GetValue());
        else
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::SetBlackLevel(BLACKLEVEL_SEL selector, unsigned int level) {
    RY_CAMERA_SITE(SetBlackLevel);
    return RY_GUARDED(kSite, [&] {
        return SelectorAndValue{*m_Shared, kSite, "BlackLevelSelector", "BlackLevel"}.Write(
            selector, level, true);
    });
}

RESULT RyCamera::SetReverseX(int reverse) {
    RY_FEATURE(SetReverseX, "ReverseX", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] { return feature.SetBoolean(reverse != 0); });
}

RESULT RyCamera::SetStrobeOffset(unsigned int offset) {
    RY_FEATURE(SetStrobeOffset, "StrobeOffset", camera::kAvailableToWrite);
    return RY_GUARDED(kSite, [&] { return feature.SetInteger(offset); });
}

RESULT RyCamera::SetStrobePolarity(STROBE_POLARITY polarity) {
    RY_FEATURE(SetStrobePolarity, "StrobePolarity");
    return RY_GUARDED(kSite, [&] {
        // The polarity belongs to the strobe output: a camera without its offset has none.
        const StandardFeature offset(*m_Shared, kSite, "StrobeOffset");
        RyGenApi::INode* offsetNode = nullptr;
        const RESULT present = offset.Find(offsetNode);
        if (present != RESULT_SUCCESS)
            return present;
        if (polarity != STROBE_POLARITY_ACTIVE_HIGH && polarity != STROBE_POLARITY_ACTIVE_LOW)
            return RESULT_ERROR_INVALID_PARAMETER;
        return feature.SetEnumeration(polarity);
    });
}

}  // namespace RYSDK
