#include "device_description.h"

#include <cstdlib>

#include "ry/genicam/ZipArchive.h"

namespace ry::gev::tools {
namespace {

// The text of <tag>...</tag> inside [from, to), or empty.
std::string ChildText(const std::string& xml, size_t from, size_t to, const std::string& tag) {
    const std::string open = "<" + tag + ">";
    const size_t start = xml.find(open, from);
    if (start == std::string::npos || start >= to)
        return {};
    const size_t end = xml.find("</" + tag + ">", start);
    if (end == std::string::npos || end > to)
        return {};
    std::string text = xml.substr(start + open.size(), end - start - open.size());
    const size_t first = text.find_first_not_of(" \t\r\n");
    const size_t last = text.find_last_not_of(" \t\r\n");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

// The element that declares Name="name": [start of its tag, end of its closing tag).
bool FindNode(const std::string& xml, const std::string& name, size_t& begin, size_t& end) {
    const size_t at = xml.find("Name=\"" + name + "\"");
    if (at == std::string::npos)
        return false;
    begin = xml.rfind('<', at);
    if (begin == std::string::npos)
        return false;
    const size_t tagEnd = xml.find_first_of(" \t\r\n>", begin + 1);
    const std::string tag = xml.substr(begin + 1, tagEnd - begin - 1);
    const size_t close = xml.find("</" + tag + ">", at);
    end = close == std::string::npos ? xml.size() : close;
    return true;
}

std::optional<uint64_t> ParseNumber(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    char* end = nullptr;
    const uint64_t value = std::strtoull(text.c_str(), &end, 0);
    if (end == text.c_str() || *end != '\0')
        return std::nullopt;
    return value;
}

}  // namespace

std::optional<FeatureRegister> FindFeatureRegister(const std::string& xml,
                                                   const std::string& feature) {
    FeatureRegister found;
    std::string name = feature;
    for (int depth = 0; depth < 8; ++depth) {
        size_t begin = 0, end = 0;
        if (!FindNode(xml, name, begin, end))
            return std::nullopt;
        if (const auto value = ParseNumber(ChildText(xml, begin, end, "CommandValue")))
            found.commandValue = *value;
        if (const auto address = ParseNumber(ChildText(xml, begin, end, "Address"))) {
            found.address = *address;
            found.length = static_cast<uint32_t>(
                ParseNumber(ChildText(xml, begin, end, "Length")).value_or(4));
            return found;
        }
        name = ChildText(xml, begin, end, "pValue");
        if (name.empty())
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<RyGenApi::DescriptionLocation> ParseLocalUrl(const std::string& url) {
    RyGenApi::DescriptionLocation location;
    if (RyGenApi::ParseDescriptionUrl(url, location) != RyGenApi::UrlVerdict::Local)
        return std::nullopt;
    return location;
}

std::optional<std::string> UnzipFirstFile(const std::vector<uint8_t>& archive) {
    RyGenApi::ZipArchive zip(archive.data(), archive.size());
    uint64_t declared = 0;
    std::string text;
    if (!zip.IsOpen() || zip.FirstMember(declared) != 0 ||
        zip.ExtractMember(text, RyGenApi::kMaxDescriptionBytes) != 0)
        return std::nullopt;
    return text;
}

}  // namespace ry::gev::tools
