#include "loader/Loader.h"

#include <string>
#include <unordered_set>

#include "nodes/FormulaNodes.h"
#include "nodes/NodeMapImpl.h"
#include "nodes/NumericNodes.h"
#include "nodes/NodeKinds.h"
#include "nodes/RegisterNodes.h"

namespace RyGenApi::detail {

namespace {
// Reading a value recurses along its references; real files chain a few dozen at most.
constexpr size_t kMaxValueDepth = 500;
}  // namespace

namespace {

std::unique_ptr<Node> MakeNode(NodeMapImpl& map, std::string_view kind, std::string_view name) {
    if (kind == "Integer") {
        return std::make_unique<IntegerNode>(map, name, intfIInteger, false);
    }
    if (kind == "IntReg" || kind == "AdvFeatureLock" || kind == "DcamLock") {
        return std::make_unique<IntRegFacade>(map, name);
    }
    if (kind == "MaskedIntReg") {
        return std::make_unique<MaskedIntRegFacade>(map, name);
    }
    if (kind == "IntSwissKnife" || kind == "IntConverter") {
        return std::make_unique<IntFormulaFacade>(map, name, intfIInteger, kind == "IntConverter");
    }
    if (kind == "SwissKnife" || kind == "Converter") {
        return std::make_unique<FloatFormulaFacade>(map, name, intfIFloat, kind == "Converter");
    }
    if (kind == "Float") {
        return std::make_unique<FloatNode>(map, name, intfIFloat, true);
    }
    if (kind == "FloatReg") {
        return std::make_unique<FloatRegFacade>(map, name);
    }
    if (kind == "Enumeration") {
        return std::make_unique<EnumerationNode>(map, name);
    }
    if (kind == "Category") {
        return std::make_unique<CategoryNode>(map, name);
    }
    if (kind == "Boolean") {
        return std::make_unique<BooleanNode>(map, name);
    }
    if (kind == "Command") {
        return std::make_unique<CommandNode>(map, name);
    }
    if (kind == "String") {
        return std::make_unique<StringNode>(map, name);
    }
    if (kind == "StringReg") {
        return std::make_unique<StringRegNode>(map, name);
    }
    if (kind == "Register") {
        return std::make_unique<RegisterNode>(map, name, intfIRegister);
    }
    if (kind == "Port") {
        return std::make_unique<PortNode>(map, name);
    }
    if (kind == "Node" || kind == "ConfRom") {
        return std::make_unique<LegacyNode>(map, name, intfIBase);
    }
    if (kind == "IntKey" || kind == "SmartFeature") {
        return std::make_unique<LegacyIntegerNode>(map, name, intfIInteger);
    }
    if (kind == "TextDesc") {
        return std::make_unique<LegacyTextNode>(map, name);
    }
    return nullptr;
}

}  // namespace

void Loader::Run() {
    const xml::Element& root = doc_.Root();
    if (root.name != "RegisterDescription") {
        throw RuntimeException(
            "", "not a camera description: the root element is <" + std::string(root.name) + ">");
    }
    CreateNodesIn(root);
    Link();
    CheckValueCycles();
    MarkFeatures();
    // Decide cacheability now, while no other thread can see the map.
    for (const auto& node : map_.Nodes()) {
        node->IsVolatile();
    }
}

void Loader::CreateNodesIn(const xml::Element& parent) {
    for (const xml::Element* child = doc_.FirstChild(parent); child != nullptr;
         child = doc_.NextSibling(*child)) {
        if (child->name == "Group") {
            CreateNodesIn(*child);
        } else if (child->name == "StructReg") {
            CreateStructEntries(*child);
        } else {
            CreateNode(*child);
        }
    }
}

Node* Loader::Register(std::unique_ptr<Node> node, const xml::Element& element) {
    if (map_.IsNameTaken(node->NameView())) {
        throw RuntimeException(std::string(node->NameView()), "node is defined twice");
    }
    Node* added = map_.Add(std::move(node), true);
    added->Parse(element, *this);
    return added;
}

Node* Loader::CreateNode(const xml::Element& element) {
    if (element.name == "Extension") {
        return nullptr;
    }
    const std::string_view name = doc_.AttributeValue(element, "Name");
    std::unique_ptr<Node> node;
    if (element.name == "EnumEntry") {
        node = std::make_unique<EnumEntryNode>(map_, name, name);
    } else {
        node = MakeNode(map_, element.name, name);
    }
    if (node == nullptr) {
        return nullptr;  // not a node: unknown elements are skipped
    }
    if (name.empty()) {
        throw RuntimeException("", "<" + std::string(element.name) + "> without a Name attribute");
    }
    return Register(std::move(node), element);
}

Node* Loader::CreateEnumEntry(const xml::Element& element, std::string_view enumeration) {
    const std::string_view symbolic = doc_.AttributeValue(element, "Name");
    if (symbolic.empty()) {
        throw RuntimeException(std::string(enumeration), "<EnumEntry> without a Name attribute");
    }
    const std::string_view name =
        map_.Intern("EnumEntry_" + std::string(enumeration) + "_" + std::string(symbolic));
    return Register(std::make_unique<EnumEntryNode>(map_, name, symbolic), element);
}

void Loader::CreateStructEntries(const xml::Element& structReg) {
    auto cache = std::make_shared<RegisterCache>();
    for (const xml::Element* child = doc_.FirstChild(structReg); child != nullptr;
         child = doc_.NextSibling(*child)) {
        if (child->name != "StructEntry") {
            continue;
        }
        const std::string_view name = doc_.AttributeValue(*child, "Name");
        if (name.empty()) {
            throw RuntimeException("", "<StructEntry> without a Name attribute");
        }
        if (map_.IsNameTaken(name)) {
            throw RuntimeException(std::string(name), "node is defined twice");
        }
        auto entry = std::make_unique<MaskedIntRegFacade>(map_, name);
        entry->ShareCache(cache);
        auto* added = static_cast<MaskedIntRegFacade*>(map_.Add(std::move(entry), true));
        added->ParseRegisterBlock(structReg, *this);
        added->Parse(*child, *this);
    }
}

void Loader::Link() {
    for (const auto& owned : map_.Nodes()) {
        Node* owner = owned.get();
        owner->VisitReferences([&](Ref& ref, RefKind kind) {
            if (ref.node == nullptr) {
                ref.node = map_.Find(ref.name);
            }
            if (ref.node == nullptr) {
                throw RuntimeException(std::string(owner->NameView()),
                                       "refers to undefined node '" + std::string(ref.name) + "'");
            }
            Node* target = ref.node;
            switch (kind) {
                case RefKind::Value:
                case RefKind::Reading:
                    target->AddDependent(owner);
                    owner->AddChild(target);
                    owner->AddValueChild(target);
                    break;
                case RefKind::Access:
                case RefKind::Feature:
                    target->AddDependent(owner);
                    owner->AddChild(target);
                    break;
                case RefKind::Invalidating:
                    target->AddDependent(owner);
                    break;
                case RefKind::Selecting:
                    owner->AddDependent(target);
                    owner->AddSelected(target);
                    break;
                case RefKind::Metadata:
                    break;
            }
        });
    }
    for (const auto& owned : map_.Nodes()) {
        owned->CompactDependents();
        owned->Finish(*this);
    }
}

// Value references must form a directed acyclic graph, otherwise reading a value would
// never end. Iterative depth-first search with three colours.
void Loader::CheckValueCycles() {
    enum : uint8_t { White, Grey, Black };
    struct Frame {
        Node* node;
        size_t next;
    };
    std::vector<Frame> stack;
    for (const auto& owned : map_.Nodes()) {
        if (owned->LoadColour() != White) {
            continue;
        }
        stack.push_back({owned.get(), 0});
        owned->LoadColour() = Grey;
        while (!stack.empty()) {
            Frame& frame = stack.back();
            const auto& children = frame.node->ValueChildren();
            if (frame.next == children.size()) {
                frame.node->LoadColour() = Black;
                stack.pop_back();
                continue;
            }
            Node* child = children[frame.next++];
            if (child->LoadColour() == Grey) {
                std::string path(child->NameView());
                for (auto it = stack.rbegin(); it != stack.rend() && it->node != child; ++it) {
                    path = std::string(it->node->NameView()) + " -> " + path;
                }
                throw RuntimeException(
                    std::string(child->NameView()),
                    "reference cycle: " + std::string(child->NameView()) + " -> " + path);
            }
            if (child->LoadColour() == White) {
                if (stack.size() >= kMaxValueDepth) {
                    throw RuntimeException(
                        std::string(child->NameView()),
                        "chain of value references deeper than " + std::to_string(kMaxValueDepth));
                }
                child->LoadColour() = Grey;
                stack.push_back({child, 0});
            }
        }
    }
}

void Loader::MarkFeatures() {
    auto* root = dynamic_cast<CategoryNode*>(map_.Find("Root"));
    if (root == nullptr) {
        return;
    }
    std::unordered_set<const Node*> seen{root};
    std::vector<CategoryNode*> pending{root};
    while (!pending.empty()) {
        CategoryNode* category = pending.back();
        pending.pop_back();
        for (const Ref& feature : category->Features()) {
            feature.node->MarkFeature();
            auto* sub = dynamic_cast<CategoryNode*>(feature.node);
            if (sub != nullptr && seen.insert(sub).second) {
                pending.push_back(sub);
            }
        }
    }
}

int64_t Loader::Integer(const xml::Element& element, std::string_view owner) const {
    int64_t value = 0;
    if (!ParseInteger(element.text, value)) {
        throw RuntimeException(std::string(owner), "<" + std::string(element.name) + "> text '" +
                                                       std::string(element.text) +
                                                       "' is not an integer");
    }
    return value;
}

double Loader::Real(const xml::Element& element, std::string_view owner) const {
    double value = 0;
    if (!ParseReal(element.text, value)) {
        throw RuntimeException(std::string(owner), "<" + std::string(element.name) + "> text '" +
                                                       std::string(element.text) +
                                                       "' is not a number");
    }
    return value;
}

int64_t Loader::IntegerAttribute(const xml::Element& element, std::string_view attribute,
                                 std::string_view owner) const {
    const std::string_view text = xml::Trim(doc_.AttributeValue(element, attribute));
    int64_t value = 0;
    if (!ParseInteger(text, value)) {
        throw RuntimeException(std::string(owner), "attribute " + std::string(attribute) + "='" +
                                                       std::string(text) + "' is not an integer");
    }
    return value;
}

}  // namespace RyGenApi::detail
