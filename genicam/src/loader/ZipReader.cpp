#include "loader/ZipReader.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "ry/genicam/Exceptions.h"
#include "ry/genicam/ZipArchive.h"

namespace RyGenApi::detail {

namespace {

using MemoryStream = ZipMemoryStream;

voidpf ZCALLBACK OpenStream(voidpf opaque, const char*, int mode) {
    if ((mode & ZLIB_FILEFUNC_MODE_WRITE) != 0) {
        return nullptr;
    }
    auto* stream = static_cast<MemoryStream*>(opaque);
    stream->position = 0;
    return stream;
}

uLong ZCALLBACK ReadStream(voidpf, voidpf handle, void* buffer, uLong size) {
    auto* stream = static_cast<MemoryStream*>(handle);
    const size_t available = stream->size - stream->position;
    const size_t count = std::min<size_t>(available, size);
    std::memcpy(buffer, stream->data + stream->position, count);
    stream->position += count;
    return static_cast<uLong>(count);
}

uLong ZCALLBACK WriteStream(voidpf, voidpf, const void*, uLong) {
    return 0;
}

long ZCALLBACK TellStream(voidpf, voidpf handle) {
    return static_cast<long>(static_cast<MemoryStream*>(handle)->position);
}

long ZCALLBACK SeekStream(voidpf, voidpf handle, uLong offset, int origin) {
    auto* stream = static_cast<MemoryStream*>(handle);
    size_t base = 0;
    switch (origin) {
        case ZLIB_FILEFUNC_SEEK_SET:
            base = 0;
            break;
        case ZLIB_FILEFUNC_SEEK_CUR:
            base = stream->position;
            break;
        case ZLIB_FILEFUNC_SEEK_END:
            base = stream->size;
            break;
        default:
            return -1;
    }
    if (offset > stream->size || base + offset > stream->size) {
        return -1;
    }
    stream->position = base + offset;
    return 0;
}

int ZCALLBACK CloseStream(voidpf, voidpf) {
    return 0;
}
int ZCALLBACK TestErrorStream(voidpf, voidpf) {
    return 0;
}

[[noreturn]] void Fail(const std::string& message) {
    throw RuntimeException("", "zip archive: " + message);
}

}  // namespace

std::string ExtractFirstZipMember(const void* data, size_t size, size_t limit) {
    if (data == nullptr || size < 22) {
        Fail("data is too short to be an archive");
    }
    ZipArchive archive(data, size);
    if (!archive.IsOpen()) {
        Fail("not a zip archive");
    }
    uint64_t declared = 0;
    if (archive.FirstMember(declared) != UNZ_OK) {
        Fail("the archive holds no file");
    }
    std::string text;
    const int status = archive.ExtractMember(text, limit);
    if (status == UNZ_BADZIPFILE && text.empty()) {
        Fail("the first member cannot be opened or inflates beyond " + std::to_string(limit) +
             " bytes");
    }
    if (status == UNZ_CRCERROR) {
        Fail("the first member fails its CRC check");
    }
    if (status != UNZ_OK) {
        Fail("the first member is damaged (inflate error " + std::to_string(status) + ")");
    }
    return text;
}

}  // namespace RyGenApi::detail

namespace RyGenApi {

ZipArchive::ZipArchive(const void* data, size_t size)
    : stream_{static_cast<const unsigned char*>(data), data == nullptr ? 0 : size, 0} {
    if (data == nullptr)
        return;
    zlib_filefunc_def functions{};
    functions.zopen_file = detail::OpenStream;
    functions.zread_file = detail::ReadStream;
    functions.zwrite_file = detail::WriteStream;
    functions.ztell_file = detail::TellStream;
    functions.zseek_file = detail::SeekStream;
    functions.zclose_file = detail::CloseStream;
    functions.zerror_file = detail::TestErrorStream;
    functions.opaque = &stream_;
    archive_ = unzOpen2("memory", &functions);
}

ZipArchive::~ZipArchive() {
    if (archive_ != nullptr)
        unzClose(archive_);
}

int ZipArchive::FirstMember(uint64_t& uncompressedSize) {
    if (archive_ == nullptr)
        return UNZ_PARAMERROR;
    const int status = unzGoToFirstFile(archive_);
    if (status != UNZ_OK)
        return status;
    unz_file_info info{};
    const int described =
        unzGetCurrentFileInfo(archive_, &info, nullptr, 0, nullptr, 0, nullptr, 0);
    if (described == UNZ_OK)
        uncompressedSize = info.uncompressed_size;
    return described;
}

int ZipArchive::ExtractMember(std::string& out, size_t limit) {
    out.clear();
    if (archive_ == nullptr)
        return UNZ_PARAMERROR;
    if (unzOpenCurrentFile(archive_) != UNZ_OK)
        return UNZ_BADZIPFILE;
    char buffer[64 * 1024];
    for (;;) {
        const int count = unzReadCurrentFile(archive_, buffer, sizeof buffer);
        if (count == 0)
            break;
        // A damaged stream, or one that inflates past what the caller allows (a zip bomb
        // whose header understates its size), ends the extraction with nothing kept.
        if (count < 0 || out.size() + static_cast<size_t>(count) > limit) {
            unzCloseCurrentFile(archive_);
            out.clear();
            return count < 0 ? count : UNZ_BADZIPFILE;
        }
        out.append(buffer, static_cast<size_t>(count));
    }
    // Closing checks the CRC of the fully read member.
    const int closed = unzCloseCurrentFile(archive_);
    if (closed != UNZ_OK)
        out.clear();
    return closed;
}

}  // namespace RyGenApi
