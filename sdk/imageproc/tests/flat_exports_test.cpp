// The flat functions must be reachable by their plain C names in the shipped shared library,
// so that callers without C++ (or with another compiler) can bind to them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

struct LibraryCloser {
    void operator()(void* handle) const { dlclose(handle); }
};

TEST(FlatExports, EveryConversionIsExportedWithCLinkage) {
    std::unique_ptr<void, LibraryCloser> library(dlopen(RY_SDK_LIBRARY_PATH, RTLD_NOW));
    ASSERT_NE(library, nullptr) << dlerror();
    const char* const names[] = {"ConvertBAYGB8ToBGR8",
                                 "ConvertBAYRG8ToBGR8",
                                 "ConvertBAYGR8ToBGR8",
                                 "ConvertBAYGB10ToBGR8",
                                 "ConvertBAYRG10ToBGR8",
                                 "ConvertBAYGR10ToBGR8",
                                 "ConvertBAYGB10ToBGR10",
                                 "ConvertBAYRG10ToBGR10",
                                 "ConvertBAYGR10ToBGR10",
                                 "ConvertBAYGB12ToBGR8",
                                 "ConvertBAYRG12ToBGR8",
                                 "ConvertBAYGR12ToBGR8",
                                 "ConvertYUV422toBGR8",
                                 "ConvertYUV422PackedtoBGR8",
                                 "ConvertYUV411toBGR8",
                                 "ConvertYUV444toBGR8",
                                 "ConvertYUV422toBGR8Interlaced",
                                 "ConvertYUV422_UYVYtoBGR8",
                                 "ConvertYUV422_YUYVtoBGR8",
                                 "ConvertRGB8toBGR8",
                                 "ConvertRGB12PackedtoBGR8",
                                 "ConvertBGR10V2PackedtoBGR8",
                                 "ConvertMono8ToBGR8",
                                 "ConvertMono10ToBGR8",
                                 "ConvertMono12ToBGR8",
                                 "ConvertMono14ToBGR8",
                                 "ConvertMonoPackedToBGR8",
                                 "ConvertMono10PackedToMono8",
                                 "ConvertMono12PackedToMono16bit",
                                 "ConvertMono10PackedToMono16bit",
                                 "Convert8a_4b_4a_8bTo16_16_MMX_I"};
    for (const char* name : names) {
        EXPECT_NE(dlsym(library.get(), name), nullptr) << name;
    }
    // One call through the looked-up address: a 2 x 2 GB cell.
    using Bayer8 = void (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t);
    const auto convert = reinterpret_cast<Bayer8>(dlsym(library.get(), "ConvertBAYGB8ToBGR8"));
    ASSERT_NE(convert, nullptr);
    const std::vector<uint8_t> src = {10, 200, 50, 30};
    std::vector<uint8_t> dst(12);
    convert(src.data(), dst.data(), 2, 2);
    EXPECT_EQ(dst, (std::vector<uint8_t>{200, 10, 50, 200, 20, 50, 200, 20, 50, 200, 30, 50}));
}

}  // namespace
