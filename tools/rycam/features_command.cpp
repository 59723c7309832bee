// rycam features CAMERA: the camera's property list as the tree its categories make, with
// each feature's value and access. The SDK's property list says which features are shown
// (the visible, implemented ones) and how; the categories come from the camera's own
// description.
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "camera_session.h"
#include "commands.h"
#include "feature_text.h"
#include "ry/genicam/NodeMapRef.h"
#include "safe_text.h"

namespace rycam {
namespace {

constexpr uint32_t kCategoryType = 8;  // RyGenApi::intfICategory
constexpr int kMaxDepth = 64;

const char* AccessText(uint32_t accessMode) {
    static const char* const kTexts[] = {"NI", "NA", "WO", "RO", "RW"};
    return accessMode < 5 ? kTexts[accessMode] : "??";
}

class TreePrinter {
  public:
    explicit TreePrinter(RYSDK::RyCamera& camera) : camera_(camera) {}

    // Each node once: a description whose categories nest in a cycle ends there.
    void Print(RyGenApi::INode* node, int depth) {
        const bool firstVisit = node != nullptr && visited_.insert(node).second;
        RYSDK::_PROPERTY property{};
        // Invisible or unimplemented features are not in the SDK's list, and not shown.
        if (!firstVisit || depth > kMaxDepth ||
            camera_.GetPropertyInfo(node->GetName().c_str(), &property) != RYSDK::RESULT_SUCCESS)
            return;
        PrintLine(property, depth);
        for (RyGenApi::INode* member : Members(node))
            Print(member, depth + 1);
    }

  private:
    static std::vector<RyGenApi::INode*> Members(RyGenApi::INode* node) {
        std::vector<RyGenApi::INode*> members;
        if (auto* category = dynamic_cast<RyGenApi::ICategory*>(node)) {
            RyGenApi::FeatureList_t features;
            category->GetFeatures(features);
            for (RyGenApi::IValue* feature : features)
                members.push_back(feature != nullptr ? feature->GetNode() : nullptr);
        }
        return members;
    }

    void PrintLine(const RYSDK::_PROPERTY& property, int depth) {
        const std::string name = SafeField(property.name);
        if (property.type == kCategoryType) {
            std::printf("%*s%s\n", depth * 2, "", name.c_str());
            return;
        }
        std::string value;
        const bool readable = property.accessMode == 3 || property.accessMode == 4;
        if (!readable || ReadFeature(camera_, property.name, value) != RYSDK::RESULT_SUCCESS)
            value.clear();
        std::printf("%*s%s = %s  [%s]\n", depth * 2, "", name.c_str(), SafeText(value).c_str(),
                    AccessText(property.accessMode));
    }

    RYSDK::RyCamera& camera_;
    std::set<RyGenApi::INode*> visited_;
};

// Without a description to take the categories from, the list is printed flat.
void PrintFlat(RYSDK::RyCamera& camera) {
    int32_t count = 0;
    camera.GetPropertyCount(&count);
    for (int32_t i = 0; i < count; ++i) {
        RYSDK::_PROPERTY property{};
        if (camera.GetPropertyInfo(i, &property) == RYSDK::RESULT_SUCCESS)
            std::printf("%s  [%s]\n", SafeField(property.name).c_str(),
                        AccessText(property.accessMode));
    }
}

std::unique_ptr<RyGenApi::CNodeMapRef> LoadDescription(RYSDK::RyCamera& camera) {
    RYSDK::TransportHandle device = nullptr;
    if (camera.GetDeviceHandle(&device) != RYSDK::RESULT_SUCCESS)
        return nullptr;
    const std::string xml = camera.GetXML(device, 0);
    if (xml.empty())
        return nullptr;
    auto nodeMap = std::make_unique<RyGenApi::CNodeMapRef>();
    try {
        nodeMap->_LoadXMLFromString(xml);
    } catch (const std::exception&) {
        return nullptr;
    }
    return nodeMap;
}

void PrintTree(RYSDK::RyCamera& camera) {
    const auto nodeMap = LoadDescription(camera);
    RyGenApi::INode* root = nodeMap != nullptr ? nodeMap->_GetNode("Root") : nullptr;
    if (root == nullptr) {
        std::fprintf(stderr, "rycam: the description has no categories; the features, flat:\n");
        PrintFlat(camera);
        return;
    }
    TreePrinter(camera).Print(root, 0);
}

}  // namespace

int FeaturesCommand(int argc, char** argv) {
    return RunOnCamera(argc, argv, "rycam features CAMERA [--timeout MS]", 1, 0,
                       [](Session& session, const std::vector<std::string>&) {
                           PrintTree(session.Camera());
                           return kExitOk;
                       });
}

}  // namespace rycam
