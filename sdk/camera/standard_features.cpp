// RyCamera's typed accessors of the standard features: each one names its feature and the
// ways it departs from the common steps (sdk/camera/standard_features.h).
#include "camera/standard_features.h"
#include "camera/camera_log.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::FeatureRules;
using camera::StandardFeature;
using core::kLogErr;
using RyGenApi::IEnumeration;
using RyGenApi::IFloat;
using RyGenApi::IInteger;

namespace {

// A failed cast of these getters' nodes is reported as a plain error.
constexpr FeatureRules kPlainErrorOnKind{RESULT_ERROR_XML_NOT_EXIST_NODE, RESULT_ERROR};
// Features that need a second node report a missing one as an invalid handle.
constexpr FeatureRules kHandleOnMissing{RESULT_ERROR_INVALID_HANDLE,
                                        RESULT_ERROR_XML_NODE_ACCESS_FAILED};

// Integer readers truncate to the 32 bits the API gives.
template <typename Out>
RESULT ReadInteger(const StandardFeature& feature, Out* out) {
    int64_t value = 0;
    const RESULT result = feature.GetInteger(out == nullptr ? nullptr : &value);
    if (result == RESULT_SUCCESS)
        *out = static_cast<Out>(value);
    return result;
}

template <typename Out>
RESULT ReadEnumeration(const StandardFeature& feature, Out* out) {
    int64_t value = 0;
    const RESULT result = feature.GetEnumeration(out == nullptr ? nullptr : &value);
    if (result == RESULT_SUCCESS)
        *out = static_cast<Out>(value);
    return result;
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

RESULT ReadLineupCount(const StandardFeature& feature, unsigned int* count) {
    const RESULT result = feature.CheckOutput(count, L"pnIndex is NULL");
    return result == RESULT_SUCCESS ? feature.LineupCount(count) : result;
}

// The availability test some writers make before their write.
RESULT CheckAvailable(const RyGenApi::IBase& node) {
    return RyGenApi::IsAvailable(node.GetAccessMode()) ? RESULT_SUCCESS
                                                       : RESULT_ERROR_XML_NODE_ACCESS_FAILED;
}

// TRIGGER_SOURCE of an entry name: 0 for "Software", 1 for "External" or "Ext".
bool TriggerSourceOf(const std::string& symbolic, TRIGGER_SOURCE& source) {
    if (symbolic == "Software") {
        source = TRIGGER_SOURCE_SOFTWARE;
        return true;
    }
    if (symbolic == "External" || symbolic == "Ext") {
        source = TRIGGER_SOURCE_EXTERNAL;
        return true;
    }
    return false;
}

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

#define RY_FEATURE(method, name, ...) \
    RY_CAMERA_SITE(method);           \
    const StandardFeature feature(*m_Shared, kSite, name __VA_OPT__(, ) __VA_ARGS__)

RESULT RyCamera::SetTriggerMode(int mode) {
    RY_FEATURE(SetTriggerMode, "TriggerMode");
    return RY_GUARDED(kSite, [&] { return feature.SetEnumeration(mode); });
}

RESULT RyCamera::GetTriggerMode(int* mode) {
    RY_FEATURE(GetTriggerMode, "TriggerMode");
    return RY_GUARDED(kSite, [&] {
        RESULT result = feature.CheckOutput(mode, L"pbTriggerMode is NULL");
        IEnumeration* node = nullptr;
        if (result == RESULT_SUCCESS)
            result = feature.Find(node);
        if (result != RESULT_SUCCESS)
            return result;
        RY_LOG_EVENT(kSite, core::kLogDebug, L"TriggerMode.AccessMode is %d",
                     static_cast<int>(node->GetAccessMode()));
        result = ReadEnumeration(feature, mode);
        if (result == RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, core::kLogDebug, L"_GetNode(\"TriggerMode\")->GetIntValue is %d",
                         *mode);
            RY_LOG_EVENT(kSite, core::kLogDebug, L"*pbTriggerMode is %d", *mode);
        }
        return result;
    });
}

RESULT RyCamera::GetTriggerModeLineup(unsigned int nIndex, unsigned int* pnValue) {
    RY_FEATURE(GetTriggerModeLineup, "TriggerMode");
    return RY_GUARDED(kSite, [&] { return ReadLineup(feature, nIndex, pnValue); });
}

RESULT RyCamera::GetTriggerModeLineupNum(unsigned int* pnIndex) {
    RY_FEATURE(GetTriggerModeLineupNum, "TriggerMode");
    return RY_GUARDED(kSite, [&] { return ReadLineupCount(feature, pnIndex); });
}

RESULT RyCamera::SetTriggerSource(TRIGGER_SOURCE source) {
    RY_FEATURE(SetTriggerSource, "TriggerSource");
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        const RESULT result = feature.ForWritingAvailable(node);
        if (result != RESULT_SUCCESS)
            return result;
        if (source != TRIGGER_SOURCE_SOFTWARE && source != TRIGGER_SOURCE_EXTERNAL)
            return RESULT_ERROR_INVALID_PARAMETER;
        RyGenApi::IEnumEntry* entry =
            node->GetEntryByName(source == TRIGGER_SOURCE_SOFTWARE ? "Software" : "External");
        // Some cameras call their external input "Ext".
        if (entry == nullptr && source == TRIGGER_SOURCE_EXTERNAL)
            entry = node->GetEntryByName("Ext");
        if (entry == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const auto value = static_cast<int64_t>(entry->GetNumericValue());
        feature.Node<IEnumeration>()->SetIntValue(value, true);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetTriggerSource(TRIGGER_SOURCE* source) {
    RY_FEATURE(GetTriggerSource, "TriggerSource");
    return RY_GUARDED(kSite, [&] {
        int64_t value = 0;
        const RESULT result = feature.GetEnumeration(source == nullptr ? nullptr : &value);
        if (result != RESULT_SUCCESS)
            return result;
        RyGenApi::IEnumEntry* entry = feature.Node<IEnumeration>()->GetEntry(value);
        return entry != nullptr && TriggerSourceOf(entry->GetSymbolic(), *source) ? RESULT_SUCCESS
                                                                                  : RESULT_ERROR;
    });
}

RESULT RyCamera::GetTriggerSourceLineup(unsigned int nIndex, TRIGGER_SOURCE* source) {
    RY_FEATURE(GetTriggerSourceLineup, "TriggerSource");
    return RY_GUARDED(kSite, [&] {
        RESULT result = feature.CheckOutput(source, L"pnValue is invalid");
        int64_t value = source == nullptr ? 0 : static_cast<int64_t>(*source);
        RyGenApi::IEnumEntry* entry = nullptr;
        if (result == RESULT_SUCCESS)
            result = feature.Lineup(nIndex, &value, &entry);
        // Past the entries the caller's value stays; an entry of another name than the
        // two known ones is given by its integer value.
        if (result == RESULT_SUCCESS && entry != nullptr &&
            !TriggerSourceOf(entry->GetSymbolic(), *source))
            *source = static_cast<TRIGGER_SOURCE>(value);
        return result;
    });
}

RESULT RyCamera::GetTriggerSourceLineupNum(unsigned int* pnIndex) {
    RY_FEATURE(GetTriggerSourceLineupNum, "TriggerSource");
    return RY_GUARDED(kSite, [&] { return ReadLineupCount(feature, pnIndex); });
}

RESULT RyCamera::SetTriggerActivation(TRIGGER_ACTIVATION activation) {
    RY_FEATURE(SetTriggerActivation, "TriggerActivation", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            result = CheckAvailable(*node);
        return result == RESULT_SUCCESS ? feature.SetEnumeration(activation) : result;
    });
}

RESULT RyCamera::SetTriggerSoftware() {
    RY_FEATURE(SetTriggerSoftware, "TriggerSoftware");
    return RY_GUARDED(kSite, [&] {
        RyGenApi::ICommand* node = nullptr;
        const RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            node->Execute(true);
        return result;
    });
}

RESULT RyCamera::SetWidth(unsigned int width) {
    RY_FEATURE(SetWidth, "Width");
    return RY_GUARDED(kSite, [&] {
        return feature.SetClampedInteger(width, 4, RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE);
    });
}

RESULT RyCamera::GetWidth(unsigned int* width) {
    RY_FEATURE(GetWidth, "Width", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] { return ReadInteger(feature, width); });
}

RESULT RyCamera::SetHeight(unsigned int height) {
    RY_FEATURE(SetHeight, "Height");
    return RY_GUARDED(kSite, [&] {
        return feature.SetClampedInteger(height, 2, RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE);
    });
}

RESULT RyCamera::GetHeight(unsigned int* height) {
    RY_FEATURE(GetHeight, "Height", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] { return ReadInteger(feature, height); });
}

