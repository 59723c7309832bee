// The UART command interpreter: its bytes on the registers and every command's answer.
#include <gtest/gtest.h>

#include <thread>

#include "serial_port.h"
#include "test_client.h"

namespace ry::emulator::testing {
namespace {

std::vector<std::uint8_t> transmit_block(const std::string& text) {
    std::vector<std::uint8_t> block(4 + (text.size() + 3) / 4 * 4, 0);
    const auto n = static_cast<std::uint32_t>(text.size());
    block[0] = static_cast<std::uint8_t>(n);  // little-endian length word
    block[1] = static_cast<std::uint8_t>(n >> 8);
    std::copy(text.begin(), text.end(), block.begin() + 4);
    return block;
}

std::string drain(SerialPort& port) {
    std::vector<std::uint8_t> bytes(port.waiting_bytes());
    port.read_received(bytes);
    return {bytes.begin(), bytes.end()};
}

TEST(SerialPort, EchoAnswerPromptFraming) {
    SerialPort port({"M100", "SN12345678ABCDEF"});
    EXPECT_EQ(port.write_transmit_block(transmit_block("gct\r")), gev::GevStatus::Success);
    EXPECT_EQ(drain(port), "gct\r\n23.5\r\n>");
    // A line may arrive in pieces; nothing is answered before its CR.
    port.write_transmit_block(transmit_block("sb"));
    EXPECT_EQ(port.waiting_bytes(), 0u);
    port.write_transmit_block(transmit_block("f 3\r"));
    EXPECT_EQ(drain(port), "sbf 3\r\nOK\r\n>");
    // Padding after the announced length is not part of the command.
    auto block = transmit_block("gbf\r");
    block.push_back('X');
    block.resize(12, 'Y');
    port.write_transmit_block(block);
    EXPECT_EQ(drain(port), "gbf\r\n3\r\n>");
}

TEST(SerialPort, BadTransmitBlocksAreRefused) {
    SerialPort port({"M", "S"});
    EXPECT_EQ(port.write_transmit_block(std::vector<std::uint8_t>{1, 0}),
              gev::GevStatus::InvalidParameter);
    auto block = transmit_block("gct\r");
    block[0] = 200;  // more than the block holds
    EXPECT_EQ(port.write_transmit_block(block), gev::GevStatus::InvalidParameter);
    EXPECT_EQ(port.waiting_bytes(), 0u);
}

TEST(SerialPort, SetCommandsAreKeptByTheirGetters) {
    SerialPort port({"M", "S"});
    const char* keys[] = {"rm", "bf", "ec", "et", "cm", "tm", "ts", "fn", "es", "tp", "ar", "db",
                          "ti", "dc", "ls", "fi", "fc", "fo", "hf", "ii", "so", "sp", "ci"};
    int value = 11;
    for (const char* key : keys) {
        EXPECT_EQ(port.execute(std::string("s") + key + " " + std::to_string(value)), "OK") << key;
        EXPECT_EQ(port.execute(std::string("g") + key), std::to_string(value)) << key;
        ++value;
    }
    EXPECT_EQ(port.execute("sha 10 20"), "OK");
    EXPECT_EQ(port.execute("gha"), "10 20");
    EXPECT_EQ(port.execute("sva 3 4"), "OK");
    EXPECT_EQ(port.execute("gva"), "3 4");
    EXPECT_EQ(port.execute("sag 0 12"), "OK");
    EXPECT_EQ(port.execute("sag 1 34"), "OK");
    EXPECT_EQ(port.execute("sag 2 7"), "OK");
    EXPECT_EQ(port.execute("gag 0"), "12 34");
    EXPECT_EQ(port.execute("gag 1"), "34");
    EXPECT_EQ(port.execute("gag 2"), "7");
    EXPECT_EQ(port.execute("sao 2 5"), "OK");
    EXPECT_EQ(port.execute("gao 2"), "5");
    EXPECT_EQ(port.execute("srg r 300"), "OK");
    EXPECT_EQ(port.execute("grg r"), "300");
    EXPECT_EQ(port.execute("grg b"), "1");
    EXPECT_EQ(port.execute("srg b 1.500000"), "OK");
    EXPECT_EQ(port.execute("grg b"), "1.5");
    EXPECT_EQ(port.execute("srg b fast"), "ERR bad argument");
    EXPECT_EQ(port.execute("ste 5"), "OK");
    for (const char* plain : {"gfd", "sfd", "lfd"}) {
        EXPECT_EQ(port.execute(plain), "OK");
    }
    EXPECT_EQ(port.execute("lcf 1"), "OK");
    EXPECT_EQ(port.execute("sct 2"), "OK");
}

TEST(SerialPort, IdentityTextsAndErrors) {
    SerialPort port({"GigE_Connect", "SN12345678ABCDEF"});
    EXPECT_EQ(port.execute("gmn"), "GigE_Connect");
    EXPECT_EQ(port.execute("gmv"), "MCU 1.04");
    EXPECT_EQ(port.execute("gfv"), "FPGA 2.11");
    EXPECT_EQ(port.execute("gsn"), "SN12345678ABCDEF");
    EXPECT_EQ(port.execute("gsn 1"), "78ABCDEF");
    EXPECT_EQ(port.execute("gsn 2"), "");
    EXPECT_EQ(port.execute("gsn x"), "ERR bad argument");
    EXPECT_EQ(port.execute("stm abc"), "ERR bad argument");
    EXPECT_EQ(port.execute("xyz"), "ERR unknown command");
    EXPECT_EQ(port.execute("grg g"), "ERR unknown command");
    EXPECT_EQ(port.execute("gtm 1"), "ERR unknown command");
}

TEST(SerialRegisters, CommandOverGvcpWithRoundedReads) {
    Camera camera(test_camera(6));
    TestClient client(camera.address(), camera.control_port());
    ASSERT_EQ(client.take_control(), 0);
    ASSERT_EQ(client.write_mem(0x80104, transmit_block("gct\r")), 0);
    const std::uint32_t count = client.read_reg(0x80000);
    ASSERT_EQ(count, 12u);
    const auto ack = client.read_mem(0x80004, 16);  // count rounded up to 4
    ASSERT_TRUE(ack);
    ASSERT_EQ(ack->payload.size(), 4u + 16u);
    EXPECT_EQ(std::string(ack->payload.begin() + 4, ack->payload.begin() + 4 + 12),
              "gct\r\n23.5\r\n>");
    EXPECT_EQ(ack->payload[4 + 12], 0);  // padding after the waiting bytes
    EXPECT_EQ(client.read_reg(0x80000), 0u);
    EXPECT_EQ(client.write_reg(0x20019EB0, 0x211), 0);
    EXPECT_EQ(client.read_reg(0x20019EB0), 0x211u);
    EXPECT_EQ(client.write_reg(0x80000, 1),
              static_cast<std::uint16_t>(gev::GevStatus::WriteProtect));
}

TEST(SerialRegisters, LongRepliesAreFetchedOneWindowAtATime) {
    Camera camera(test_camera(11));
    TestClient client(camera.address(), camera.control_port());
    ASSERT_EQ(client.take_control(), 0);
    for (int i = 0; i < 30; ++i) {  // 30 x 16 bytes of replies
        ASSERT_EQ(client.write_mem(0x80104, transmit_block("gct\r")), 0);
    }
    std::string received;
    while (const std::uint32_t count = client.read_reg(0x80000)) {
        ASSERT_LE(count, 256u);
        const auto ack = client.read_mem(0x80004, static_cast<std::uint16_t>((count + 3) / 4 * 4));
        ASSERT_TRUE(ack && ack->status() == 0);
        received.append(ack->payload.begin() + 4, ack->payload.begin() + 4 + count);
    }
    EXPECT_EQ(received.size(), 30 * std::string("gct\r\n23.5\r\n>").size());
}

TEST(SerialRegisters, RetriedTransmitIsNotExecutedTwice) {
    Camera camera(test_camera(10));
    TestClient client(camera.address(), camera.control_port());
    ASSERT_EQ(client.take_control(), 0);
    const std::string reply = "gmn\r\nRyEmulator\r\n>";
    const std::uint16_t id = client.next_id();
    const auto command = *gev::make_writemem_command(id, 0x80104, transmit_block("gmn\r"));
    const auto first = client.transact(command, id);
    const auto retry = client.transact(command, id);  // as if the first answer was lost
    ASSERT_TRUE(first && retry);
    EXPECT_EQ(retry->status(), 0);
    EXPECT_EQ(client.read_reg(0x80000), reply.size());
    // A new request id is a new command.
    ASSERT_EQ(client.write_mem(0x80104, transmit_block("gmn\r")), 0);
    EXPECT_EQ(client.read_reg(0x80000), 2 * reply.size());
}

}  // namespace
}  // namespace ry::emulator::testing
