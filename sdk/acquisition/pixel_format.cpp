// The camera's "PixelFormat" feature read and written by code; the catalogue only decides
// which codes may be written.
#include "acquisition/pixel_format_catalogue.h"
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

RESULT RyCamera::GetPixelFormat(PIXEL_FORMAT* format) {
    RY_CAMERA_SITE(GetPixelFormat);
    return RY_GUARDED(kSite, [&] {
        if (format == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr, L"pPixelFormat is NULL");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        RyGenApi::IEnumeration* node = nullptr;
        const RESULT found = FindPixelFormat(camera::FeatureAccess(*m_Shared, kSite), node);
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