RESULT RyCamera::SetSCPSPacketSize(unsigned int size) {
    RY_FEATURE(SetSCPSPacketSize, "GevSCPSPacketSize");
    return RY_GUARDED(kSite, [&] { return feature.SetClampedInteger(size, 1, RESULT_SUCCESS); });
}

RESULT RyCamera::GetSCPSPacketSize(unsigned int* size) {
    RY_FEATURE(GetSCPSPacketSize, "GevSCPSPacketSize");
    return RY_GUARDED(kSite, [&] { return ReadInteger(feature, size); });
}

#define RY_ENUMERATION_FEATURE(Name, feature_name)                                      \
    RESULT RyCamera::Set##Name(unsigned int value) {                                    \
        RY_FEATURE(Set##Name, feature_name);                                            \
        return RY_GUARDED(kSite, [&] { return feature.SetEnumeration(value); });        \
    }                                                                                   \
    RESULT RyCamera::Get##Name(unsigned int* value) {                                   \
        RY_FEATURE(Get##Name, feature_name);                                            \
        return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, value); });      \
    }                                                                                   \
    RESULT RyCamera::Get##Name##Lineup(unsigned int nIndex, unsigned int* pnValue) {    \
        RY_FEATURE(Get##Name##Lineup, feature_name);                                    \
        return RY_GUARDED(kSite, [&] { return ReadLineup(feature, nIndex, pnValue); }); \
    }                                                                                   \
    RESULT RyCamera::Get##Name##LineupNum(unsigned int* pnIndex) {                      \
        RY_FEATURE(Get##Name##LineupNum, feature_name);                                 \
        return RY_GUARDED(kSite, [&] { return ReadLineupCount(feature, pnIndex); });    \
    }

