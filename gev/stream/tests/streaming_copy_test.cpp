// The payload copy: every byte arrives whatever the alignment of either side and the length,
// and nothing beyond the destination's range is touched.
#include "streaming_copy.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace ry::gev::stream::detail {
namespace {

TEST(StreamingCopy, CopiesEveryAlignmentAndLengthExactlyAndNoFurther) {
    constexpr size_t kGuard = 128;
    constexpr uint8_t kUntouched = 0xA5;
    const size_t lengths[] = {0, 1, 63, 1023, 1024, 1025, 1087, 4096, 8964, 8999};
    std::vector<uint8_t> source(9000 + 64);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint8_t>(i * 7 + 3);
    std::vector<uint8_t> destination(kGuard + 9000 + 64 + kGuard);
    for (const size_t length : lengths) {
        for (size_t to = 0; to < 64; to += 4) {
            for (size_t from = 0; from < 64; from += 9) {
                std::memset(destination.data(), kUntouched, destination.size());
                uint8_t* target = destination.data() + kGuard + to;
                StreamingCopy(target, source.data() + from, length);
                StreamingCopyFence();
                ASSERT_EQ(std::memcmp(target, source.data() + from, length), 0)
                    << length << " bytes to offset " << to << " from offset " << from;
                for (uint8_t* byte = destination.data(); byte < target; ++byte)
                    ASSERT_EQ(*byte, kUntouched) << "before the range, length " << length;
                for (uint8_t* byte = target + length;
                     byte < destination.data() + destination.size(); ++byte)
                    ASSERT_EQ(*byte, kUntouched) << "after the range, length " << length;
            }
        }
    }
}

}  // namespace
}  // namespace ry::gev::stream::detail
