#include "camera/feature_access.h"

#include "core/platform/text.h"

namespace RYSDK::camera {

RESULT FeatureAccess::CheckNodeMap() const {
    if (nodeMap_ != nullptr)
        return RESULT_SUCCESS;
    RY_LOG_EVENT(site_, core::kLogErr, L"pNodeMap is NULL");
    return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
}

RESULT FeatureAccess::CheckExists(const char* name, const wchar_t* missingFormat) const {
    if (nodeMap_->map._GetNode(name) != nullptr)
        return RESULT_SUCCESS;
    RY_LOG_EVENT(site_, core::kLogErr, missingFormat, core::Widen(name).c_str());
    return RESULT_ERROR_XML_NOT_EXIST_NODE;
}

RESULT FeatureAccess::CheckNotReadOnly(RyGenApi::IBase& node, const char* name) const {
    if (node.GetAccessMode() != RyGenApi::RO)
        return RESULT_SUCCESS;
    RY_LOG_EVENT(site_, core::kLogErr, L"%ls.AccessMode == R0", core::Widen(name).c_str());
    return RESULT_ERROR_RYCAMERA_READ_ONLY;
}

std::vector<RyGenApi::IEnumEntry*> FeatureAccess::AvailableEntries(RyGenApi::IEnumeration& node) {
    RyGenApi::NodeList_t entries;
    node.GetEntries(entries);
    std::vector<RyGenApi::IEnumEntry*> available;
    for (RyGenApi::INode* entry : entries) {
        auto* value = dynamic_cast<RyGenApi::IEnumEntry*>(entry);
        if (value != nullptr && RyGenApi::IsAvailable(entry->GetAccessMode()))
            available.push_back(value);
    }
    return available;
}

}  // namespace RYSDK::camera