RY_ENUMERATION_FEATURE(BinningHorizontal, "BinningHorizontal")
RY_ENUMERATION_FEATURE(BinningVertical, "BinningVertical")

#undef RY_ENUMERATION_FEATURE

#define RY_INTEGER_FEATURE(Name, feature_name, ...)                            \
    RESULT RyCamera::Set##Name(unsigned int value) {                           \
        RY_FEATURE(Set##Name, feature_name);                                   \
        return RY_GUARDED(kSite, [&] { return feature.SetInteger(value); });   \
    }                                                                          \
    RESULT RyCamera::Get##Name(unsigned int* value) {                          \
        RY_FEATURE(Get##Name, feature_name __VA_OPT__(, ) __VA_ARGS__);        \
        return RY_GUARDED(kSite, [&] { return ReadInteger(feature, value); }); \
    }

RY_INTEGER_FEATURE(BinningFactor, "BinningFactor")
RY_INTEGER_FEATURE(HorizontalStart, "HorizontalStart", kPlainErrorOnKind)
RY_INTEGER_FEATURE(HorizontalEnd, "HorizontalEnd")
RY_INTEGER_FEATURE(VerticalStart, "VerticalStart", kPlainErrorOnKind)
RY_INTEGER_FEATURE(VerticalEnd, "VerticalEnd")

#undef RY_INTEGER_FEATURE

RESULT RyCamera::SetStreamHold(unsigned int hold) {
    RY_FEATURE(SetStreamHold, "StreamHold", kPlainErrorOnKind);
    // Only 1 holds: any other value, 2 included, releases.
    return RY_GUARDED(kSite, [&] { return feature.SetBoolean(hold == 1); });
}

RESULT RyCamera::GetStreamHold(unsigned int* hold) {
    RY_FEATURE(GetStreamHold, "StreamHold", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] {
        bool value = false;
        const RESULT result = feature.GetBoolean(hold == nullptr ? nullptr : &value);
        if (result == RESULT_SUCCESS)
            *hold = value ? 1 : 0;
        return result;
    });
}

