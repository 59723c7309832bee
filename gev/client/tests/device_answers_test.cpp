// Reading what devices send, without a socket: which datagrams settle a request, how the
// answers of reads are taken, and the shapes of discovery and event datagrams a careless
// reader would trust.
#include <gtest/gtest.h>

#include <array>

#include "ry/gev/client/device_answers.h"

namespace ry::gev::client {
namespace {

constexpr uint16_t kId = 0x1234;
constexpr uint16_t kReadMemAck = static_cast<uint16_t>(GvcpAck::ReadMem);

std::vector<uint8_t> ReadMemAck(uint32_t address, std::vector<uint8_t> data) {
    return *make_readmem_ack(kId, address, data);
}

TEST(JudgeAck, OnlyTheExpectedAcknowledgeOfTheRequestSettlesIt) {
    const auto ack = ReadMemAck(0x200, {1, 2, 3, 4});
    EXPECT_EQ(JudgeAck(ack, kId, kReadMemAck).kind, AckVerdict::Kind::Answer);
    EXPECT_EQ(JudgeAck(ack, kId + 1, kReadMemAck).kind, AckVerdict::Kind::Ignore);
    EXPECT_EQ(JudgeAck(ack, kId, kReadMemAck + 2).kind, AckVerdict::Kind::Ignore);
    // A length past the datagram, or a header cut short, is not an answer.
    auto overlong = ack;
    store_be16(overlong.data() + 4, 0xFFFF);
    EXPECT_EQ(JudgeAck(overlong, kId, kReadMemAck).kind, AckVerdict::Kind::Ignore);
    EXPECT_EQ(JudgeAck(ConstBytes(ack).first(6), kId, kReadMemAck).kind, AckVerdict::Kind::Ignore);

    const auto pending = JudgeAck(make_pending_ack(kId, 1500), kId, kReadMemAck);
    EXPECT_EQ(pending.kind, AckVerdict::Kind::Pending);
    EXPECT_EQ(pending.pendingMs, 1500);
    const auto error = JudgeAck(make_ack(0x8006, kReadMemAck, kId), kId, kReadMemAck);
    EXPECT_EQ(error.kind, AckVerdict::Kind::Error);
    EXPECT_EQ(error.error, GC_ERR_ACCESS_DENIED);
}

TEST(TakeAnswers, ShortOrMisplacedAnswersAreErrorsAndLeaveTheBufferAlone) {
    std::array<uint32_t, 2> values{7, 7};
    const auto one = make_readreg_ack(0, kId, {5});
    EXPECT_EQ(TakeRegisterValues(ConstBytes(one).subspan(8), values), GC_ERR_IO);
    EXPECT_EQ(values, (std::array<uint32_t, 2>{7, 7}));
    const auto two = make_readreg_ack(0, kId, {5, 6});
    EXPECT_EQ(TakeRegisterValues(ConstBytes(two).subspan(8), values), GC_ERR_SUCCESS);
    EXPECT_EQ(values, (std::array<uint32_t, 2>{5, 6}));

    std::array<uint8_t, 4> data{9, 9, 9, 9};
    const auto moved = ReadMemAck(0x204, {1, 2, 3, 4});
    EXPECT_EQ(TakeMemoryData(ConstBytes(moved).subspan(8), 0x200, data), GC_ERR_IO);
    const auto shorter = ReadMemAck(0x200, {1, 2});
    EXPECT_EQ(TakeMemoryData(ConstBytes(shorter).subspan(8), 0x200, data), GC_ERR_IO);
    EXPECT_EQ(data, (std::array<uint8_t, 4>{9, 9, 9, 9}));
    // A read of no bytes is settled by an answer without data, and copies nothing.
    const auto empty = ReadMemAck(0x200, {});
    EXPECT_EQ(TakeMemoryData(ConstBytes(empty).subspan(8), 0x200, {}), GC_ERR_SUCCESS);
}

TEST(ParseDiscoveryAck, FullFieldsStopAtTheirWidthAndOtherAnswersAreRefused) {
    DeviceInfo info;
    info.manufacturer = std::string(40, 'V');
    info.serial_number = std::string(16, 'S');
    const auto ack = make_discovery_ack(kDiscoveryRequestId, info);
    const auto device = ParseDiscoveryAck(ack);
    ASSERT_TRUE(device);
    EXPECT_EQ(device->vendor, std::string(32, 'V'));
    EXPECT_EQ(device->serial, std::string(16, 'S'));

    EXPECT_FALSE(ParseDiscoveryAck(make_discovery_ack(1, info)));
    EXPECT_FALSE(ParseDiscoveryAck(ConstBytes(ack).first(8 + 100)));
    auto failed = ack;
    store_be16(failed.data(), 0x8001);
    EXPECT_FALSE(ParseDiscoveryAck(failed));
}

TEST(ParseEventMessage, ItemsAreReadAndAcknowledgedOnlyWhenAsked) {
    EventItem item;
    item.event_id = 0x9001;
    item.data = {1, 2, 3};
    auto command = *make_eventdata_command(kId, true, item);
    auto message = ParseEventMessage(command);
    ASSERT_TRUE(message);
    ASSERT_EQ(message->items.size(), 1u);
    EXPECT_EQ(message->items[0].data, item.data);
    EXPECT_EQ(message->ack, make_ack(0, static_cast<uint16_t>(GvcpAck::EventData), kId));

    command[1] &= static_cast<uint8_t>(~kFlagAckRequired);
    message = ParseEventMessage(command);
    ASSERT_TRUE(message);
    EXPECT_TRUE(message->ack.empty());
    // An extended item whose size runs past the datagram is refused whole.
    store_be16(command.data() + 8, 0x0400);
    EXPECT_FALSE(ParseEventMessage(command));
}

}  // namespace
}  // namespace ry::gev::client
