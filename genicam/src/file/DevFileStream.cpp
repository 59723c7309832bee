#include "ry/genicam/DevFileStream.h"

#include <algorithm>

namespace RyGenApi {

namespace {

// Opens the device file and sizes the transfer buffer to the device's chunk; on failure
// nothing stays open.
bool OpenDeviceFile(FileProtocolAdapter& adapter, INodeMap* nodeMap, const char* fileName,
                    std::ios_base::openmode mode, std::ios_base::openmode direction,
                    std::vector<char>& buffer) {
    if (fileName == nullptr || !adapter.attach(nodeMap) || !adapter.openFile(fileName, mode)) {
        return false;
    }
    const int64_t chunk = adapter.getBufSize(fileName, direction);
    if (chunk <= 0) {
        adapter.closeFile(fileName);
        return false;
    }
    buffer.assign(static_cast<size_t>(chunk), 0);
    return true;
}

}  // namespace

// ---- input -----------------------------------------------------------------------------

// A destructor must not throw; a device fault while closing leaves nothing to report to.
IDevFileStreamBuf::~IDevFileStreamBuf() {
    try {
        close();
    } catch (...) {
    }
}

IDevFileStreamBuf* IDevFileStreamBuf::open(INodeMap* nodeMap, const char* fileName,
                                           std::ios_base::openmode mode) {
    if (open_ || !OpenDeviceFile(adapter_, nodeMap, fileName, mode | std::ios_base::in,
                                 std::ios_base::in, buffer_)) {
        return nullptr;
    }
    fileName_ = fileName;
    position_ = 0;
    open_ = true;
    setg(buffer_.data(), buffer_.data(), buffer_.data());
    return this;
}

IDevFileStreamBuf* IDevFileStreamBuf::close() {
    if (!open_) {
        return nullptr;
    }
    open_ = false;
    setg(nullptr, nullptr, nullptr);
    return adapter_.closeFile(fileName_.c_str()) ? this : nullptr;
}

IDevFileStreamBuf::int_type IDevFileStreamBuf::underflow() {
    if (gptr() < egptr()) {
        return traits_type::to_int_type(*gptr());
    }
    if (!open_) {
        return traits_type::eof();
    }
    const std::streamsize count = adapter_.read(
        buffer_.data(), position_, static_cast<std::streamsize>(buffer_.size()), fileName_.c_str());
    if (count <= 0) {
        return traits_type::eof();
    }
    position_ += count;
    setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
    return traits_type::to_int_type(*gptr());
}

std::streamsize IDevFileStreamBuf::showmanyc() {
    return egptr() - gptr();
}

// ---- output ----------------------------------------------------------------------------

ODevFileStreamBuf::~ODevFileStreamBuf() {
    try {
        close();
    } catch (...) {
    }
}

ODevFileStreamBuf* ODevFileStreamBuf::open(INodeMap* nodeMap, const char* fileName,
                                           std::ios_base::openmode mode) {
    if (open_ || !OpenDeviceFile(adapter_, nodeMap, fileName,
                                 (mode & ~std::ios_base::trunc) | std::ios_base::out,
                                 std::ios_base::out, buffer_)) {
        return nullptr;
    }
    fileName_ = fileName;
    position_ = 0;
    open_ = true;
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return this;
}

bool ODevFileStreamBuf::Flush() {
    const std::streamsize pending = pptr() - pbase();
    if (pending == 0) {
        return true;
    }
    const std::streamsize written = adapter_.write(pbase(), position_, pending, fileName_.c_str());
    position_ += std::max<std::streamsize>(written, 0);
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return written == pending;
}

ODevFileStreamBuf::int_type ODevFileStreamBuf::overflow(int_type c) {
    if (!open_ || !Flush()) {
        return traits_type::eof();
    }
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

int ODevFileStreamBuf::sync() {
    return open_ && Flush() ? 0 : -1;
}

ODevFileStreamBuf* ODevFileStreamBuf::close() {
    if (!open_) {
        return nullptr;
    }
    const bool flushed = Flush();
    open_ = false;
    setp(nullptr, nullptr);
    const bool closed = adapter_.closeFile(fileName_.c_str());
    return flushed && closed ? this : nullptr;
}

}  // namespace RyGenApi
