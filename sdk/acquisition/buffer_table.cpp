#include "acquisition/buffer_table.h"

#include <new>

namespace RYSDK::acquisition {

uint8_t* BufferTable::AllocateBlock(size_t size) noexcept {
    return new (std::nothrow) uint8_t[size];
}

void BufferTable::Reset(uint32_t count) {
    Clear();
    if (count == 0)
        return;
    addresses_.reset(new void*[count]());
    count_ = count;
}

bool BufferTable::Fill(uint32_t index, size_t size) {
    uint8_t* block = allocator_(size);
    if (block == nullptr)
        return false;
    delete[] static_cast<uint8_t*>(addresses_[index]);
    addresses_[index] = block;
    blockSize_ = size;
    return true;
}

void BufferTable::Clear() noexcept {
    for (uint32_t i = 0; i < count_; ++i)
        delete[] static_cast<uint8_t*>(addresses_[i]);
    addresses_.reset();
    count_ = 0;
    blockSize_ = 0;
}

}  // namespace RYSDK::acquisition
