#include "xml/XmlDocument.h"

#include <cstring>

#include "ry/genicam/Exceptions.h"

namespace RyGenApi::detail::xml {

namespace {

constexpr size_t kMaxDepth = 512;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsNameChar(char c) {
    return c != ' ' && c != '\t' && c != '\r' && c != '\n' && c != '>' && c != '/' && c != '=' &&
           c != '<' && c != '"' && c != '\'';
}

std::string_view LocalName(std::string_view name) {
    const size_t colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

void AppendUtf8(std::string& out, uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string_view Trim(std::string_view text) {
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && IsSpace(text[begin])) {
        ++begin;
    }
    while (end > begin && IsSpace(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

// Single pass over the source. Open elements live on an explicit stack, so nesting depth
// costs no native stack and is bounded by kMaxDepth.
class Parser {
  public:
    explicit Parser(Document& document) : doc_(document), text_(document.source_) {}

    void Run() {
        SkipPreamble();
        while (pos_ < text_.size()) {
            if (text_[pos_] == '<') {
                ParseMarkup();
            } else {
                ParseText();
            }
        }
        if (!stack_.empty()) {
            Fail("element <" + std::string(doc_.elements_[stack_.back().index].name) +
                 "> is not closed");
        }
        if (doc_.elements_.empty()) {
            Fail("no root element");
        }
    }

  private:
    struct OpenElement {
        int32_t index;
        int32_t lastChild = -1;
        std::string_view piece;  // the only text piece so far, when still raw
        std::string* composed = nullptr;
    };

    [[noreturn]] void Fail(const std::string& message) const {
        throw RuntimeException("", "XML error at byte " + std::to_string(pos_) + ": " + message);
    }

    // Skips a byte-order mark and anything before the first markup that can start a
    // document (some tools put a label line in front of the declaration).
    void SkipPreamble() {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") {
            pos_ = 3;
        }
        const size_t declaration = text_.find("<?xml", pos_);
        if (declaration != std::string_view::npos) {
            pos_ = declaration;
            return;
        }
        const size_t firstTag = text_.find('<', pos_);
        pos_ = firstTag == std::string_view::npos ? text_.size() : firstTag;
    }

    void SkipPast(std::string_view terminator, const char* what) {
        const size_t end = text_.find(terminator, pos_);
        if (end == std::string_view::npos) {
            Fail(std::string("unterminated ") + what);
        }
        pos_ = end + terminator.size();
    }

    void ParseMarkup() {
        const std::string_view rest = text_.substr(pos_);
        if (rest.starts_with("<?")) {
            SkipPast("?>", "processing instruction");
        } else if (rest.starts_with("<!--")) {
            pos_ += 4;
            SkipPast("-->", "comment");
        } else if (rest.starts_with("<![CDATA[")) {
            const size_t begin = pos_ + 9;
            pos_ = begin;
            SkipPast("]]>", "CDATA section");
            AddText(text_.substr(begin, pos_ - 3 - begin), false);
        } else if (rest.starts_with("<!")) {
            SkipDoctype();
        } else if (rest.starts_with("</")) {
            ParseClosingTag();
        } else {
            ParseOpeningTag();
        }
    }

    void SkipDoctype() {
        int bracketDepth = 0;
        for (++pos_; pos_ < text_.size(); ++pos_) {
            const char c = text_[pos_];
            if (c == '[') {
                ++bracketDepth;
            } else if (c == ']') {
                --bracketDepth;
            } else if (c == '>' && bracketDepth <= 0) {
                ++pos_;
                return;
            }
        }
        Fail("unterminated declaration");
    }

    std::string_view ReadName() {
        const size_t begin = pos_;
        while (pos_ < text_.size() && IsNameChar(text_[pos_])) {
            ++pos_;
        }
        if (pos_ == begin) {
            Fail("expected a name");
        }
        return text_.substr(begin, pos_ - begin);
    }

    void SkipSpaces() {
        while (pos_ < text_.size() && IsSpace(text_[pos_])) {
            ++pos_;
        }
    }

    void ParseOpeningTag() {
        ++pos_;
        const std::string_view name = ReadName();
        if (stack_.empty() && !doc_.elements_.empty()) {
            Fail("content after the root element");
        }
        if (stack_.size() >= kMaxDepth) {
            Fail("elements nested too deeply");
        }
        const auto index = static_cast<int32_t>(doc_.elements_.size());
        Element element;
        element.name = LocalName(name);
        element.firstAttribute = static_cast<uint32_t>(doc_.attributes_.size());
        ParseAttributes(element);
        LinkToParent(index);
        doc_.elements_.push_back(element);
        if (text_[pos_] == '/') {
            if (pos_ + 1 >= text_.size() || text_[pos_ + 1] != '>') {
                Fail("expected '>' after '/'");
            }
            pos_ += 2;
            return;
        }
        ++pos_;
        stack_.push_back(OpenElement{index, -1, {}, nullptr});
    }

    void ParseAttributes(Element& element) {
        for (;;) {
            SkipSpaces();
            if (pos_ >= text_.size()) {
                Fail("unterminated tag");
            }
            const char c = text_[pos_];
            if (c == '>' || c == '/') {
                return;
            }
            const std::string_view name = ReadName();
            SkipSpaces();
            if (pos_ >= text_.size() || text_[pos_] != '=') {
                Fail("expected '=' after attribute " + std::string(name));
            }
            ++pos_;
            SkipSpaces();
            if (pos_ >= text_.size() || (text_[pos_] != '"' && text_[pos_] != '\'')) {
                Fail("expected a quoted value for attribute " + std::string(name));
            }
            const char quote = text_[pos_++];
            const size_t end = text_.find(quote, pos_);
            if (end == std::string_view::npos) {
                Fail("unterminated attribute value");
            }
            std::string_view value = text_.substr(pos_, end - pos_);
            pos_ = end + 1;
            if (value.find('&') != std::string_view::npos) {
                value = Store(Decode(value));
            }
            doc_.attributes_.push_back(Attribute{LocalName(name), value});
            ++element.attributeCount;
        }
    }

    void LinkToParent(int32_t index) {
        if (stack_.empty()) {
            return;
        }
        OpenElement& parent = stack_.back();
        if (parent.lastChild < 0) {
            doc_.elements_[parent.index].firstChild = index;
        } else {
            doc_.elements_[parent.lastChild].nextSibling = index;
        }
        parent.lastChild = index;
    }

    void ParseClosingTag() {
        pos_ += 2;
        const std::string_view name = LocalName(ReadName());
        SkipSpaces();
        if (pos_ >= text_.size() || text_[pos_] != '>') {
            Fail("expected '>' in closing tag");
        }
        ++pos_;
        if (stack_.empty()) {
            Fail("closing tag </" + std::string(name) + "> without an open element");
        }
        OpenElement& open = stack_.back();
        Element& element = doc_.elements_[open.index];
        if (element.name != name) {
            Fail("closing tag </" + std::string(name) + "> does not match <" +
                 std::string(element.name) + ">");
        }
        element.text = open.composed ? Trim(*open.composed) : Trim(open.piece);
        stack_.pop_back();
    }

    void ParseText() {
        const char* begin = text_.data() + pos_;
        const void* next = std::memchr(begin, '<', text_.size() - pos_);
        const size_t end = next ? static_cast<size_t>(static_cast<const char*>(next) - text_.data())
                                : text_.size();
        const std::string_view piece = text_.substr(pos_, end - pos_);
        pos_ = end;
        if (Trim(piece).empty()) {
            return;
        }
        if (stack_.empty()) {
            Fail("text outside the root element");
        }
        AddText(piece, piece.find('&') != std::string_view::npos);
    }

    void AddText(std::string_view piece, bool needsDecoding) {
        if (stack_.empty()) {
            Fail("text outside the root element");
        }
        OpenElement& open = stack_.back();
        if (!needsDecoding && open.composed == nullptr && open.piece.empty()) {
            open.piece = piece;
            return;
        }
        if (open.composed == nullptr) {
            open.composed = &doc_.decodedTexts_.emplace_back(open.piece);
        }
        *open.composed += needsDecoding ? Decode(piece) : std::string(piece);
    }

    std::string_view Store(std::string text) {
        return doc_.decodedTexts_.emplace_back(std::move(text));
    }

    std::string Decode(std::string_view raw) {
        std::string out;
        out.reserve(raw.size());
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '&') {
                out += raw[i];
                continue;
            }
            const size_t semicolon = raw.find(';', i);
            if (semicolon == std::string_view::npos || semicolon - i > 12) {
                Fail("unterminated entity reference");
            }
            AppendEntity(out, raw.substr(i + 1, semicolon - i - 1));
            i = semicolon;
        }
        return out;
    }

    void AppendEntity(std::string& out, std::string_view entity) {
        if (entity == "lt") {
            out += '<';
        } else if (entity == "gt") {
            out += '>';
        } else if (entity == "amp") {
            out += '&';
        } else if (entity == "quot") {
            out += '"';
        } else if (entity == "apos") {
            out += '\'';
        } else if (entity.size() > 1 && entity[0] == '#') {
            AppendUtf8(out, CharacterReference(entity.substr(1)));
        } else {
            Fail("unknown entity &" + std::string(entity) + ";");
        }
    }

    uint32_t CharacterReference(std::string_view digits) {
        const bool hex = digits[0] == 'x' || digits[0] == 'X';
        if (hex) {
            digits.remove_prefix(1);
        }
        uint32_t code = 0;
        for (char c : digits) {
            uint32_t digit = 0;
            if (c >= '0' && c <= '9') {
                digit = static_cast<uint32_t>(c - '0');
            } else if (hex && c >= 'a' && c <= 'f') {
                digit = static_cast<uint32_t>(c - 'a' + 10);
            } else if (hex && c >= 'A' && c <= 'F') {
                digit = static_cast<uint32_t>(c - 'A' + 10);
            } else {
                Fail("bad character reference");
            }
            code = code * (hex ? 16 : 10) + digit;
            if (code > 0x10FFFF) {
                Fail("character reference out of range");
            }
        }
        if (digits.empty() || code == 0) {
            Fail("bad character reference");
        }
        return code;
    }

    Document& doc_;
    std::string_view text_;
    size_t pos_ = 0;
    std::vector<OpenElement> stack_;
};

std::unique_ptr<Document> Document::Parse(std::string text) {
    auto document = std::make_unique<Document>();
    document->source_ = std::move(text);
    document->elements_.reserve(document->source_.size() / 40 + 16);
    document->attributes_.reserve(document->source_.size() / 60 + 16);
    Parser(*document).Run();
    return document;
}

const Element* Document::FirstChild(const Element& element) const {
    return element.firstChild < 0 ? nullptr : &elements_[static_cast<size_t>(element.firstChild)];
}

const Element* Document::NextSibling(const Element& element) const {
    return element.nextSibling < 0 ? nullptr : &elements_[static_cast<size_t>(element.nextSibling)];
}

std::string_view Document::AttributeValue(const Element& element, std::string_view name) const {
    for (uint32_t i = 0; i < element.attributeCount; ++i) {
        const Attribute& attribute = attributes_[element.firstAttribute + i];
        if (attribute.name == name) {
            return attribute.value;
        }
    }
    return {};
}

bool Document::HasAttribute(const Element& element, std::string_view name) const {
    for (uint32_t i = 0; i < element.attributeCount; ++i) {
        if (attributes_[element.firstAttribute + i].name == name) {
            return true;
        }
    }
    return false;
}

}  // namespace RyGenApi::detail::xml
