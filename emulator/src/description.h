// The camera's GenICam description in the form its first URL announces.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ry/emulator/camera_config.h"

namespace ry::emulator {

// The description text as written for this camera (trigger entry renamed when asked).
std::string camera_xml_text(bool trigger_entry_ext,
                            const std::map<std::string, FeatureVariant>& variants = {});

struct StoredDescription {
    std::vector<std::uint8_t> bytes;  // what device memory holds
    std::string file_name;            // file part of the URL
};

// Encodes the text in the requested form. Throws std::runtime_error if zipping fails.
StoredDescription store_description(const std::string& xml, XmlForm form);

// "Local:<file>;<hex address>;<hex length>"
std::string local_url(const std::string& file_name, std::uint32_t address, std::size_t length);

}  // namespace ry::emulator
