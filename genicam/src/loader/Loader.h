// Builds the nodes of a parsed description in two passes: create every node (so forward
// references cost nothing), then resolve references and build the dependency graph.
#pragma once

#include <memory>
#include <string_view>

#include "xml/XmlDocument.h"

namespace RyGenApi::detail {

class NodeMapImpl;
class Node;

class Loader {
  public:
    Loader(NodeMapImpl& map, const xml::Document& document) : map_(map), doc_(document) {}

    void Run();

    const xml::Document& Doc() const { return doc_; }
    NodeMapImpl& Map() const { return map_; }
    // Creates, parses and registers the node an element describes; null for elements
    // that are not nodes. Used for top-level nodes and for nodes nested inside others.
    Node* CreateNode(const xml::Element& element);
    // Entries are named EnumEntry_<Enumeration>_<Entry> so equal entry names of different
    // enumerations, or entries named like features, never collide.
    Node* CreateEnumEntry(const xml::Element& element, std::string_view enumeration);
    // Numeric texts; a malformed one is fatal and names the node and the item.
    int64_t Integer(const xml::Element& element, std::string_view owner) const;
    double Real(const xml::Element& element, std::string_view owner) const;
    int64_t IntegerAttribute(const xml::Element& element, std::string_view attribute,
                             std::string_view owner) const;

  private:
    void CreateNodesIn(const xml::Element& parent);
    void CreateStructEntries(const xml::Element& structReg);
    Node* Register(std::unique_ptr<Node> node, const xml::Element& element);
    void Link();
    void CheckValueCycles();
    void MarkFeatures();

    NodeMapImpl& map_;
    const xml::Document& doc_;
};

}  // namespace RyGenApi::detail
