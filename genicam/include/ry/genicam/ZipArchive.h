// A zip archive held in memory, read with minizip: the node map loads zipped descriptions
// through it, and callers that report each stage of the extraction on their own use it
// directly. Nothing is written; the caller's block must outlive the archive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace RyGenApi {

namespace detail {
// The archive as minizip sees it: a read-only stream over the caller's memory block.
struct ZipMemoryStream {
    const unsigned char* data;
    size_t size;
    size_t position;
};
}  // namespace detail

class ZipArchive {
  public:
    // Opens the block as an archive; IsOpen() tells whether it is one.
    ZipArchive(const void* data, size_t size);
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    bool IsOpen() const noexcept { return archive_ != nullptr; }

    // Moves to the first member and gives its uncompressed size as the archive states it.
    // Returns minizip's status (0 on success).
    int FirstMember(uint64_t& uncompressedSize);

    // Inflates the current member into `out`, at most `limit` bytes, and checks its CRC.
    // Returns minizip's status (0 on success, negative on damage); a member larger than
    // `limit` gives UNZ_BADZIPFILE and leaves `out` empty.
    int ExtractMember(std::string& out, size_t limit);

  private:
    detail::ZipMemoryStream stream_;
    void* archive_ = nullptr;
};

}  // namespace RyGenApi
