// The property list: a flat record per visible feature, depth first from "Root", built once
// at open so an application can list the camera's features without walking the node map.
#include <algorithm>
#include <cstring>
#include <set>
#include <string>

#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::camera {

namespace {

using RyGenApi::INode;

constexpr uint32_t kNoRepresentation = 7;
constexpr uint32_t kReservedUnset = 0xFFFFFFFF;
// Categories nest a few levels in real files; a description whose categories contain
// themselves must not recurse without end.
constexpr int kMaxCategoryDepth = 64;

template <size_t N>
void CopyBounded(char (&field)[N], const std::string& text) {
    const size_t length = std::min(text.size(), N - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

uint32_t RepresentationOf(INode& node) {
    if (auto* integer = dynamic_cast<RyGenApi::IInteger*>(&node))
        return static_cast<uint32_t>(integer->GetRepresentation());
    if (auto* floating = dynamic_cast<RyGenApi::IFloat*>(&node))
        return static_cast<uint32_t>(floating->GetRepresentation());
    return kNoRepresentation;
}

void FillProperty(INode& node, _PROPERTY& property) {
    std::memset(&property, 0, sizeof(property));
    property.type = static_cast<uint32_t>(node.GetPrincipalInterfaceType());
    property.accessMode = static_cast<uint32_t>(node.GetAccessMode());
    property.visibility = static_cast<uint32_t>(node.GetVisibility());
    property.representation = RepresentationOf(node);
    property.reserved = kReservedUnset;
    CopyBounded(property.name, node.GetName());
    CopyBounded(property.displayName, node.GetDisplayName());
    const std::string description = node.GetDescription();
    CopyBounded(property.description, description.empty() ? node.GetToolTip() : description);
}

struct PropertyWalk {
    std::vector<_PROPERTY>& list;
    std::set<INode*> visited;

    void Retrieve(INode* node, int depth) {
        if (node == nullptr || depth > kMaxCategoryDepth || !visited.insert(node).second)
            return;
        if (node->GetVisibility() == RyGenApi::Invisible)
            return;
        if (node->GetAccessMode() != RyGenApi::NI) {
            _PROPERTY property;
            FillProperty(*node, property);
            list.push_back(property);
        }
        auto* category = dynamic_cast<RyGenApi::ICategory*>(node);
        if (category == nullptr)
            return;
        RyGenApi::FeatureList_t features;
        category->GetFeatures(features);
        for (RyGenApi::IValue* feature : features) {
            if (feature != nullptr)
                Retrieve(feature->GetNode(), depth + 1);
        }
    }
};

}  // namespace

}  // namespace RYSDK::camera

namespace RYSDK {

void RyCamera::LoadPropertyList() {
    m_PropertyList.clear();
    if (!m_Shared->nodeMap)
        return;
    camera::PropertyWalk walk{m_PropertyList, {}};
    walk.Retrieve(m_Shared->nodeMap->map._GetNode("Root"), 0);
}

RESULT RyCamera::GetPropertyCount(int32_t* count) {
    if (!m_Shared->nodeMap || m_PropertyList.empty())
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *count = static_cast<int32_t>(m_PropertyList.size());
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetPropertyInfo(const char* name, _PROPERTY* property) {
    RY_CAMERA_SITE(GetPropertyInfo);
    return RY_GUARDED(kSite, [&] {
        if (!m_Shared->nodeMap)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        if (name == nullptr || name[0] == '\0' || property == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        RyGenApi::INode* node = m_Shared->nodeMap->map._GetNode(name);
        if (node == nullptr)
            return RESULT_ERROR_XML_NOT_EXIST_NODE;
        camera::FillProperty(*node, *property);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GetPropertyInfo(int32_t index, _PROPERTY* property) {
    if (!m_Shared->nodeMap || m_PropertyList.empty())
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    if (index < 0 || static_cast<size_t>(index) >= m_PropertyList.size() || property == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *property = m_PropertyList[static_cast<size_t>(index)];
    return RESULT_SUCCESS;
}

}  // namespace RYSDK
