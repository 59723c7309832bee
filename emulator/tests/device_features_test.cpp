// Older-generation registers, the file store, events and the description forms.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "description.h"
#include "feature_registers.h"
#include "file_store.h"
#include "test_client.h"

namespace ry::emulator::testing {
namespace {

TEST(LegacyRegisters, StartStopAndMultiFrameThroughRegisters) {
    CameraConfig config = test_camera(7);
    config.model = "GigE_Connect";
    Camera camera(config);
    TestClient client(camera.address(), camera.control_port());
    StreamReceiver receiver;
    ASSERT_EQ(client.take_control(), 0);
    ASSERT_EQ(open_stream(client, receiver), 0);
    ASSERT_EQ(client.write_regs({{0x88138, 0}, {0x88130, 2}, {0x8815C, 3}, {0x88134, 1}}), 0);
    int trailers = 0;
    while (auto p = receiver.next(300)) {
        trailers += p->header.format == gev::GvspFormat::Trailer ? 1 : 0;
    }
    EXPECT_EQ(trailers, 3);
    ASSERT_EQ(client.write_regs({{0x88130, 1}, {0x88134, 1}}), 0);
    ASSERT_TRUE(receiver.next(500));
    EXPECT_EQ(client.read_reg(0x88134), 1u);
    ASSERT_EQ(client.write_reg(0x88138, 0), 0);
    EXPECT_EQ(client.read_reg(0x88134), 0u);
    EXPECT_EQ(client.write_reg(0x88130, 3),
              static_cast<std::uint16_t>(gev::GevStatus::InvalidParameter));
}

TEST(FileStore, OpenWriteReadCloseAndRefusals) {
    FileStore store;
    ASSERT_TRUE(store.select(1));
    EXPECT_FALSE(store.select(3));
    store.set_operation(2);  // read before open
    store.execute();
    EXPECT_TRUE(store.last_failed());
    store.set_open_mode(1);
    store.set_operation(0);
    store.execute();
    ASSERT_FALSE(store.last_failed());
    std::copy_n("hello", 5, store.buffer().begin());
    store.set_operation(3);
    store.set_offset(2);
    store.set_length(5);
    store.execute();
    EXPECT_EQ(store.result(), 5u);
    EXPECT_EQ(store.size(), 7u);
    store.set_operation(2);  // opened write-only
    store.execute();
    EXPECT_TRUE(store.last_failed());
    store.set_operation(1);
    store.execute();
    store.set_open_mode(0);
    store.set_operation(0);
    store.execute();
    store.set_operation(2);
    store.set_offset(0);
    store.set_length(512);
    store.execute();
    EXPECT_EQ(store.result(), 7u);
    EXPECT_EQ(std::string(store.buffer().begin() + 2, store.buffer().begin() + 7), "hello");
    ASSERT_TRUE(store.select(2));  // read-only file
    store.set_open_mode(2);
    store.set_operation(0);
    store.execute();
    EXPECT_TRUE(store.last_failed());
}

TEST(FileStore, ReachableThroughFeatureRegisters) {
    Camera camera(test_camera(8));
    TestClient client(camera.address(), camera.control_port());
    ASSERT_EQ(client.take_control(), 0);
    ASSERT_EQ(client.write_regs({{reg::kFileSelector, 0},
                                 {reg::kFileOperationSelector, 0},
                                 {reg::kFileOpenMode, 0},
                                 {reg::kFileOperationExecute, 1},
                                 {reg::kFileOperationSelector, 2},
                                 {reg::kFileAccessOffset, 0},
                                 {reg::kFileAccessLength, 8},
                                 {reg::kFileOperationExecute, 1}}),
              0);
    EXPECT_EQ(client.read_reg(reg::kFileOperationStatus), 0u);
    EXPECT_EQ(client.read_reg(reg::kFileOperationResult), 8u);
    const auto data = client.read_block(reg::kFileAccessBuffer, 8);
    EXPECT_EQ(std::string(data.begin(), data.end()), "Width=64");
    EXPECT_GT(client.read_reg(reg::kFileSize), 8u);
    EXPECT_EQ(client.write_reg(reg::kFileSelector, 7),
              static_cast<std::uint16_t>(gev::GevStatus::InvalidParameter));
}

TEST(Events, EnabledEventsArriveAndAreRepeatedUntilAcknowledged) {
    Camera camera(test_camera(9));
    TestClient client(camera.address(), camera.control_port());
    UdpSocket host(Endpoint{*parse_ipv4("127.0.0.1"), 0}, false);
    StreamReceiver receiver;
    ASSERT_EQ(client.take_control(), 0);
    ASSERT_EQ(open_stream(client, receiver), 0);
    ASSERT_EQ(client.write_regs({{0x0B10, *parse_ipv4("127.0.0.1")},
                                 {0x0B14, 100},
                                 {0x0B18, 2},
                                 {0x0B00, host.local_port()},
                                 {reg::kEventSelector, 0x9003},
                                 {reg::kEventNotification, 1},
                                 {reg::kAcquisitionMode, 1},
                                 {reg::kAcquisitionStart, 1}}),
              0);
    std::vector<std::uint8_t> buffer(600);
    Endpoint from;
    // Not acknowledged: the same event comes three times (first send and two retries).
    std::vector<std::uint16_t> ids;
    for (int i = 0; i < 3; ++i) {
        const std::size_t n = host.receive(buffer, from, 1000);
        ASSERT_GT(n, 0u);
        const auto header = gev::decode_command_header({buffer.data(), n});
        ASSERT_TRUE(header);
        EXPECT_EQ(header->command, 0x00C2);  // end of exposure comes with data
        const auto items = gev::decode_eventdata_command(
            header->flags, *gev::command_payload({buffer.data(), n}, *header));
        ASSERT_TRUE(items);
        EXPECT_EQ((*items)[0].event_id, 0x9003);
        EXPECT_EQ((*items)[0].block_id, 1u);
        EXPECT_EQ((*items)[0].data, (std::vector<std::uint8_t>{0, 0, 0, 1}));
        ids.push_back(header->req_id);
    }
    EXPECT_EQ(ids[0], ids[2]);
    EXPECT_EQ(host.receive(buffer, from, 300), 0u);
    // Acknowledged: sent once.
    ASSERT_EQ(client.write_reg(reg::kAcquisitionStart, 1), 0);
    const std::size_t n = host.receive(buffer, from, 1000);
    ASSERT_GT(n, 0u);
    const auto header = gev::decode_command_header({buffer.data(), n});
    host.send_to(from, gev::make_ack(0, 0x00C3, header->req_id));
    EXPECT_EQ(host.receive(buffer, from, 300), 0u);
}

TEST(Description, FormsAndUrl) {
    const std::string xml = camera_xml_text(false);
    EXPECT_NE(xml.find("<EnumEntry Name=\"External\""), std::string::npos);
    EXPECT_NE(camera_xml_text(true).find("<EnumEntry Name=\"Ext\""), std::string::npos);
    const auto plain = store_description(xml, XmlForm::Plain);
    EXPECT_EQ(std::string(plain.bytes.begin(), plain.bytes.end()), xml);
    const auto bom = store_description(xml, XmlForm::Utf8Bom);
    EXPECT_EQ(bom.bytes[0], 0xEF);
    EXPECT_EQ(std::string(bom.bytes.begin() + 3, bom.bytes.end()), xml);
    const auto utf16 = store_description("<a>\xC3\xA9\xF0\x9F\x98\x80</a>", XmlForm::Utf16Bom);
    const std::vector<std::uint8_t> expected{0xFF, 0xFE, '<',  0,    'a',  0,    '>', 0,
                                             0xE9, 0,    0x3D, 0xD8, 0x00, 0xDE, '<', 0,
                                             '/',  0,    'a',  0,    '>',  0};
    EXPECT_EQ(utf16.bytes, expected);
    EXPECT_EQ(local_url("RyEmulator.zip", 0x100000, 0x1A2B), "Local:RyEmulator.zip;100000;1A2B");

    // The zipped form holds the plain text as its only entry.
    const auto zipped = store_description(xml, XmlForm::Zip);
    EXPECT_EQ(zipped.file_name, "RyEmulator.zip");
    const std::string path = ::testing::TempDir() + "ry_emulator_description.zip";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(zipped.bytes.data()),
               static_cast<std::streamsize>(zipped.bytes.size()));
    FILE* unzip = ::popen(("unzip -p " + path + " 2>/dev/null").c_str(), "r");
    ASSERT_NE(unzip, nullptr);
    std::string unpacked;
    char chunk[4096];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, unzip)) > 0;) {
        unpacked.append(chunk, n);
    }
    const int status = ::pclose(unzip);
    if (status != 0 && unpacked.empty()) {
        GTEST_SKIP() << "unzip is not installed: zip contents not checked";
    }
    EXPECT_EQ(unpacked, xml);
    std::remove(path.c_str());
}

}  // namespace
}  // namespace ry::emulator::testing
