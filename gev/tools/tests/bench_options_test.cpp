// ry-stream-bench's command line.
#include <gtest/gtest.h>

#include "bench_options.h"

namespace ry::gev::tools {
namespace {

TEST(BenchOptionsTest, ReadsEveryOption) {
    std::string error;
    const auto options = ParseBenchOptions(
        {"--device", "127.0.0.2", "--seconds", "2.5", "--packet-size", "9000", "--buffers", "4"},
        error);
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(options->device, "127.0.0.2");
    EXPECT_DOUBLE_EQ(options->seconds, 2.5);
    EXPECT_EQ(options->packetSize, 9000u);
    EXPECT_EQ(options->buffers, 4u);
    EXPECT_EQ(options->latencyReads, 0u);
    const auto latency = ParseBenchOptions({"--device", "10.0.0.1", "--latency", "1000"}, error);
    ASSERT_TRUE(latency);
    EXPECT_EQ(latency->latencyReads, 1000u);
}

TEST(BenchOptionsTest, RefusesBadInput) {
    const std::vector<std::vector<std::string>> bad = {
        {},
        {"--seconds", "3"},
        {"--device", "camera"},
        {"--device", "127.0.0.1", "--seconds"},
        {"--device", "127.0.0.1", "--seconds", "-1"},
        {"--device", "127.0.0.1", "--packet-size", "100"},
        {"--device", "127.0.0.1", "--packet-size", "70000"},
        {"--device", "127.0.0.1", "--buffers", "0"},
        {"--device", "127.0.0.1", "--latency", "x"},
        {"--device", "127.0.0.1", "--colour", "red"}};
    for (const auto& args : bad) {
        std::string error;
        EXPECT_FALSE(ParseBenchOptions(args, error));
        EXPECT_FALSE(error.empty());
    }
}

}  // namespace
}  // namespace ry::gev::tools
