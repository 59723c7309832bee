// Files the camera keeps in its memory, reached through the GenICam file access features
// (selector, operation, open mode, offset, length, execute, status, result, size and the
// transfer buffer).
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ry::emulator {

enum class FileOperation : std::uint32_t { Open = 0, Close = 1, Read = 2, Write = 3, Delete = 4 };
enum class FileOpenMode : std::uint32_t { Read = 0, Write = 1, ReadWrite = 2 };

inline constexpr std::size_t kFileBufferSize = 512;
inline constexpr std::size_t kFileSizeLimit = 1 << 20;

class FileStore {
  public:
    FileStore();

    static constexpr std::uint32_t file_count() { return 3; }
    std::uint32_t selector() const { return selector_; }
    bool select(std::uint32_t file);  // false for an unknown file
    std::uint32_t operation() const { return operation_; }
    void set_operation(std::uint32_t op) { operation_ = op; }
    std::uint32_t open_mode() const { return open_mode_; }
    void set_open_mode(std::uint32_t mode) { open_mode_ = mode; }
    std::uint32_t offset() const { return offset_; }
    void set_offset(std::uint32_t offset) { offset_ = offset; }
    std::uint32_t length() const { return length_; }
    void set_length(std::uint32_t length) { length_ = length; }

    // Runs the selected operation on the selected file; the outcome lands in status/result.
    void execute();
    bool last_failed() const { return failed_; }
    std::uint32_t result() const { return result_; }
    std::uint32_t size() const;

    std::span<std::uint8_t> buffer() { return buffer_; }
    const std::vector<std::uint8_t>& contents(std::uint32_t file) const;

  private:
    struct File {
        std::string name;
        std::vector<std::uint8_t> data;
        bool writable;
        bool open = false;
        FileOpenMode mode = FileOpenMode::Read;
    };
    bool run(File& file);

    std::array<File, 3> files_;
    std::array<std::uint8_t, kFileBufferSize> buffer_{};
    std::uint32_t selector_ = 0;
    std::uint32_t operation_ = 0;
    std::uint32_t open_mode_ = 0;
    std::uint32_t offset_ = 0;
    std::uint32_t length_ = 0;
    std::uint32_t result_ = 0;
    bool failed_ = false;
};

}  // namespace ry::emulator
