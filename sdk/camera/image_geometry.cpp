// Width and Height: clamped into the camera's range, then held to the sensor's alignment
// (width a multiple of 4, height of 2; values below that step exempt).
#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::camera {

namespace {

constexpr const wchar_t* kMissingNode = L"_GetNode(\"%ls\") is invalid";

struct Dimension {
    const char* name;
    int64_t step;
    RESULT misaligned;
};

constexpr Dimension kWidth{"Width", 4, RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE};
constexpr Dimension kHeight{"Height", 2, RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE};

RESULT SetDimension(const CameraShared& shared, const core::LogSite& site,
                    const Dimension& dimension, unsigned int requested) {
    const FeatureAccess access(shared, site);
    RESULT result = access.CheckNodeMap();
    if (result == RESULT_SUCCESS)
        result = access.CheckExists(dimension.name, kMissingNode);
    if (result != RESULT_SUCCESS)
        return result;
    auto* node = access.As<RyGenApi::IInteger>(dimension.name);
    if (node == nullptr)
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    int64_t value = requested;
    if (value < node->GetMin())
        value = node->GetMin();
    if (value > node->GetMax())
        value = node->GetMax();
    if (value >= dimension.step && value % dimension.step != 0) {
        RY_LOG_EVENT(site, core::kLogErr, L"%ls(%lld) %% %lld", core::Widen(dimension.name).c_str(),
                     static_cast<long long>(value), static_cast<long long>(dimension.step));
        return dimension.misaligned;
    }
    result = access.CheckNotReadOnly(*node, dimension.name);
    if (result != RESULT_SUCCESS)
        return result;
    access.As<RyGenApi::IInteger>(dimension.name)->SetValue(value, true);
    RY_LOG_EVENT(site, core::kLogDebug, L"%ls.SetValue(%lld)", core::Widen(dimension.name).c_str(),
                 static_cast<long long>(value));
    return RESULT_SUCCESS;
}

RESULT GetDimension(const CameraShared& shared, const core::LogSite& site,
                    const Dimension& dimension, unsigned int* out) {
    const FeatureAccess access(shared, site);
    RESULT result = access.CheckNodeMap();
    if (result != RESULT_SUCCESS)
        return result;
    if (out == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    result = access.CheckExists(dimension.name, kMissingNode);
    if (result != RESULT_SUCCESS)
        return result;
    auto* node = access.As<RyGenApi::IInteger>(dimension.name);
    if (node == nullptr)
        return RESULT_ERROR;
    if (!RyGenApi::IsReadable(node->GetAccessMode()))
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    *out = static_cast<unsigned int>(node->GetValue());
    return RESULT_SUCCESS;
}

}  // namespace

}  // namespace RYSDK::camera

namespace RYSDK {

RESULT RyCamera::SetWidth(unsigned int width) {
    RY_CAMERA_SITE(SetWidth);
    return RY_GUARDED(
        kSite, [&] { return camera::SetDimension(*m_Shared, kSite, camera::kWidth, width); });
}

RESULT RyCamera::GetWidth(unsigned int* width) {
    RY_CAMERA_SITE(GetWidth);
    return RY_GUARDED(
        kSite, [&] { return camera::GetDimension(*m_Shared, kSite, camera::kWidth, width); });
}

RESULT RyCamera::SetHeight(unsigned int height) {
    RY_CAMERA_SITE(SetHeight);
    return RY_GUARDED(
        kSite, [&] { return camera::SetDimension(*m_Shared, kSite, camera::kHeight, height); });
}

RESULT RyCamera::GetHeight(unsigned int* height) {
    RY_CAMERA_SITE(GetHeight);
    return RY_GUARDED(
        kSite, [&] { return camera::GetDimension(*m_Shared, kSite, camera::kHeight, height); });
}

}  // namespace RYSDK
