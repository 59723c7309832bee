// Test images and guarded destination buffers shared by the conversion tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace RYSDK::imageproc::testing {

// Pseudo-random samples from a xorshift generator: cheap enough for full frames even in
// sanitizer builds, and the same for a given seed on every run.
template <class T>
std::vector<T> RandomSamples(size_t count, uint32_t seed, uint32_t mask) {
    uint64_t state = 0x9E3779B97F4A7C15ull * (uint64_t{seed} + 1);
    std::vector<T> out(count);
    for (T& v : out) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        v = static_cast<T>((state >> 24) & mask);
    }
    return out;
}

// A destination with a tail of sentinel samples after the part the conversion may write,
// so an overrun shows even without the address sanitizer.
template <class T>
class GuardedBuffer {
  public:
    static constexpr size_t kGuard = 64;
    static constexpr T kSentinel = static_cast<T>(0xA5A5);

    explicit GuardedBuffer(size_t size) : storage_(size + kGuard, kSentinel), size_(size) {}

    T* data() { return storage_.data(); }
    size_t size() const { return size_; }
    std::vector<T> Written() const {
        return std::vector<T>(storage_.begin(), storage_.begin() + size_);
    }
    bool GuardIntact() const {
        for (size_t i = size_; i < storage_.size(); ++i) {
            if (storage_[i] != kSentinel) {
                return false;
            }
        }
        return true;
    }
    bool Untouched() const {
        for (const T& v : storage_) {
            if (v != kSentinel) {
                return false;
            }
        }
        return true;
    }

  private:
    std::vector<T> storage_;
    size_t size_;
};

}  // namespace RYSDK::imageproc::testing
