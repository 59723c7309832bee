#include "streaming_copy.h"

#include <immintrin.h>

#include <cstring>

namespace ry::gev::stream::detail {

namespace {

constexpr size_t kSmallestStreamed = 1024;  // below this the fence and set-up do not pay
constexpr size_t kVector = 32;

bool HasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

__attribute__((target("avx2"))) void StreamAligned(uint8_t* destination, const uint8_t* source,
                                                   size_t vectors) {
    auto* out = reinterpret_cast<__m256i*>(destination);
    const auto* in = reinterpret_cast<const __m256i*>(source);
    size_t i = 0;
    for (; i + 4 <= vectors; i += 4) {
        const __m256i a = _mm256_loadu_si256(in + i);
        const __m256i b = _mm256_loadu_si256(in + i + 1);
        const __m256i c = _mm256_loadu_si256(in + i + 2);
        const __m256i d = _mm256_loadu_si256(in + i + 3);
        _mm256_stream_si256(out + i, a);
        _mm256_stream_si256(out + i + 1, b);
        _mm256_stream_si256(out + i + 2, c);
        _mm256_stream_si256(out + i + 3, d);
    }
    for (; i < vectors; ++i) {
        _mm256_stream_si256(out + i, _mm256_loadu_si256(in + i));
    }
}

}  // namespace

void StreamingCopy(uint8_t* destination, const uint8_t* source, size_t bytes) {
    if (bytes < kSmallestStreamed || !HasAvx2()) {
        std::memcpy(destination, source, bytes);
        return;
    }
    const size_t head = (kVector - reinterpret_cast<uintptr_t>(destination) % kVector) % kVector;
    std::memcpy(destination, source, head);
    const size_t vectors = (bytes - head) / kVector;
    StreamAligned(destination + head, source + head, vectors);
    const size_t done = head + vectors * kVector;
    std::memcpy(destination + done, source + done, bytes - done);
}

void StreamingCopyFence() {
    _mm_sfence();
}

}  // namespace ry::gev::stream::detail
