// The SDK against an independent camera: Aravis's fake GigE Vision camera (Debian package
// aravis-tools), started as a child process inside the test's private network namespace.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "private_network.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"

extern char** environ;

namespace {

using namespace RYSDK;

constexpr const char* kFakeCamera = "/usr/bin/arv-fake-gv-camera-0.8";

class AravisFakeCamera : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!rytest::InPrivateNetwork())
            GTEST_SKIP() << rytest::kPrivateNetworkAdvice;
        if (::access(kFakeCamera, X_OK) != 0)
            GTEST_SKIP() << kFakeCamera << " is not installed (Debian package aravis-tools)";
        SetEventLogCallback(nullptr, nullptr);
        char* const args[] = {const_cast<char*>(kFakeCamera), const_cast<char*>("-i"),
                              const_cast<char*>("127.0.0.1"), nullptr};
        ASSERT_EQ(::posix_spawn(&child_, kFakeCamera, nullptr, nullptr, args, environ), 0);
    }

    void TearDown() override {
        if (child_ > 0) {
            ::kill(child_, SIGTERM);
            ::waitpid(child_, nullptr, 0);
        }
        UseSyslogEventLog();
    }

    // The fake camera needs a moment to bind its sockets; each try discovers anew.
    static bool Answers() {
        for (int attempt = 0; attempt < 30; ++attempt) {
            RyGigE probe;
            probe.SetDiscoveryTimeout(200);
            unsigned int count = 0;
            if (probe.Open() == RESULT_SUCCESS && probe.GetNumCameras(&count) == RESULT_SUCCESS &&
                count > 0) {
                return true;
            }
        }
        return false;
    }

    pid_t child_ = -1;
};

TEST_F(AravisFakeCamera, OpensReadsItsFeaturesAndClosesCleanly) {
    OBJECT_INFO object{};
    RyCamera* camera = nullptr;
    ASSERT_TRUE(Answers()) << "the fake camera did not answer discovery";

    RyGigE gige;
    gige.SetDiscoveryTimeout(300);
    ASSERT_EQ(gige.OpenCamera(0u, &camera, 4, 0, 0, 0, &object, nullptr,
                              [](OBJECT_INFO*, DISCONNECT_INFO) {}),
              RESULT_SUCCESS);
    unsigned int width = 0, height = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(camera->GetHeight(&height), RESULT_SUCCESS);
    EXPECT_GT(width, 0u);
    EXPECT_GT(height, 0u);
    int32_t properties = 0;
    EXPECT_EQ(camera->GetPropertyCount(&properties), RESULT_SUCCESS);
    EXPECT_GT(properties, 5);
    // Its features answer reads and writes through the typed accessors.
    EXPECT_EQ(camera->SetWidth(320), RESULT_SUCCESS);
    EXPECT_EQ(camera->SetHeight(240), RESULT_SUCCESS);
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(camera->GetHeight(&height), RESULT_SUCCESS);
    EXPECT_EQ(width, 320u);
    EXPECT_EQ(height, 240u);
    PIXEL_FORMAT format{};
    EXPECT_EQ(camera->GetPixelFormat(&format), RESULT_SUCCESS);
    unsigned int formats = 0;
    ASSERT_EQ(camera->GetPixelFormatLineupNum(&formats), RESULT_SUCCESS);
    EXPECT_GT(formats, 0u);
    PIXEL_FORMAT offered = format;
    EXPECT_EQ(camera->GetPixelFormatLineup(formats - 1, &offered), RESULT_SUCCESS);
    EXPECT_EQ(camera->SetPixelFormat(offered), RESULT_SUCCESS);
    EXPECT_EQ(camera->GetPixelFormat(&format), RESULT_SUCCESS);
    EXPECT_EQ(format, offered);
    // Its gain is the older raw integer feature.
    char gain[32] = {};
    uint64_t size = sizeof(gain);
    EXPECT_EQ(camera->SetCustomCommand("GainRaw", "2", 0), RESULT_SUCCESS);
    EXPECT_EQ(camera->GetCustomCommand("GainRaw", gain, &size), RESULT_SUCCESS);
    EXPECT_EQ(std::atof(gain), 2.0) << gain;
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(gige.CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(1));
    // Closed cleanly: the fake camera is free for the next application.
    ASSERT_EQ(gige.OpenCamera(0u, &camera, 4, 0, 0, 0, &object, nullptr, nullptr), RESULT_SUCCESS);
    EXPECT_EQ(gige.CloseCamera(camera), RESULT_SUCCESS);
}

struct FakeFrames {
    uint32_t width = 0;
    uint32_t height = 0;
    std::atomic<int> complete{0};
    std::atomic<int> other{0};
    std::atomic<uint32_t> lastBlock{0};
    std::atomic<bool> inOrder{true};
};

TEST_F(AravisFakeCamera, StreamsFramesIntoTheImageCallback) {
    ASSERT_TRUE(Answers()) << "the fake camera did not answer discovery";
    FakeFrames frames;
    OBJECT_INFO object{&frames, nullptr};
    RyGigE gige;
    gige.SetDiscoveryTimeout(300);
    RyCamera* camera = nullptr;
    auto onImage = [](OBJECT_INFO* owner, IMAGE_INFO* image) {
        auto* seen = static_cast<FakeFrames*>(owner->pUserPointer);
        const bool whole = image->bufferStatus == 0 && image->width == seen->width &&
                           image->height == seen->height && image->pImage != nullptr;
        (whole ? seen->complete : seen->other)++;
        // Its 16-bit block ids wrap from 65535 to 1.
        const uint32_t last = seen->lastBlock.exchange(image->blockId);
        if (image->blockId <= last && !(last == 65535 && image->blockId == 1))
            seen->inOrder = false;
    };
    ASSERT_EQ(gige.OpenCamera(0u, &camera, 8, 0, 0, 0, &object, onImage, nullptr), RESULT_SUCCESS);
    ASSERT_EQ(camera->GetWidth(&frames.width), RESULT_SUCCESS);
    ASSERT_EQ(camera->GetHeight(&frames.height), RESULT_SUCCESS);
    ASSERT_EQ(camera->Grab(), RESULT_SUCCESS);
    const auto began = std::chrono::steady_clock::now();
    while (frames.complete < 10 &&
           std::chrono::steady_clock::now() - began < std::chrono::seconds(10))
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(camera->Abort(), RESULT_SUCCESS);
    EXPECT_GE(frames.complete, 10);
    EXPECT_EQ(frames.other, 0);
    EXPECT_TRUE(frames.inOrder);
    uint64_t lost = 1;
    EXPECT_EQ(camera->GetNumLostImage(lost), RESULT_SUCCESS);
    EXPECT_EQ(lost, 0u);
    EXPECT_EQ(gige.CloseCamera(camera), RESULT_SUCCESS);
}

}  // namespace
