// Just enough of a device's GenICam description for the bench: where the register behind a
// command or integer feature lives, without a full node map.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ry/genicam/DescriptionUrl.h"

namespace ry::gev::tools {

struct FeatureRegister {
    uint64_t address = 0;
    uint32_t length = 4;
    uint64_t commandValue = 1;  // for commands: the value that executes them
};

// Follows Name="feature" through pValue links to the node that has an Address.
std::optional<FeatureRegister> FindFeatureRegister(const std::string& xml,
                                                   const std::string& feature);

// Where the description lies in device memory, read from the URL as the SDK reads it;
// nullopt for a URL that is not local or lacks a field.
std::optional<RyGenApi::DescriptionLocation> ParseLocalUrl(const std::string& url);

// The first member of a zip archive held in memory; nullopt when the block is not an
// archive, is damaged, or unpacks to more than a description can be.
std::optional<std::string> UnzipFirstFile(const std::vector<uint8_t>& archive);

}  // namespace ry::gev::tools
