// An emulated camera on loopback and an SDK system object that has discovered it: the
// starting point of every camera test. Runs only inside a private network namespace.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "private_network.h"
#include "ry/emulator/camera.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"

namespace rytest {

class EmulatedCameraTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!InPrivateNetwork())
            GTEST_SKIP() << kPrivateNetworkAdvice;
        RYSDK::SetEventLogCallback(nullptr, nullptr);
    }
    void TearDown() override {
        gige_.reset();
        emulator_.reset();
        RYSDK::UseSyslogEventLog();
    }

    // Starts the emulator with `config` and discovers it.
    void StartCamera(ry::emulator::CameraConfig config = {}) {
        config.address = "127.0.0.2";
        emulator_ = std::make_unique<ry::emulator::Camera>(config);
        gige_ = std::make_unique<RYSDK::RyGigE>();
        gige_->SetDiscoveryTimeout(300);
        ASSERT_EQ(gige_->Open(), RYSDK::RESULT_SUCCESS);
        unsigned int cameras = 0;
        ASSERT_EQ(gige_->GetNumCameras(&cameras), RYSDK::RESULT_SUCCESS);
        ASSERT_EQ(cameras, 1u);
    }

    RYSDK::RESULT Open(RYSDK::RyCamera** camera, uint32_t buffers = 4, uint32_t width = 0,
                       uint32_t height = 0, uint32_t packetSize = 0,
                       RYSDK::pDisconnectCallbackFn disconnect = nullptr) {
        return gige_->OpenCamera(0u, camera, buffers, width, height, packetSize, &object_, nullptr,
                                 disconnect);
    }

    RYSDK::RyInterface* Adapter() {
        RYSDK::RyInterface* adapter = nullptr;
        EXPECT_EQ(gige_->OpenInterface(0u, &adapter), RYSDK::RESULT_SUCCESS);
        return adapter;
    }

    RYSDK::OBJECT_INFO object_{};
    std::unique_ptr<ry::emulator::Camera> emulator_;
    std::unique_ptr<RYSDK::RyGigE> gige_;
};

// A test that starts with the emulated camera open.
class OpenedCameraTest : public EmulatedCameraTest {
  protected:
    void SetUp() override {
        EmulatedCameraTest::SetUp();
        if (IsSkipped())
            return;
        StartCamera();
        ASSERT_EQ(Open(&camera_), RYSDK::RESULT_SUCCESS);
    }
    void TearDown() override {
        if (camera_ != nullptr)
            gige_->CloseCamera(camera_);
        EmulatedCameraTest::TearDown();
    }

    RYSDK::RyCamera* camera_ = nullptr;
};

}  // namespace rytest
