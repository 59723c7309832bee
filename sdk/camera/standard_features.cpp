// RyCamera's typed accessors of the trigger features: each one names its feature and the
// ways it departs from the common steps (sdk/camera/standard_features.h).
#include "camera/standard_features_accessors.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::kHandleOnMissing;
using camera::ReadEnumeration;
using camera::ReadLineupCount;
using RyGenApi::IEnumeration;

namespace {

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

}  // namespace

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

RY_LINEUP_FEATURE(TriggerMode, "TriggerMode", unsigned int)

RESULT RyCamera::SetTriggerSource(TRIGGER_SOURCE source) {
    RY_FEATURE(SetTriggerSource, "TriggerSource", camera::kAvailableToWrite);
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        const RESULT result = feature.ForWriting(
            node, source == TRIGGER_SOURCE_SOFTWARE || source == TRIGGER_SOURCE_EXTERNAL);
        if (result != RESULT_SUCCESS)
            return result;
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
    return RY_GUARDED(kSite, [&] { return feature.SetEnumeration(activation); });
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

}  // namespace RYSDK
