#include "ry/genicam/DescriptionUrl.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string_view>

namespace RyGenApi {

namespace {

// Splits like successive strtok calls: empty fields between separators are skipped.
bool NextToken(std::string_view& rest, std::string_view& token) {
    const size_t start = rest.find_first_not_of(';');
    if (start == std::string_view::npos)
        return false;
    rest.remove_prefix(start);
    const size_t end = rest.find(';');
    token = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);
    return true;
}

// Base 16 as strtoull reads it: leading blanks and an optional "0x" allowed, stops at the
// first other character.
uint64_t ParseHex(std::string_view field) {
    const std::string text(field);
    return std::strtoull(text.c_str(), nullptr, 16);
}

}  // namespace

UrlVerdict ParseDescriptionUrl(std::string url, DescriptionLocation& location) {
    std::transform(url.begin(), url.end(), url.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (url.find("local") == std::string::npos)
        return UrlVerdict::NotLocal;
    std::string_view rest(url);
    std::string_view file, address, length;
    if (!NextToken(rest, file) || !NextToken(rest, address) || !NextToken(rest, length))
        return UrlVerdict::MissingField;
    location.zipped = file.find(".zip") != std::string_view::npos;
    location.address = ParseHex(address);
    location.length = ParseHex(length);
    return UrlVerdict::Local;
}

}  // namespace RyGenApi
