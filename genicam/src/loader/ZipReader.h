// Extracts the description file from a zip archive held in memory.
#pragma once

#include <cstddef>
#include <string>

namespace RyGenApi::detail {

// Largest description accepted after inflation; real files stay far below 16 MiB, so
// anything larger is treated as a malicious or broken archive.
inline constexpr size_t kMaxInflatedSize = 64u * 1024u * 1024u;

// Returns the first member of the archive. Throws RuntimeException when the data is not a
// zip archive, holds no member, is damaged or inflates beyond `limit` bytes.
std::string ExtractFirstZipMember(const void* data, size_t size, size_t limit = kMaxInflatedSize);

}  // namespace RyGenApi::detail
