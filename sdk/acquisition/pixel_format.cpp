// The camera's "PixelFormat" feature read and written by code; the catalogue only decides
// which codes may be written.
#include "acquisition/pixel_format_catalogue.h"
#include "acquisition/pixel_format_read.h"
#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using core::kLogErr;

namespace {

constexpr const char* kPixelFormat = "PixelFormat";

// The feature as both accessors reach it: node map, node, enumeration.
RESULT FindPixelFormat(const camera::FeatureAccess& access, RyGenApi::IEnumeration*& node) {
    RESULT result = access.CheckNodeMap();
    if (result == RESULT_SUCCESS)
        result = access.CheckExists(kPixelFormat, L"_GetNode(\"%ls\") is NULL");
    if (result != RESULT_SUCCESS)
        return result;
    node = access.As<RyGenApi::IEnumeration>(kPixelFormat);
    return node == nullptr ? RESULT_ERROR_XML_NODE_ACCESS_FAILED : RESULT_SUCCESS;
}

}  // namespace

namespace acquisition {

RESULT ReadPixelFormat(camera::DeviceNodeMap* nodeMap, PIXEL_FORMAT* format) {
    RY_CAMERA_SITE(GetPixelFormat);
    return RY_GUARDED(kSite, [&] {
        if (format == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr, L"pPixelFormat is NULL");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT found = FindPixelFormat(camera::FeatureAccess(nodeMap, kSite), node);
        if (found != RESULT_SUCCESS)
            return found;
        if (!RyGenApi::IsReadable(node->GetAccessMode()))
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        const int64_t value = node->GetIntValue();
        if (value == -1) {
            RY_LOG_EVENT(kSite, kLogErr, L"nPixelFormat is -1");
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        }
        *format = static_cast<PIXEL_FORMAT>(static_cast<uint32_t>(value));
        return RESULT_SUCCESS;
    });
}

}  // namespace acquisition

RESULT RyCamera::GetPixelFormat(PIXEL_FORMAT* format) {
    return acquisition::ReadPixelFormat(m_Shared->nodeMap.get(), format);
}

