#include "system/interface_identifier.h"

namespace RYSDK::system {
namespace {

constexpr size_t kNameCapacity = 256;
constexpr size_t kIdentifierCapacity = 260;

// Splits off one token like strtok: leading delimiters are skipped, the token ends at the
// next delimiter, and `rest` starts one past that delimiter.
std::string_view NextToken(std::string_view& rest, std::string_view delimiters) {
    const size_t start = rest.find_first_not_of(delimiters);
    if (start == std::string_view::npos) {
        rest = {};
        return {};
    }
    const size_t end = rest.find_first_of(delimiters, start);
    const std::string_view token =
        rest.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
    rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    return token;
}

}  // namespace

std::string InterfaceIdFromName(std::string_view displayName) {
    std::string_view name = displayName.substr(0, kNameCapacity - 1);
    name = name.substr(0, name.find(' '));
    if (name.size() > 3)
        name.remove_prefix(3);
    return std::string(name);
}

std::string InterfaceIdFromLabel(std::string_view text) {
    std::string_view rest = text.substr(0, kIdentifierCapacity - 1);
    if (rest.find("ID:") == std::string_view::npos)
        return std::string(rest);
    NextToken(rest, " :");
    return std::string(NextToken(rest, " "));
}

}  // namespace RYSDK::system
