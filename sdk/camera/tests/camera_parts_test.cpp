// The small pieces of a camera that need no device: the general event codes, the stream
// destination text, the pool's block table and the pixel format catalogue.
#include <gtest/gtest.h>

#include <vector>

#include "TestSupport.h"
#include "acquisition/buffer_table.h"
#include "acquisition/pixel_format_catalogue.h"
#include "camera/general_events.h"
#include "camera/ip_address.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {
namespace {

std::vector<int> codes;
void Record(EventType type) {
    codes.push_back(type);
}

TEST(GeneralEvents, ClearStatusBitsBecomeCodesInOrderOnlyWhileBit31IsSet) {
    codes.clear();
    camera::ExecuteEventCallback(static_cast<int32_t>(~0xFFFFFFF0u), Record);
    EXPECT_EQ(codes, (std::vector<int>{2, 3, 4, 5}));
    codes.clear();
    camera::ExecuteEventCallback(static_cast<int32_t>(~0x7FFFFFFEu), Record);
    EXPECT_TRUE(codes.empty()) << "0x80000001 is negative: nothing is reported";
    camera::ExecuteEventCallback(0, Record);
    camera::ExecuteEventCallback(5, nullptr);
    EXPECT_TRUE(codes.empty());

    RyCamera camera(nullptr, 0);
    EXPECT_EQ(camera.IsValidEventType(1), 1);
    EXPECT_EQ(camera.IsValidEventType(4), 1);
    EXPECT_EQ(camera.IsValidEventType(5), 1);
    EXPECT_EQ(camera.IsValidEventType(2), 0);
    EXPECT_EQ(camera.IsValidEventType(8), 0);
    EXPECT_EQ(camera.SetGeneralEventCallback(nullptr), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera.SetGeneralEventCallback(Record), RESULT_SUCCESS);
}

TEST(StreamDestination, DottedTextBecomesTheRegisterValue) {
    EXPECT_EQ(camera::StrIP2dwIP("192.168.1.20"), 0xC0A80114u);
    EXPECT_EQ(camera::StrIP2dwIP("127.0.0.1"), 0x7F000001u);
    EXPECT_EQ(camera::StrIP2dwIP("10.1"), 0x0A010000u);
    EXPECT_EQ(camera::StrIP2dwIP(""), 0u);
    EXPECT_EQ(camera::StrIP2dwIP("x.y.z.w"), 0u);
}

uint8_t* NoMemory(size_t) noexcept {
    return nullptr;
}

TEST(BufferTable, OwnsItsBlocksAndSurvivesARefusedAllocation) {
    acquisition::BufferTable table;
    table.Reset(3);
    ASSERT_NE(table.Array(), nullptr);
    for (uint32_t i = 0; i < 3; ++i)
        ASSERT_TRUE(table.Fill(i, 307200));
    EXPECT_EQ(table.BlockSize(), 307200u);
    table.Reset(0);
    EXPECT_EQ(table.Array(), nullptr);
    EXPECT_EQ(table.Count(), 0u);

    acquisition::BufferTable starved(NoMemory);
    starved.Reset(2);
    EXPECT_FALSE(starved.Fill(0, 64));
    EXPECT_EQ(starved.Array()[0], nullptr);
}

// An address array larger than the machine's memory is refused by the allocator (the
// sanitizers' allocators abort instead of throwing, so those builds skip it).
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(BufferTable, AnArrayBeyondMemoryThrowsAndLeavesTheTableEmpty) {
    acquisition::BufferTable table;
    table.Reset(2);
    EXPECT_THROW(table.Reset(0xFFFFFFFFu), std::bad_alloc);
    EXPECT_EQ(table.Count(), 0u);
    EXPECT_EQ(table.Array(), nullptr);
}
#endif

TEST(PixelFormatCatalogue, SearchesStopAtTheFirstWholeMatch) {
    using acquisition::PixelFormatCodeOf;
    using acquisition::PixelFormatNameOf;
    EXPECT_EQ(acquisition::PixelFormatCatalogue().size(), 47u);
    EXPECT_EQ(PixelFormatCodeOf("Mono8signed"), 0x01080002u);
    EXPECT_EQ(PixelFormatCodeOf("mono8"), std::nullopt);
    EXPECT_EQ(PixelFormatCodeOf("Mono"), std::nullopt);
    EXPECT_STREQ(PixelFormatNameOf(0x01100025), "Mono14");
    EXPECT_STREQ(PixelFormatNameOf(0x02180014), "RGB8Packed");
    EXPECT_STREQ(PixelFormatNameOf(0x0230001A), "RGB12");
    EXPECT_EQ(PixelFormatNameOf(0x12345678), nullptr);
    EXPECT_EQ(PixelFormatBits(PIXEL_FORMAT_MONO12), 16u);
    EXPECT_EQ(PixelFormatBits(PIXEL_FORMAT_YUV41110PACKED), 18u);
}

}  // namespace
}  // namespace RYSDK

namespace RYSDK {
namespace {

// Reaches the camera's node map helpers, which take the node map's own types.
struct NodeMapHelpers : RyCamera {
    using RyCamera::GetNodeItemValue;
    using RyCamera::GetPollingTime;
};

TEST(PollingTime, AFeatureTakesItsValueNodesWhenItHasNoneOfItsOwn) {
    RyGenApi::testing::Fixture fixture(R"(
        <Integer Name="Temperature"><pValue>TemperatureReg</pValue></Integer>
        <IntReg Name="TemperatureReg"><Address>0x100</Address><Length>4</Length>
          <AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1000</PollingTime>
          <Endianess>BigEndian</Endianess></IntReg>
        <Integer Name="Counter"><PollingTime>250</PollingTime><Value>3</Value></Integer>
        <Integer Name="Plain"><Value>1</Value></Integer>)");
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(&fixture.map, "Temperature"), 1000);
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(&fixture.map, "Counter"), 250);
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(&fixture.map, "Plain"), 0);
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(&fixture.map, "Missing"), 0);
    EXPECT_EQ(NodeMapHelpers::GetNodeItemValue(&fixture.map, "Temperature", "pValue"),
              "TemperatureReg");
    int64_t polling = 0;
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(fixture.map._GetNode("Plain"), &polling),
              RESULT_SUCCESS);
    EXPECT_EQ(polling, -1);
    EXPECT_EQ(NodeMapHelpers::GetPollingTime(nullptr, &polling), RESULT_ERROR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace RYSDK
