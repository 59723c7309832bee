// What acquisition tests share: a collector of the frames an image callback receives, each
// checked byte for byte against the emulator's test image, and a fixture that opens the
// emulated camera with that callback.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <vector>

#include "camera_fixture.h"
#include "recorded_log.h"
#include "test_image.h"

namespace rytest {

struct ReceivedFrame {
    RYSDK::IMAGE_INFO info{};
    bool matchesTestImage = false;
    bool onOwnCopy = false;  // pImage was a copy (not the object record the camera was given)
};

class FrameCollector {
  public:
    // Runs inside the callback, after the frame was recorded.
    std::function<void(const RYSDK::IMAGE_INFO&)> onFrame;
    ry::emulator::TestPattern pattern = ry::emulator::TestPattern::Moving;

    static void Callback(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image) {
        auto* self = static_cast<FrameCollector*>(object->pUserPointer);
        self->Add(*image);
    }

    void Add(const RYSDK::IMAGE_INFO& image) {
        ReceivedFrame frame{image, Matches(image)};
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            frames_.push_back(frame);
        }
        changed_.notify_all();
        if (onFrame)
            onFrame(image);
    }

    bool WaitFor(size_t count, std::chrono::milliseconds timeout) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return frames_.size() >= count; });
    }

    std::vector<ReceivedFrame> Frames() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return frames_;
    }

    size_t Count() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return frames_.size();
    }

    // True when the frame is the emulator's test image of its geometry and block id.
    bool Matches(const RYSDK::IMAGE_INFO& image) const {
        ry::emulator::ImageSettings settings;
        settings.pixel_format = image.pixelFormat;
        settings.width = image.width;
        settings.height = image.height;
        settings.pattern = pattern;
        std::vector<uint8_t> expected = ry::emulator::make_test_image(settings);
        if (expected.empty() || image.pImage == nullptr)
            return false;
        ry::emulator::stamp_block_id(expected.data(), expected.size(), image.blockId);
        return std::memcmp(expected.data(), image.pImage, expected.size()) == 0;
    }

  private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<ReceivedFrame> frames_;
};

// The emulated camera, opened with the collector as its image callback.
class AcquisitionTest : public EmulatedCameraTest {
  protected:
    void TearDown() override {
        if (camera_ != nullptr)
            gige_->CloseCamera(camera_);
        camera_ = nullptr;
        EmulatedCameraTest::TearDown();
    }

    // A fast camera unless the test says otherwise.
    static ry::emulator::CameraConfig FastCamera(double fps = 200.0) {
        ry::emulator::CameraConfig config;
        config.fps = fps;
        return config;
    }

    void OpenWithCallback(ry::emulator::CameraConfig config = FastCamera(),
                          RYSDK::pImageCallbackFn callback = &FrameCollector::Callback,
                          uint32_t buffers = 8, RYSDK::pDisconnectCallbackFn disconnect = nullptr) {
        StartCamera(config);
        object_.pUserPointer = &frames_;
        ASSERT_EQ(gige_->OpenCamera(0u, &camera_, buffers, 0, 0, 0, &object_, callback, disconnect),
                  RYSDK::RESULT_SUCCESS);
    }

    RYSDK::RESULT SetFeature(const char* name, const char* value) {
        return camera_->SetCustomCommand(name, value, std::strlen(value) + 1);
    }

    FrameCollector frames_;
    RYSDK::RyCamera* camera_ = nullptr;
};

}  // namespace rytest
