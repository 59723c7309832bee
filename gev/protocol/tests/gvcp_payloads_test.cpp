#include "ry/gev/protocol/gvcp_payloads.h"

#include <gtest/gtest.h>

namespace ry::gev {
namespace {

using Bytes = std::vector<std::uint8_t>;

ConstBytes payload_of(const Bytes& datagram) {
    return ConstBytes(datagram).subspan(kGvcpHeaderSize);
}

TEST(Discovery, PayloadLayoutMatchesBootstrapImage) {
    DeviceInfo info;
    info.version_major = 2;
    info.device_mode = 0x80000001;
    info.mac = {0x02, 0x11, 0x22, 0x33, 0x44, 0x55};
    info.ip = 0x7F000002;
    info.subnet_mask = 0xFF000000;
    info.manufacturer = "Maker";
    info.serial_number = "0123456789ABCDEFXYZ";  // longer than the 16-byte field
    const Bytes ack = make_discovery_ack(0xFFFF, info);
    ASSERT_EQ(ack.size(), 8 + 248u);
    EXPECT_EQ(ack[3], 0x03);
    const std::uint8_t* p = ack.data() + 8;
    EXPECT_EQ(p[0x0A], 0x02);
    EXPECT_EQ(p[0x0F], 0x55);
    EXPECT_EQ(load_be32(p + 0x24), 0x7F000002u);
    EXPECT_EQ(p[0x48], 'M');

    auto decoded = decode_device_info(payload_of(ack));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->mac, info.mac);
    EXPECT_EQ(decoded->manufacturer, "Maker");
    EXPECT_EQ(decoded->serial_number, "0123456789ABCDEF");  // bounded by the field
    EXPECT_EQ(decoded->device_mode, 0x80000001u);
    EXPECT_FALSE(decode_device_info(payload_of(ack).first(247)));
}

TEST(RegisterAccess, ReadRegLimitsAndRoundTrip) {
    EXPECT_FALSE(make_readreg_command(1, {}));
    EXPECT_FALSE(make_readreg_command(1, std::vector<std::uint32_t>(kMaxReadRegCount + 1, 0)));
    auto cmd = make_readreg_command(5, {0x0A00, 0x0938});
    ASSERT_TRUE(cmd);
    auto addresses = decode_readreg_command(payload_of(*cmd));
    ASSERT_TRUE(addresses);
    EXPECT_EQ(*addresses, (std::vector<std::uint32_t>{0x0A00, 0x0938}));
    EXPECT_FALSE(decode_readreg_command(payload_of(*cmd).first(6)));  // not whole words
    EXPECT_FALSE(decode_readreg_command({}));

    const Bytes ack = make_readreg_ack(0, 5, {2, 3000});
    auto values = decode_readreg_ack(payload_of(ack));
    ASSERT_TRUE(values);
    EXPECT_EQ(*values, (std::vector<std::uint32_t>{2, 3000}));
}

TEST(RegisterAccess, WriteRegPairsAndIndexAck) {
    EXPECT_FALSE(make_writereg_command(1, std::vector<RegisterWrite>(kMaxWriteRegCount + 1)));
    auto cmd = make_writereg_command(9, {{0x0A00, 2}, {0x0D00, 5000}});
    ASSERT_TRUE(cmd);
    EXPECT_EQ(cmd->size(), 8 + 16u);
    auto writes = decode_writereg_command(payload_of(*cmd));
    ASSERT_TRUE(writes);
    ASSERT_EQ(writes->size(), 2u);
    EXPECT_EQ((*writes)[1].address, 0x0D00u);
    EXPECT_EQ((*writes)[1].value, 5000u);
    EXPECT_FALSE(decode_writereg_command(payload_of(*cmd).first(12)));

    const Bytes ack = make_writereg_ack(0x8006, 9, 1);
    EXPECT_EQ(decode_writereg_ack(payload_of(ack)), 1);
    EXPECT_FALSE(decode_writereg_ack(payload_of(ack).first(3)));
}

TEST(MemoryAccess, ReadMemAndWriteMemFraming) {
    const Bytes cmd = make_readmem_command(3, {0x0200, 512});
    EXPECT_EQ(cmd, (Bytes{0x42, 1, 0, 0x84, 0, 8, 0, 3, 0, 0, 2, 0, 0, 0, 2, 0}));
    auto request = decode_readmem_command(payload_of(cmd));
    ASSERT_TRUE(request);
    EXPECT_EQ(request->address, 0x0200u);
    EXPECT_EQ(request->count, 512);
    EXPECT_FALSE(decode_readmem_command(payload_of(cmd).first(7)));

    const Bytes data(kMaxMemoryAccess, 0xAB);
    EXPECT_TRUE(make_readmem_ack(3, 0x10000, data));
    EXPECT_FALSE(make_readmem_ack(3, 0x10000, Bytes(kMaxMemoryAccess + 4)));
    auto wr = make_writemem_command(4, 0x10000, data);
    ASSERT_TRUE(wr);
    EXPECT_EQ(wr->size(), kGvcpMaxDatagram);
    auto block = decode_writemem_command(payload_of(*wr));
    ASSERT_TRUE(block);
    EXPECT_EQ(block->address, 0x10000u);
    EXPECT_EQ(block->data, data);
    EXPECT_FALSE(decode_writemem_command(payload_of(*wr).first(3)));
    EXPECT_EQ(decode_writemem_ack(payload_of(make_writemem_ack(0, 4, 536))), 536);
}

TEST(PacketResend, StandardAndExtendedLayouts) {
    PacketResendRequest standard{0, 0x1234, 5, 9, false};
    const Bytes cmd = make_packetresend_command(77, standard);
    EXPECT_EQ(cmd[1], 0x00);  // never ack-required
    EXPECT_EQ(cmd.size(), 8 + 12u);
    auto decoded = decode_packetresend_command(cmd[1], payload_of(cmd));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->block_id, 0x1234u);
    EXPECT_EQ(decoded->first_packet_id, 5u);
    EXPECT_EQ(decoded->last_packet_id, 9u);

