// std::streambuf / std::istream / std::ostream over a device file, moving data in the
// device's own chunk size through FileProtocolAdapter.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <vector>

#include "ry/genicam/FileProtocolAdapter.h"

namespace RyGenApi {

class IDevFileStreamBuf : public std::streambuf {
  public:
    IDevFileStreamBuf() = default;
    ~IDevFileStreamBuf() override;
    IDevFileStreamBuf(const IDevFileStreamBuf&) = delete;
    IDevFileStreamBuf& operator=(const IDevFileStreamBuf&) = delete;

    // Null when the file cannot be opened for reading.
    IDevFileStreamBuf* open(INodeMap* nodeMap, const char* fileName,
                            std::ios_base::openmode mode = std::ios_base::in);
    bool is_open() const { return open_; }
    IDevFileStreamBuf* close();

  protected:
    int_type underflow() override;
    std::streamsize showmanyc() override;

  private:
    FileProtocolAdapter adapter_;
    std::string fileName_;
    std::vector<char> buffer_;
    int64_t position_ = 0;
    bool open_ = false;
};

class ODevFileStreamBuf : public std::streambuf {
  public:
    ODevFileStreamBuf() = default;
    ~ODevFileStreamBuf() override;
    ODevFileStreamBuf(const ODevFileStreamBuf&) = delete;
    ODevFileStreamBuf& operator=(const ODevFileStreamBuf&) = delete;

    ODevFileStreamBuf* open(INodeMap* nodeMap, const char* fileName,
                            std::ios_base::openmode mode = std::ios_base::out |
                                                           std::ios_base::trunc);
    bool is_open() const { return open_; }
    // Flushes what is buffered and closes the device file; null when either step failed.
    ODevFileStreamBuf* close();

  protected:
    int_type overflow(int_type c) override;
    int sync() override;

  private:
    bool Flush();

    FileProtocolAdapter adapter_;
    std::string fileName_;
    std::vector<char> buffer_;
    int64_t position_ = 0;
    bool open_ = false;
};

// An istream or ostream owning its device file buffer, opened like a std::fstream.
template <class Stream, class Buffer, std::ios_base::openmode DefaultMode>
class DevFileStreamBase : public Stream {
  public:
    DevFileStreamBase() : Stream(&buffer_) {}
    DevFileStreamBase(INodeMap* nodeMap, const char* fileName,
                      std::ios_base::openmode mode = DefaultMode)
        : Stream(&buffer_) {
        open(nodeMap, fileName, mode);
    }
    void open(INodeMap* nodeMap, const char* fileName, std::ios_base::openmode mode = DefaultMode) {
        if (buffer_.open(nodeMap, fileName, mode) == nullptr) {
            this->setstate(std::ios_base::failbit);
        }
    }
    bool is_open() const { return buffer_.is_open(); }
    void close() {
        if (buffer_.close() == nullptr) {
            this->setstate(std::ios_base::failbit);
        }
    }
    Buffer* rdbuf() { return &buffer_; }

  private:
    Buffer buffer_;
};

using IDevFileStreamBase = DevFileStreamBase<std::istream, IDevFileStreamBuf, std::ios_base::in>;
using ODevFileStreamBase =
    DevFileStreamBase<std::ostream, ODevFileStreamBuf, std::ios_base::out | std::ios_base::trunc>;
using IDevFileStream = IDevFileStreamBase;
using ODevFileStream = ODevFileStreamBase;

}  // namespace RyGenApi
