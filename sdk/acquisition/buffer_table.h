// The image buffers a camera allocates itself and announces to its stream: one block per
// buffer and the array of their addresses that the buffer-pool calls hand out. The table
// owns every block; a block is freed only by the table, never by whoever holds the array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace RYSDK::acquisition {

class BufferTable {
  public:
    // Returns a block of `size` bytes or null; the table frees it with delete[].
    using Allocator = uint8_t* (*)(size_t size) noexcept;

    static uint8_t* AllocateBlock(size_t size) noexcept;

    explicit BufferTable(Allocator allocator = AllocateBlock) noexcept : allocator_(allocator) {}
    ~BufferTable() { Clear(); }
    BufferTable(const BufferTable&) = delete;
    BufferTable& operator=(const BufferTable&) = delete;

    // Replaces the table with `count` empty entries. Throws std::bad_alloc when the array
    // itself cannot be had; the old blocks are freed first.
    void Reset(uint32_t count);

    // Allocates entry `index`; false when the allocator gave nothing.
    bool Fill(uint32_t index, size_t size);

    // Frees every block and the array.
    void Clear() noexcept;

    // The array of block addresses (null entries where nothing was allocated), or null.
    void** Array() noexcept { return count_ == 0 ? nullptr : addresses_.get(); }
    uint32_t Count() const noexcept { return count_; }
    size_t BlockSize() const noexcept { return blockSize_; }

  private:
    Allocator allocator_;
    std::unique_ptr<void*[]> addresses_;
    uint32_t count_ = 0;
    size_t blockSize_ = 0;
};

}  // namespace RYSDK::acquisition