    PacketResendRequest extended{1, 0x1122334455667788ULL, 0x01000000, 0x01000002, true};
    const Bytes ext = make_packetresend_command(78, extended);
    EXPECT_EQ(ext[1], kFlagExtendedIds);
    auto ext_decoded = decode_packetresend_command(ext[1], payload_of(ext));
    ASSERT_TRUE(ext_decoded);
    EXPECT_EQ(ext_decoded->block_id, extended.block_id);
    EXPECT_EQ(ext_decoded->first_packet_id, 0x01000000u);
    // An extended request cut to the standard size is refused.
    EXPECT_FALSE(decode_packetresend_command(ext[1], payload_of(ext).first(12)));
}

TEST(ForceIpAndPending, Layouts) {
    ForceIpRequest request{{1, 2, 3, 4, 5, 6}, 0x7F000005, 0xFF000000, 0};
    const Bytes cmd = make_forceip_command(1, 0x11, request);
    ASSERT_EQ(cmd.size(), 8 + 56u);
    EXPECT_EQ(cmd[8 + 2], 1);
    EXPECT_EQ(load_be32(cmd.data() + 8 + 20), 0x7F000005u);
    auto decoded = decode_forceip_command(payload_of(cmd));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->mac, request.mac);
    EXPECT_EQ(decoded->subnet_mask, 0xFF000000u);
    EXPECT_FALSE(decode_forceip_command(payload_of(cmd).first(55)));

    const Bytes pending = make_pending_ack(42, 1500);
    EXPECT_EQ(pending, (Bytes{0, 0, 0, 0x89, 0, 4, 0, 42, 0, 0, 0x05, 0xDC}));
    EXPECT_EQ(decode_pending_ack(payload_of(pending)), 1500);
}

TEST(Events, EventItemsStandardAndExtended) {
    EventItem item{0x9001, 0xFFFF, 0x0102, 0x1122334455667788ULL, {}};
    auto cmd = make_event_command(10, false, {item, item});
    ASSERT_TRUE(cmd);
    EXPECT_EQ(cmd->size(), 8 + 32u);
    auto items = decode_event_command((*cmd)[1], payload_of(*cmd));
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2u);
    EXPECT_EQ((*items)[1].event_id, 0x9001);
    EXPECT_EQ((*items)[1].timestamp, item.timestamp);
    EXPECT_FALSE(decode_event_command((*cmd)[1], payload_of(*cmd).first(20)));

    auto ext = make_event_command(11, true, {item});
    ASSERT_TRUE(ext);
    EXPECT_EQ(load_be16(ext->data() + 8), kExtendedEventItemSize);
    auto ext_items = decode_event_command((*ext)[1], payload_of(*ext));
    ASSERT_TRUE(ext_items);
    EXPECT_EQ((*ext_items)[0].block_id, 0x0102u);
    EXPECT_FALSE(make_event_command(1, false, std::vector<EventItem>(34, item)));
}

TEST(Events, EventDataBoundsAndItemSizes) {
    EventItem item{0x9002, 0, 7, 99, {1, 2, 3, 4, 5}};
    for (bool extended : {false, true}) {
        auto cmd = make_eventdata_command(1, extended, item);
        ASSERT_TRUE(cmd);
        auto items = decode_eventdata_command((*cmd)[1], payload_of(*cmd));
        ASSERT_TRUE(items) << extended;
        EXPECT_EQ((*items)[0].data, item.data);
        EXPECT_EQ((*items)[0].block_id, 7u);
    }
    item.data.assign(kGvcpMaxPayload, 0);
    EXPECT_FALSE(make_eventdata_command(1, false, item));

    // Extended item whose size field points past the payload.
    Bytes bad(24, 0);
    store_be16(bad.data(), 200);
    EXPECT_FALSE(decode_eventdata_command(kFlagExtendedIds, bad));
    store_be16(bad.data(), 4);  // smaller than its own header
    EXPECT_FALSE(decode_eventdata_command(kFlagExtendedIds, bad));
}

}  // namespace
}  // namespace ry::gev
