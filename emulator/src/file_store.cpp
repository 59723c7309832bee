#include "file_store.h"

#include <algorithm>

namespace ry::emulator {

FileStore::FileStore() {
    const std::string user_set = "Width=640\nHeight=480\nPixelFormat=Mono8\nExposureTime=10000\n";
    std::vector<std::uint8_t> lut(256);
    for (std::size_t i = 0; i < lut.size(); ++i) {
        lut[i] = static_cast<std::uint8_t>(i);
    }
    files_[0] = File{"UserSet1", {user_set.begin(), user_set.end()}, true};
    files_[1] = File{"UserData", {}, true};
    files_[2] = File{"LUTLuminance", lut, false};
}

bool FileStore::select(std::uint32_t file) {
    if (file >= files_.size()) {
        return false;
    }
    selector_ = file;
    return true;
}

std::uint32_t FileStore::size() const {
    return static_cast<std::uint32_t>(files_[selector_].data.size());
}

const std::vector<std::uint8_t>& FileStore::contents(std::uint32_t file) const {
    return files_[std::min<std::size_t>(file, files_.size() - 1)].data;
}

void FileStore::execute() {
    result_ = 0;
    failed_ = !run(files_[selector_]);
}

bool FileStore::run(File& file) {
    const bool may_read = file.mode != FileOpenMode::Write;
    const bool may_write = file.mode != FileOpenMode::Read;
    switch (static_cast<FileOperation>(operation_)) {
        case FileOperation::Open:
            if (file.open || open_mode_ > 2 ||
                (!file.writable && open_mode_ != static_cast<std::uint32_t>(FileOpenMode::Read))) {
                return false;
            }
            file.open = true;
            file.mode = static_cast<FileOpenMode>(open_mode_);
            if (file.mode == FileOpenMode::Write) {
                file.data.clear();  // opening for writing starts the file afresh
            }
            return true;
        case FileOperation::Close:
            if (!file.open) {
                return false;
            }
            file.open = false;
            return true;
        case FileOperation::Read: {
            if (!file.open || !may_read || length_ > buffer_.size()) {
                return false;
            }
            const std::size_t from = std::min<std::size_t>(offset_, file.data.size());
            const std::size_t count = std::min<std::size_t>(length_, file.data.size() - from);
            std::copy_n(file.data.begin() + static_cast<std::ptrdiff_t>(from), count,
                        buffer_.begin());
            result_ = static_cast<std::uint32_t>(count);
            return true;
        }
        case FileOperation::Write: {
            if (!file.open || !may_write || length_ > buffer_.size() ||
                std::size_t{offset_} + length_ > kFileSizeLimit) {
                return false;
            }
            if (file.data.size() < std::size_t{offset_} + length_) {
                file.data.resize(std::size_t{offset_} + length_);
            }
            std::copy_n(buffer_.begin(), length_, file.data.begin() + offset_);
            result_ = length_;
            return true;
        }
        case FileOperation::Delete:
            if (file.open || !file.writable) {
                return false;
            }
            file.data.clear();
            return true;
    }
    return false;
}

}  // namespace ry::emulator
