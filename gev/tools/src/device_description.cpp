#include "device_description.h"

#include <unzip.h>

#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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

std::optional<LocalUrl> ParseLocalUrl(const std::string& url) {
    const std::string scheme = "local:";
    if (url.size() < scheme.size())
        return std::nullopt;
    for (size_t i = 0; i < scheme.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(url[i])) != scheme[i])
            return std::nullopt;
    const size_t first = url.find(';', scheme.size());
    const size_t second = first == std::string::npos ? first : url.find(';', first + 1);
    if (second == std::string::npos)
        return std::nullopt;
    LocalUrl local;
    local.fileName = url.substr(scheme.size(), first - scheme.size());
    char* end = nullptr;
    const std::string address = url.substr(first + 1, second - first - 1);
    local.address = std::strtoull(address.c_str(), &end, 16);
    if (address.empty() || *end != '\0')
        return std::nullopt;
    const std::string length = url.substr(second + 1);
    local.length = std::strtoull(length.c_str(), &end, 16);
    if (length.empty() || (*end != '\0' && *end != '?'))
        return std::nullopt;
    return local;
}

std::optional<std::string> UnzipFirstFile(const std::vector<uint8_t>& archive) {
    if (archive.size() < 4 || std::memcmp(archive.data(), "PK\x03\x04", 4) != 0)
        return std::nullopt;
    // minizip reads files: stage the archive in an anonymous temporary one.
    char path[] = "/tmp/ry-stream-bench-XXXXXX";
    const int fd = ::mkstemp(path);
    if (fd < 0)
        return std::nullopt;
    const bool written =
        ::write(fd, archive.data(), archive.size()) == static_cast<ssize_t>(archive.size());
    ::close(fd);
    std::optional<std::string> text;
    if (unzFile zip = written ? unzOpen(path) : nullptr) {
        unz_file_info info{};
        if (unzGoToFirstFile(zip) == UNZ_OK &&
            unzGetCurrentFileInfo(zip, &info, nullptr, 0, nullptr, 0, nullptr, 0) == UNZ_OK &&
            info.uncompressed_size < (256u << 20) && unzOpenCurrentFile(zip) == UNZ_OK) {
            std::string content(info.uncompressed_size, '\0');
            const int got =
                unzReadCurrentFile(zip, content.data(), static_cast<unsigned>(content.size()));
            if (got == static_cast<int>(content.size()))
                text = std::move(content);
            unzCloseCurrentFile(zip);
        }
        unzClose(zip);
    }
    ::unlink(path);
    return text;
}

}  // namespace ry::gev::tools
