// The SDK against a device that answers badly: discovery gives bounded, terminated records
// or none, and opening such a camera ends in a clear failure within the control channel's
// time-outs; a camera is handed out only when its description failed, and it closes.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "camera_fixture.h"
#include "hostile_device.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInfo.h"

namespace {

using namespace RYSDK;
using namespace std::chrono;
using ry::emulator::hostile::Answer;
using ry::emulator::hostile::hostile_text;
using ry::emulator::hostile::HostileConfig;
using ry::emulator::hostile::HostileDevice;
using ry::emulator::hostile::kUnusableAnswers;

constexpr unsigned int kGvcpTimeoutMs = 200;  // set once the system is open

template <size_t N>
bool Terminated(const char (&field)[N]) {
    return strnlen(field, N) < N;
}

// The camera fixture's set-up (private network, silenced log) without its emulator.
class HostileCamera : public rytest::EmulatedCameraTest {
  protected:
    // Discovers with `config` serving; returns the number of cameras found.
    unsigned int Discover(const HostileConfig& config, RyGigE& gige) {
        const HostileDevice device(config);
        EXPECT_EQ(gige.SetDiscoveryTimeout(300), RESULT_SUCCESS);
        EXPECT_EQ(gige.Open(), RESULT_SUCCESS);
        unsigned int cameras = 0;
        EXPECT_EQ(gige.GetNumCameras(&cameras), RESULT_SUCCESS);
        return cameras;
    }

    // Opens the one camera `config` describes: the result, which must come within `limit`.
    RESULT Open(const HostileConfig& config, milliseconds limit) {
        const HostileDevice device(config);
        RyGigE gige;
        gige.SetDiscoveryTimeout(300);
        EXPECT_EQ(gige.Open(), RESULT_SUCCESS);
        EXPECT_EQ(gige.SetGVCPTimeout(kGvcpTimeoutMs), RESULT_SUCCESS);
        RyCamera* camera = nullptr;
        OBJECT_INFO object{};
        const auto start = steady_clock::now();
        const RESULT result = gige.OpenCamera(0u, &camera, 4, 0, 0, 0, &object, nullptr, nullptr);
        EXPECT_LT(steady_clock::now() - start, limit);
        // Only a camera whose description failed is handed out, and it closes cleanly.
        if (camera != nullptr) {
            EXPECT_EQ(result, RESULT_ERROR_RYCAMERA_GETXML);
            EXPECT_EQ(gige.CloseCamera(camera), RESULT_SUCCESS);
        }
        EXPECT_EQ(gige.Close(), RESULT_SUCCESS);
        return result;
    }
};

TEST_F(HostileCamera, RecordsOfTextsWithoutTerminatorsAreBoundedAndTerminated) {
    HostileConfig config;
    config.hostile_texts = true;
    RyGigE gige;
    ASSERT_EQ(Discover(config, gige), 1u);
    RYCAMERA_INFO info;
    ASSERT_EQ(gige.GetCameraInfo(0u, &info), RESULT_SUCCESS);
    EXPECT_TRUE(Terminated(info.m_Name));
    EXPECT_TRUE(Terminated(info.m_ModelName));
    EXPECT_TRUE(Terminated(info.m_ManufacturerName));
    EXPECT_TRUE(Terminated(info.m_IPAddress));
    EXPECT_TRUE(Terminated(info.m_MACAddress));
    // The device's bytes are kept, not cleaned: a display escapes them.
    EXPECT_EQ(std::string(info.m_ModelName), hostile_text(32));
    EXPECT_EQ(std::string(info.m_IPAddress), "127.0.0.2");
    RYCAMERA_INFO byName;
    EXPECT_EQ(gige.GetCameraInfo(info.m_Name, &byName), RESULT_SUCCESS);
    RYINTERFACE_INFO adapter;
    ASSERT_EQ(gige.GetInterfaceInfo(0u, &adapter), RESULT_SUCCESS);
    EXPECT_TRUE(Terminated(adapter.m_Name));
}

// True when `text` is valid UTF-8 holding no control character but rycam's own line feeds
// and tabs.
bool SafeForATerminal(const std::string& text) {
    size_t i = 0;
    while (i < text.size()) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F)
                return false;
            ++i;
            continue;
        }
        const size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC2 ? 2 : 0;
        if (length == 0 || i + length > text.size())
            return false;
        for (size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80)
                return false;
        }
        // C1 controls (U+0080 to U+009F) act on terminals too.
        if (byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0)
            return false;
        i += length;
    }
    return true;
}

TEST_F(HostileCamera, RycamListEscapesEveryTextTheDeviceSends) {
    HostileConfig config;
    config.hostile_texts = true;
    const HostileDevice device(config);
    std::string output;
    FILE* pipe = ::popen(RY_RYCAM_PATH " list 2>&1", "r");
    ASSERT_NE(pipe, nullptr);
    char chunk[4096];
    size_t read = 0;
    while ((read = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0)
        output.append(chunk, read);
    EXPECT_EQ(::pclose(pipe), 0) << output;
    EXPECT_NE(output.find("127.0.0.2"), std::string::npos) << output;
    EXPECT_TRUE(SafeForATerminal(output)) << output;
}

TEST_F(HostileCamera, BadDiscoveryAnswersGiveNoCameraAndDuplicatesOne) {
    for (const Answer answer : kUnusableAnswers) {
        HostileConfig config;
        config.discovery = answer;
        config.late_ms = 800;
        RyGigE gige;
        EXPECT_EQ(Discover(config, gige), 0u) << static_cast<int>(answer);
    }
    HostileConfig config;
    config.discovery = Answer::Duplicated;
    RyGigE gige;
    EXPECT_EQ(Discover(config, gige), 1u);
}

TEST_F(HostileCamera, BadAnswersToReadsEndTheOpenInTime) {
    for (const Answer answer : kUnusableAnswers) {
        // Endless PENDING_ACKs cost the pending allowance per read; the client's tests
        // bound them.
        if (answer == Answer::PendingForever)
            continue;
        HostileConfig config;
        config.reads = answer;
        config.late_ms = 1000;
        EXPECT_NE(Open(config, seconds(5)), RESULT_SUCCESS) << static_cast<int>(answer);
    }
    HostileConfig config;
    config.reads = Answer::Duplicated;
    EXPECT_NE(Open(config, seconds(5)), RESULT_SUCCESS) << "the description is zeros";
}

TEST_F(HostileCamera, BadDescriptionUrlsFailTheOpenWithTheDescriptionResult) {
    const std::string urls[] = {
        hostile_text(512),  // no terminator anywhere in the register
        "Local:" + hostile_text(200) + ";10000;40",
        "Local:x.zip;10000;ffffffffffff",
        "Local:x.xml;10000",
        "http://203.0.113.1/x.xml",
    };
    for (const std::string& url : urls) {
        HostileConfig config;
        config.url = url;
        EXPECT_EQ(Open(config, seconds(3)), RESULT_ERROR_RYCAMERA_GETXML) << url.size();
    }
}

TEST_F(HostileCamera, ADescriptionOfZerosIsRefusedByTheNodeMap) {
    HostileConfig config;
    config.url = "Local:x.xml;10000;200";
    EXPECT_NE(Open(config, seconds(3)), RESULT_SUCCESS);
}

}  // namespace