RESULT RyCamera::SetTestImage(TESTIMAGE image) {
    RY_FEATURE(SetTestImage, "TestImageSelector");
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        RESULT result = feature.ForWritingAvailable(node);
        if (result != RESULT_SUCCESS)
            return result;
        int64_t selector = 0;
        switch (image) {
            case TESTIMAGE_OFF:
                selector = 0;
                break;
            case TESTIMAGE_HORIZONTAL_RAMP:
                selector = 1;
                break;
            case TESTIMAGE_VERTICAL_RAMP:
                selector = 2;
                break;
            case TESTIMAGE_DIAGONAL_RAMP:
                selector = 3;
                break;
            default:
                RY_LOG_EVENT(kSite, kLogErr, L"TESTIMAGE(%d) is invalid", static_cast<int>(image));
                return RESULT_ERROR;
        }
        result = feature.SetEnumeration(selector);
        // The vertical ramp is written as 2 and at once as 3: the camera ends on 3, as the
        // applications built on it expect.
        if (result == RESULT_SUCCESS && image == TESTIMAGE_VERTICAL_RAMP)
            result = feature.SetEnumeration(3);
        return result;
    });
}

RESULT RyCamera::GetTestImage(TESTIMAGE* image) {
    RY_FEATURE(GetTestImage, "TestImageSelector", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, image); });
}

RESULT RyCamera::GetTestImageLineup(unsigned int nIndex, TESTIMAGE* image) {
    RY_FEATURE(GetTestImageLineup, "TestImageSelector");
    return RY_GUARDED(kSite, [&] { return ReadLineup(feature, nIndex, image); });
}

RESULT RyCamera::GetTestImageLineupNum(unsigned int* pnIndex) {
    RY_FEATURE(GetTestImageLineupNum, "TestImageSelector");
    return RY_GUARDED(kSite, [&] { return ReadLineupCount(feature, pnIndex); });
}

RESULT RyCamera::SetReadoutMode(READOUT mode) {
    RY_FEATURE(SetReadoutMode, "ReadoutMode");
    return RY_GUARDED(kSite, [&] { return feature.SetEnumeration(mode); });
}

RESULT RyCamera::GetReadoutMode(READOUT* mode) {
    RY_FEATURE(GetReadoutMode, "ReadoutMode");
    return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, mode); });
}

RESULT RyCamera::SetExposureMode(EXPOSURE_MODE mode) {
    RY_FEATURE(SetExposureMode, "ExposureMode", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            result = CheckAvailable(*node);
        if (result != RESULT_SUCCESS)
            return result;
        if (mode != EXPOSURE_MODE_TIMED && mode != EXPOSURE_MODE_TRIGGER_WIDTH)
            return RESULT_ERROR_INVALID_PARAMETER;
        return feature.SetEnumeration(mode != EXPOSURE_MODE_TIMED ? 1 : 0);
    });
}

RESULT RyCamera::GetExposureMode(EXPOSURE_MODE* mode) {
    RY_FEATURE(GetExposureMode, "ExposureMode", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, mode); });
}

RESULT RyCamera::SetExposureTime(unsigned int time) {
    RY_FEATURE(SetExposureTime, "ExposureTime", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] {
        IInteger* node = nullptr;
        RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            result = CheckAvailable(*node);
        return result == RESULT_SUCCESS ? feature.SetInteger(time) : result;
    });
}

RESULT RyCamera::GetExposureTime(unsigned int* time) {
    RY_FEATURE(GetExposureTime, "ExposureTime", kHandleOnMissing);
    return RY_GUARDED(kSite, [&] { return ReadInteger(feature, time); });
}

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
    return RY_GUARDED(kSite, [&] {
        RyGenApi::IBoolean* node = nullptr;
        RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            result = CheckAvailable(*node);
        return result == RESULT_SUCCESS ? feature.SetBoolean(reverse != 0) : result;
    });
}

RESULT RyCamera::SetStrobeOffset(unsigned int offset) {
    RY_FEATURE(SetStrobeOffset, "StrobeOffset");
    return RY_GUARDED(kSite, [&] {
        IInteger* node = nullptr;
        RESULT result = feature.Find(node);
        if (result == RESULT_SUCCESS)
            result = CheckAvailable(*node);
        return result == RESULT_SUCCESS ? feature.SetInteger(offset) : result;
    });
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

#undef RY_FEATURE

}  // namespace RYSDK
