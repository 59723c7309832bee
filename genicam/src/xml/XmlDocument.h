// A small non-validating XML reader tuned for camera description files: one pass over the
// text, elements and attributes stored in flat arrays, texts kept as views into the source
// unless an entity or CDATA section forced a decoded copy.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace RyGenApi::detail::xml {

struct Attribute {
    std::string_view name;
    std::string_view value;
};

struct Element {
    std::string_view name;  // local name, any namespace prefix removed
    std::string_view text;  // direct text content, entities decoded, whitespace trimmed
    uint32_t firstAttribute = 0;
    uint32_t attributeCount = 0;
    int32_t firstChild = -1;
    int32_t nextSibling = -1;
};

class Document {
  public:
    // Throws RuntimeException with the byte offset of the fault on malformed input.
    static std::unique_ptr<Document> Parse(std::string text);

    const Element& Root() const { return elements_.front(); }
    const Element& At(int32_t index) const { return elements_[static_cast<size_t>(index)]; }
    const Element* FirstChild(const Element& element) const;
    const Element* NextSibling(const Element& element) const;
    std::string_view AttributeValue(const Element& element, std::string_view name) const;
    bool HasAttribute(const Element& element, std::string_view name) const;
    size_t ElementCount() const { return elements_.size(); }

  private:
    friend class Parser;
    std::string source_;
    std::vector<Element> elements_;
    std::vector<Attribute> attributes_;
    std::deque<std::string> decodedTexts_;
};

// Trims XML whitespace (space, tab, CR, LF) from both ends.
std::string_view Trim(std::string_view text);

}  // namespace RyGenApi::detail::xml
