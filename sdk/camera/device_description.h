// Finding and decoding the GenICam description a camera stores in its own memory. The
// device names it by a URL of the local form (RyGenApi::ParseDescriptionUrl).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "core/log/log.h"
#include "ry/genicam/DescriptionUrl.h"
#include "rysdk/RyTypes.h"

namespace RYSDK::camera {

using RyGenApi::DescriptionLocation;
using RyGenApi::kMaxDescriptionBytes;
using RyGenApi::ParseDescriptionUrl;
using RyGenApi::UrlVerdict;

// The file as read from the device: `length` bytes followed by a zero byte.
struct RawDescription {
    std::unique_ptr<char[]> data;
    uint32_t length = 0;
    bool zipped = false;
};

// Asks the device for the URL and reads the file. False when the URL cannot be read, is
// not local, lacks a field or names more than kMaxDescriptionBytes; failures are logged at
// `site` as the camera reports them.
bool ReadRawDescription(TransportHandle device, const core::LogSite& site,
                        RawDescription& description);

// Turns the raw file into the description's text: unzips it (logging each failing stage),
// then drops a UTF-8 byte-order mark or converts UTF-16 LE with its mark to UTF-8. The text
// ends at its first zero byte. False when the archive cannot be unzipped.
bool DecodeDescription(const RawDescription& description, const core::LogSite& site,
                       std::string& text);

// Converts UTF-16 little-endian units to UTF-8, stopping at the first zero unit; a lone
// surrogate becomes U+FFFD.
std::string Utf16LeToUtf8(std::string_view bytes);

}  // namespace RYSDK::camera

namespace RYSDK::camera {

// The text a plain (not zipped) description gives the node map: up to its first zero byte,
// or, for UTF-16 with its byte-order mark, converted to UTF-8 first.
std::string PlainDescriptionText(const RawDescription& description);

}  // namespace RYSDK::camera