RESULT RyCamera::SetPixelFormat(PIXEL_FORMAT format) {
    RY_CAMERA_SITE(SetPixelFormat);
    return RY_GUARDED(kSite, [&] {
        if (acquisition::PixelFormatNameOf(format) == nullptr)
            return RESULT_ERROR;
        const camera::FeatureAccess access(*m_Shared, kSite);
        RyGenApi::IEnumeration* node = nullptr;
        RESULT result = FindPixelFormat(access, node);
        if (result != RESULT_SUCCESS)
            return result;
        result = access.CheckNotReadOnly(*node, kPixelFormat);
        if (result != RESULT_SUCCESS)
            return result;
        access.As<RyGenApi::IEnumeration>(kPixelFormat)->SetIntValue(format, true);
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK

namespace RYSDK {

namespace {

constexpr const char* kPixelSize = "PixelSize";

// The camera's "PixelSize" enumeration as every PixelSize accessor reaches it.
RESULT FindPixelSize(const camera::FeatureAccess& access, RyGenApi::IEnumeration*& node) {
    RESULT result = access.CheckNodeMap();
    if (result == RESULT_SUCCESS)
        result = access.CheckExists(kPixelSize, L"_GetNode(\"%ls\") is invalid");
    if (result != RESULT_SUCCESS)
        return result;
    node = access.As<RyGenApi::IEnumeration>(kPixelSize);
    if (node == nullptr || !RyGenApi::IsAvailable(node->GetAccessMode()))
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    return RESULT_SUCCESS;
}

// A getter's checks in their order: node map, output, feature.
RESULT PixelSizeForRead(const camera::FeatureAccess& access, const void* out,
                        RyGenApi::IEnumeration*& node) {
    const RESULT result = access.CheckNodeMap();
    if (result != RESULT_SUCCESS)
        return result;
    if (out == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    return FindPixelSize(access, node);
}

}  // namespace

RESULT RyCamera::GetPixelFormatFromString(std::string name, PIXEL_FORMAT* format) {
    const std::optional<uint32_t> code = acquisition::PixelFormatCodeOf(name);
    if (!code || format == nullptr)
        return RESULT_ERROR;
    *format = static_cast<PIXEL_FORMAT>(*code);
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetPixelFormatName(PIXEL_FORMAT format, std::string* name) {
    const char* text = acquisition::PixelFormatNameOf(format);
    if (text == nullptr || name == nullptr)
        return RESULT_ERROR_EXCEPTION;
    *name = text;
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetPixelFormatLineup(unsigned int index, PIXEL_FORMAT* format) {
    RY_CAMERA_SITE(GetPixelFormatLineup);
    return RY_GUARDED(kSite, [&] {
        if (format == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr, L"pPixelFormat is invalid");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        const camera::FeatureAccess access(*m_Shared, kSite);
        RESULT result = access.CheckNodeMap();
        if (result == RESULT_SUCCESS)
            result = access.CheckExists(kPixelFormat, L"_GetNode(\"%ls\") is invalid");
        if (result != RESULT_SUCCESS)
            return result;
        auto* node = access.As<RyGenApi::IEnumeration>(kPixelFormat);
        if (node == nullptr)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        const auto entries = camera::FeatureAccess::AvailableEntries(*node);
        // A position past the offered formats is no error: the output keeps its value.
        if (index >= entries.size())
            return RESULT_SUCCESS;
        result = GetPixelFormatFromString(entries[index]->GetSymbolic(), format);
        if (result != RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"GetPixelFormatFromString returned not success. Ret[%ls (%d)]",
                         core::ResultText(result), result);
            return result;
        }
        RY_LOG_EVENT(kSite, core::kLogDebug, L"pPixelFormat(%X)", static_cast<uint32_t>(*format));
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetPixelFormatLineupNum(unsigned int* count) {
    RY_CAMERA_SITE(GetPixelFormatLineupNum);
    return RY_GUARDED(kSite, [&] {
        if (count == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr, L"pnIndex is invalid");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        const camera::FeatureAccess access(*m_Shared, kSite);
        RESULT result = access.CheckNodeMap();
        if (result == RESULT_SUCCESS)
            result = access.CheckExists(kPixelFormat, L"_GetNode(\"%ls\")is NULL");
        if (result != RESULT_SUCCESS)
            return result;
        auto* node = access.As<RyGenApi::IEnumeration>(kPixelFormat);
        if (node == nullptr)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        *count = static_cast<unsigned int>(camera::FeatureAccess::AvailableEntries(*node).size());
        RY_LOG_EVENT(kSite, core::kLogDebug, L"*pnIndex(%d)", *count);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::SetPixelSize(unsigned int bits) {
    RY_CAMERA_SITE(SetPixelSize);
    return RY_GUARDED(kSite, [&] {
        const camera::FeatureAccess access(*m_Shared, kSite);
        RyGenApi::IEnumeration* node = nullptr;
        RESULT result = FindPixelSize(access, node);
        if (result == RESULT_SUCCESS)
            result = access.CheckNotReadOnly(*node, kPixelSize);
        if (result != RESULT_SUCCESS)
            return result;
        access.As<RyGenApi::IEnumeration>(kPixelSize)->SetIntValue(bits, true);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetPixelSize(unsigned int* bits) {
    RY_CAMERA_SITE(GetPixelSize);
    return RY_GUARDED(kSite, [&] {
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT result = PixelSizeForRead(camera::FeatureAccess(*m_Shared, kSite), bits, node);
        if (result != RESULT_SUCCESS)
            return result;
        *bits = static_cast<unsigned int>(node->GetIntValue());
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetPixelSizeType(unsigned int index, unsigned int* bits) {
    RY_CAMERA_SITE(GetPixelSizeType);
    return RY_GUARDED(kSite, [&] {
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT result = PixelSizeForRead(camera::FeatureAccess(*m_Shared, kSite), bits, node);
        if (result != RESULT_SUCCESS)
            return result;
        const auto entries = camera::FeatureAccess::AvailableEntries(*node);
        if (index < entries.size())
            *bits = static_cast<unsigned int>(entries[index]->GetValue());
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetPixelSizeTypeNum(unsigned int* count) {
    RY_CAMERA_SITE(GetPixelSizeTypeNum);
    return RY_GUARDED(kSite, [&] {
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT result =
            PixelSizeForRead(camera::FeatureAccess(*m_Shared, kSite), count, node);
        if (result != RESULT_SUCCESS)
            return result;
        *count = static_cast<unsigned int>(camera::FeatureAccess::AvailableEntries(*node).size());
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::IsValidPixelSize(unsigned int bits, int* valid) {
    RY_CAMERA_SITE(IsValidPixelSize);
    return RY_GUARDED(kSite, [&] {
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT result =
            PixelSizeForRead(camera::FeatureAccess(*m_Shared, kSite), valid, node);
        if (result != RESULT_SUCCESS)
            return result;
        *valid = 0;
        for (RyGenApi::IEnumEntry* entry : camera::FeatureAccess::AvailableEntries(*node)) {
            if (entry->GetValue() == static_cast<int64_t>(bits))
                *valid = 1;
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK
