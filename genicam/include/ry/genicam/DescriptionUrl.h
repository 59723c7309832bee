// Where a device keeps its GenICam description, as the URL in its bootstrap registers names
// it. Only the local form is read: "local:<file>;<address>;<length>", address and length in
// hexadecimal, a file name containing ".zip" marking a zip archive (ZipArchive unpacks it).
// The SDK and the transport tools read descriptions through this one reading.
#pragma once

#include <cstdint>
#include <string>

namespace RyGenApi {

// Descriptions of real cameras stay far below this; a URL or an archive that claims more is
// refused rather than allowed to allocate without bound.
inline constexpr uint64_t kMaxDescriptionBytes = 64u * 1024u * 1024u;

struct DescriptionLocation {
    uint64_t address = 0;
    uint64_t length = 0;
    bool zipped = false;
};

enum class UrlVerdict { Local, NotLocal, MissingField };

// Reads the URL after lower-casing it: any URL containing "local" is taken as local, its
// three fields split at ';' with empty fields skipped, the numbers read as far as they are
// hexadecimal (so a "?SchemaVersion=..." suffix ends the length).
UrlVerdict ParseDescriptionUrl(std::string url, DescriptionLocation& location);

}  // namespace RyGenApi
