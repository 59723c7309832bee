#include "ry/gev/protocol/gvcp.h"

#include <gtest/gtest.h>

#include <cstring>

namespace ry::gev {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(GvcpHeader, CommandBytesAreBigEndianWithKey) {
    const Bytes payload{0x00, 0x00, 0x0A, 0x00};
    const Bytes wire = make_command(0x0080, kFlagAckRequired, 0x1234, payload);
    const Bytes expected{0x42, 0x01, 0x00, 0x80, 0x00, 0x04, 0x12, 0x34, 0x00, 0x00, 0x0A, 0x00};
    EXPECT_EQ(wire, expected);

    auto header = decode_command_header(wire);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->flags, 0x01);
    EXPECT_EQ(header->command, 0x0080);
    EXPECT_EQ(header->length, 4);
    EXPECT_EQ(header->req_id, 0x1234);
    auto body = command_payload(wire, *header);
    ASSERT_TRUE(body);
    EXPECT_EQ(Bytes(body->begin(), body->end()), payload);
}

TEST(GvcpHeader, RejectsShortWrongKeyAndOverlongLength) {
    Bytes wire = make_command(0x0080, 1, 7, Bytes{1, 2, 3, 4});
    for (std::size_t n = 0; n < kGvcpHeaderSize; ++n) {
        EXPECT_FALSE(decode_command_header(ConstBytes(wire.data(), n))) << n;
        EXPECT_FALSE(decode_ack_header(ConstBytes(wire.data(), n))) << n;
    }
    // Length field claims more than the datagram holds.
    auto header = decode_command_header(ConstBytes(wire.data(), wire.size() - 1));
    ASSERT_TRUE(header);
    EXPECT_FALSE(command_payload(ConstBytes(wire.data(), wire.size() - 1), *header));
    wire[0] = 0x43;
    EXPECT_FALSE(decode_command_header(wire));
    EXPECT_FALSE(looks_like_command(wire));
}

TEST(GvcpHeader, AckRoundTripAndTrailingBytesIgnored) {
    Bytes wire = make_ack(0x8006, 0x0083, 0xBEEF);
    EXPECT_EQ(wire, (Bytes{0x80, 0x06, 0x00, 0x83, 0x00, 0x00, 0xBE, 0xEF}));
    wire.push_back(0xAA);  // padding some stacks add
    auto header = decode_ack_header(wire);
    ASSERT_TRUE(header);
    EXPECT_TRUE(is_error(header->status));
    EXPECT_EQ(header->acknowledge, ack_code_for(0x0082));
    auto body = ack_payload(wire, *header);
    ASSERT_TRUE(body);
    EXPECT_TRUE(body->empty());
}

TEST(GvcpHeader, RequestIdSkipsZeroAndStatusNames) {
    EXPECT_EQ(next_req_id(0xFFFF), 1);
    EXPECT_EQ(next_req_id(1), 2);
    EXPECT_STREQ(status_name(0x8006), "ACCESS_DENIED");
    EXPECT_STREQ(status_name(0x800C), "PACKET_UNAVAILABLE");
    EXPECT_STREQ(status_name(0x1234), "UNKNOWN");
    EXPECT_FALSE(is_error(0x0100));
}

}  // namespace
}  // namespace ry::gev
