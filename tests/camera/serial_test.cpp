// The serial command channel against the emulator's UART interpreter: the blocks as they go
// to the transport layer, the answers as the camera sends them, and devices that answer
// badly.
#include <chrono>
#include <cmath>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "camera_fixture.h"
#include "transport/transport_table.h"

namespace {

using namespace RYSDK;

transport::TransportTable observing;
std::vector<std::vector<uint8_t>> transmitBlocks;
std::vector<uint32_t> triggerWords;
// Bytes a scripted device has waiting; empty while the real camera answers.
std::deque<uint8_t> scriptedReceive;
bool scriptReceive = false;

GC_ERROR ObserveWrite(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    if (address == 0x80104)
        transmitBlocks.emplace_back(bytes, bytes + *size);
    if (address == 0x20019EB0 && *size == 4)
        triggerWords.push_back(uint32_t(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 |
                               bytes[3]);
    return transport::DefaultTransport().GCWritePort(port, address, buffer, size);
}

GC_ERROR ScriptedRead(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
    if (!scriptReceive || (address != 0x80000 && address != 0x80004))
        return transport::DefaultTransport().GCReadPort(port, address, buffer, size);
    auto* bytes = static_cast<uint8_t*>(buffer);
    std::memset(bytes, 0, *size);
    if (address == 0x80000) {
        const auto waiting = static_cast<uint32_t>(std::min<size_t>(scriptedReceive.size(), 256));
        bytes[0] = uint8_t(waiting >> 24), bytes[1] = uint8_t(waiting >> 16);
        bytes[2] = uint8_t(waiting >> 8), bytes[3] = uint8_t(waiting);
        return GC_ERR_SUCCESS;
    }
    for (size_t i = 0; i < *size && !scriptedReceive.empty(); ++i) {
        bytes[i] = scriptedReceive.front();
        scriptedReceive.pop_front();
    }
    return GC_ERR_SUCCESS;
}

class SerialChannel : public rytest::EmulatedCameraTest {
  protected:
    void SetUp() override {
        rytest::EmulatedCameraTest::SetUp();
        if (IsSkipped())
            return;
        observing = transport::DefaultTransport();
        observing.GCWritePort = ObserveWrite;
        observing.GCReadPort = ScriptedRead;
        transmitBlocks.clear();
        triggerWords.clear();
        scriptedReceive.clear();
        scriptReceive = false;
        transport::InstallTransport(&observing);
        StartCamera();
        ASSERT_EQ(Open(&camera_), RESULT_SUCCESS);
        serial_ = camera_->GetSerial();
    }
    void TearDown() override {
        if (camera_ != nullptr)
            gige_->CloseCamera(camera_);
        rytest::EmulatedCameraTest::TearDown();
        transport::InstallTransport(nullptr);
    }

    RyCamera* camera_ = nullptr;
    RySerial* serial_ = nullptr;
};

TEST_F(SerialChannel, CommandsGoOutAsLengthWordPayloadAndCarriageReturn) {
    ASSERT_NE(serial_->GetCameraTemperature(), nullptr);
    ASSERT_FALSE(transmitBlocks.empty());
    EXPECT_EQ(transmitBlocks.front(),
              (std::vector<uint8_t>{0x04, 0x00, 0x00, 0x00, 'g', 'c', 't', 0x0D}));
    transmitBlocks.clear();
    EXPECT_EQ(serial_->WriteData("abcde"), 0);
    ASSERT_EQ(transmitBlocks.size(), 1u);
    EXPECT_EQ(transmitBlocks[0].size(), 12u);
    EXPECT_EQ(transmitBlocks[0][0], 6);
    char answer[64];
    serial_->ReadData(answer, sizeof(answer));

    EXPECT_EQ(serial_->Send_GTrigger(99), 1);
    EXPECT_EQ(serial_->Send_GTrigger(100), 1);
    EXPECT_EQ(serial_->Send_GTrigger(250), 1);
    EXPECT_EQ(triggerWords, (std::vector<uint32_t>{0x12, 0x111, 0x211}));
}

TEST_F(SerialChannel, TheCommandSetParsesTheCamerasAnswers) {
    EXPECT_EQ(serial_->SetHorizontalArea(8, 600), 1);
    int start = -1, end = -1;
    EXPECT_EQ(serial_->GetHorizontalArea(&start, &end), 1);
    EXPECT_EQ(start, 8);
    EXPECT_EQ(end, 600);
    transmitBlocks.clear();
    EXPECT_EQ(serial_->SetVerticalArea(10, 20), 1);
    ASSERT_EQ(transmitBlocks.size(), 1u);
    EXPECT_EQ(std::string(transmitBlocks[0].begin() + 4, transmitBlocks[0].begin() + 13),
              "sha 10 20");
    EXPECT_EQ(serial_->SetAnalogGain(0, 12), 1);
    EXPECT_EQ(serial_->SetAnalogGain(1, 34), 1);
    int first = -1, second = -1;
    EXPECT_EQ(serial_->GetAnalogGain(0, &first, &second), 1);
    EXPECT_EQ(first, 12);
    EXPECT_EQ(second, 34);
    first = second = -1;
    EXPECT_EQ(serial_->GetAnalogGain(2, &first, &second), 1);
    EXPECT_EQ(first, -1) << "another channel fills only the second output";
    EXPECT_EQ(serial_->SetTriggerMode(1), 1);
    int mode = -1;
    EXPECT_EQ(serial_->GetTriggerMode(&mode), 1);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(serial_->GetStatus(), 0);
    const wchar_t* model = serial_->GetCamModelNumber();
    ASSERT_NE(model, nullptr);
    EXPECT_NE(std::wstring(model), L"");
    EXPECT_NE(serial_->GetMCUVersion(), nullptr);
    EXPECT_NE(serial_->GetFPGAVersion(), nullptr);
}

TEST_F(SerialChannel, TheCameraPassesCommandLinesAndSerialFeaturesThrough) {
    char answer[64] = {};
    size_t size = 3;
    EXPECT_EQ(camera_->GetUARTCustomCommand("gct", answer, &size),
              RESULT_ERROR_INSUFFICIENT_RESOURCES);
    size = sizeof(answer);
    ASSERT_EQ(camera_->GetUARTCustomCommand("gct", answer, &size), RESULT_SUCCESS);
    EXPECT_EQ(size, std::strlen(answer));
    EXPECT_GT(std::atof(answer), 0.0);
    EXPECT_EQ(camera_->SetUARTCustomCommand("stm 0"), RESULT_SUCCESS);
    EXPECT_EQ(camera_->SetUARTCustomCommand(""), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->GetUARTCustomCommand(nullptr, answer, &size),
              RESULT_ERROR_INVALID_PARAMETER);

    double gain = -1;
    transmitBlocks.clear();
    EXPECT_EQ(camera_->GigEGetColorRGBGain(3, &gain), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->GigEGetColorRGBGain(0, &gain), RESULT_ERROR_INVALID_PARAMETER)
        << "Mono8 has no colour gain";
    EXPECT_TRUE(transmitBlocks.empty());
    ASSERT_EQ(camera_->SetPixelFormat(PIXEL_FORMAT_BAYERRG8), RESULT_SUCCESS);
    EXPECT_EQ(camera_->GigESetColorRGBGain(2, 1.5), RESULT_SUCCESS);
    ASSERT_FALSE(transmitBlocks.empty());
    EXPECT_EQ(std::string(transmitBlocks.back().begin() + 4, transmitBlocks.back().begin() + 18),
              "srg b 1.500000");
    EXPECT_EQ(camera_->GigEGetColorRGBGain(2, &gain), RESULT_SUCCESS);
    EXPECT_DOUBLE_EQ(gain, 1.5);
    double temperature = 0;
    EXPECT_EQ(camera_->GigEGetTemperature(&temperature), RESULT_SUCCESS);
    EXPECT_GT(temperature, 0.0);
    char serialNumber[32] = {};
    size = 2;
    EXPECT_EQ(camera_->GigEGetSerialNumber(serialNumber, &size), RESULT_ERROR_INVALID_PARAMETER);
    size = sizeof(serialNumber);
    EXPECT_EQ(camera_->GigEGetSerialNumber(serialNumber, &size), RESULT_SUCCESS);
    EXPECT_EQ(size, std::strlen(serialNumber));
    EXPECT_GT(size, 0u);
}

TEST_F(SerialChannel, BadAnswersEndInAnErrorWithinTheLimit) {
    char answer[24];
    scriptReceive = true;
    scriptedReceive = {'>'};
    EXPECT_EQ(serial_->ReadData(answer, sizeof(answer)), GC_ERR_ERROR) << "a prompt alone";

    const std::string longLine = "gct\r\n" + std::string(40, '7') + "\r\n>";
    scriptedReceive.assign(longLine.begin(), longLine.end());
    EXPECT_EQ(serial_->ReadData(answer, sizeof(answer)), GC_ERR_ERROR)
        << "an answer longer than the buffer is refused, not written past it";

    // Garbage that never ends in a prompt overflows the accumulation and stops at once.
    scriptedReceive.assign(2000, 'x');
    auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(serial_->ReadData(answer, sizeof(answer)), GC_ERR_ERROR);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(1500));

    // Silence ends after the two-second limit.
    scriptedReceive.clear();
    began = std::chrono::steady_clock::now();
    EXPECT_EQ(serial_->ReadData(answer, sizeof(answer)), GC_ERR_ERROR);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(3000));

    // A command longer than the camera's transmit block is refused; the channel goes on.
    scriptReceive = false;
    EXPECT_NE(serial_->WriteData(std::string(2000, 'x').c_str()), 0);
    EXPECT_NE(serial_->GetCameraTemperature(), nullptr);

    scriptReceive = true;
    const std::string good = "gct\n23.5\r\n>";
    scriptedReceive.assign(good.begin(), good.end());
    EXPECT_EQ(serial_->ReadData(answer, sizeof(answer)), GC_ERR_SUCCESS);
    EXPECT_STREQ(answer, "23.5");
}

TEST(SerialAlignment, RoundsToTheUnitEitherWay) {
    EXPECT_EQ(RySerial::Align32(13, 4, true), 16u);
    EXPECT_EQ(RySerial::Align32(13, 4, false), 12u);
    EXPECT_EQ(RySerial::Align32(12, 4, true), 12u);
    EXPECT_EQ(RySerial::Align32(13, 0, true), 0u);
    RySerial unconnected;
    EXPECT_EQ(unconnected.WriteData("gct"), 1);
    int value = 5;
    EXPECT_EQ(unconnected.GetTriggerMode(&value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(unconnected.GetCameraTemperature(), nullptr);
}

}  // namespace
