// Just enough of a device's GenICam description for the bench: where the register behind a
// command or integer feature lives, without a full node map.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ry::gev::tools {

struct FeatureRegister {
    uint64_t address = 0;
    uint32_t length = 4;
    uint64_t commandValue = 1;  // for commands: the value that executes them
};

// Follows Name="feature" through pValue links to the node that has an Address.
std::optional<FeatureRegister> FindFeatureRegister(const std::string& xml,
                                                   const std::string& feature);

// "Local:name.xml;A000;1F40" -> (name, address, length); nullopt for other schemes.
struct LocalUrl {
    std::string fileName;
    uint64_t address = 0;
    uint64_t length = 0;
};
std::optional<LocalUrl> ParseLocalUrl(const std::string& url);

// The first file of a zip archive held in memory; nullopt when it is not one.
std::optional<std::string> UnzipFirstFile(const std::vector<uint8_t>& archive);

}  // namespace ry::gev::tools
