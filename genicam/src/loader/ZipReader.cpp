#include "loader/ZipReader.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "ry/genicam/Exceptions.h"

namespace RyGenApi::detail {

namespace {

// The archive as minizip sees it: a read-only stream over the caller's memory block.
struct MemoryStream {
    const unsigned char* data;
    size_t size;
    size_t position;
};

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

struct ArchiveCloser {
    void operator()(void* archive) const { unzClose(archive); }
};

struct MemberCloser {
    void operator()(void* archive) const { unzCloseCurrentFile(archive); }
};

[[noreturn]] void Fail(const std::string& message) {
    throw RuntimeException("", "zip archive: " + message);
}

}  // namespace

std::string ExtractFirstZipMember(const void* data, size_t size, size_t limit) {
    if (data == nullptr || size < 22) {
        Fail("data is too short to be an archive");
    }
    MemoryStream stream{static_cast<const unsigned char*>(data), size, 0};
    zlib_filefunc_def functions{};
    functions.zopen_file = OpenStream;
    functions.zread_file = ReadStream;
    functions.zwrite_file = WriteStream;
    functions.ztell_file = TellStream;
    functions.zseek_file = SeekStream;
    functions.zclose_file = CloseStream;
    functions.zerror_file = TestErrorStream;
    functions.opaque = &stream;

    std::unique_ptr<void, ArchiveCloser> archive(unzOpen2("memory", &functions));
    if (!archive) {
        Fail("not a zip archive");
    }
    if (unzGoToFirstFile(archive.get()) != UNZ_OK) {
        Fail("the archive holds no file");
    }
    if (unzOpenCurrentFile(archive.get()) != UNZ_OK) {
        Fail("the first member cannot be opened (unsupported method or damaged header)");
    }
    std::unique_ptr<void, MemberCloser> member(archive.get());
    std::string text;
    char buffer[64 * 1024];
    for (;;) {
        const int count = unzReadCurrentFile(archive.get(), buffer, sizeof buffer);
        if (count < 0) {
            Fail("the first member is damaged (inflate error " + std::to_string(count) + ")");
        }
        if (count == 0) {
            break;
        }
        if (text.size() + static_cast<size_t>(count) > limit) {
            Fail("the first member inflates beyond " + std::to_string(limit) + " bytes");
        }
        text.append(buffer, static_cast<size_t>(count));
    }
    // Closing checks the CRC of the fully read member.
    member.release();
    if (unzCloseCurrentFile(archive.get()) != UNZ_OK) {
        Fail("the first member fails its CRC check");
    }
    return text;
}

}  // namespace RyGenApi::detail
