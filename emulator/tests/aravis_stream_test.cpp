// Aravis's receiver takes frames from the emulator: the stream must be something an
// independent receiver reassembles byte for byte, with and without resends.
#include <arv.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "ry/emulator/camera.h"
#include "test_image.h"

namespace ry::emulator {
namespace {

constexpr uint32_t kMono8 = 0x01080001;
constexpr uint32_t kWidth = 640;
constexpr uint32_t kHeight = 480;
constexpr auto kStreamingTime = std::chrono::seconds(1);
constexpr gint kSocketBufferBytes = 4 << 20;

// Owns one reference of a GObject.
template <typename T>
std::unique_ptr<T, void (*)(gpointer)> Own(T* object) {
    return {object, g_object_unref};
}

struct StreamResult {
    uint64_t complete = 0;
    uint64_t failed = 0;  // delivered with any status but success
    uint64_t exact = 0;   // complete frames equal to the emulator's image, byte for byte
    guint64 resent = 0;
    guint64 sizeMismatches = 0;
    guint64 resendRequests = 0;
    bool sawFirst = false;
};

class AravisStream : public ::testing::Test {
  protected:
    static CameraConfig Config() {
        CameraConfig config;
        config.address = "127.0.0.2";
        config.width = kWidth;
        config.height = kHeight;
        config.fps = 50;
        return config;
    }

    // Streams for about a second through ArvGvStream on its plain socket, or on the packet
    // socket that reads the link itself (as a capture does).
    StreamResult Stream(bool packetSocket = false) {
        GError* error = nullptr;
        auto host = Own(g_inet_address_new_from_string("127.0.0.1"));
        auto address = Own(g_inet_address_new_from_string(camera_.address().c_str()));
        auto device = Own(arv_gv_device_new(host.get(), address.get(), &error));
        EXPECT_EQ(error, nullptr) << error->message;
        if (!device)
            return {};
        auto camera = Own(arv_camera_new_with_device(device.get(), &error));
        EXPECT_EQ(error, nullptr) << error->message;
        if (!camera)
            return {};
        arv_camera_gv_set_stream_options(
            camera.get(),
            packetSocket ? ARV_GV_STREAM_OPTION_NONE : ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
        auto stream = Own(arv_camera_create_stream(camera.get(), nullptr, nullptr, &error));
        EXPECT_EQ(error, nullptr) << error->message;
        if (!stream)
            return {};
        const guint payload = arv_camera_get_payload(camera.get(), &error);
        EXPECT_EQ(payload, kWidth * kHeight);
        // The emulator sends each frame as one burst, far faster than a wire would; Aravis
        // sizes its socket buffer to one payload unless told otherwise, and applies the size
        // on its stream thread when the first frame begins, so only later frames are judged.
        g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED,
                     "socket-buffer-size", kSocketBufferBytes, nullptr);
        for (int i = 0; i < 8; ++i)
            arv_stream_push_buffer(stream.get(), arv_buffer_new_allocate(payload));
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        arv_camera_start_acquisition(camera.get(), &error);
        EXPECT_EQ(error, nullptr) << error->message;
        StreamResult result;
        const auto end = std::chrono::steady_clock::now() + kStreamingTime;
        while (std::chrono::steady_clock::now() < end) {
            if (ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream.get(), 100000)) {
                Judge(buffer, result);
                arv_stream_push_buffer(stream.get(), buffer);
            }
        }
        arv_camera_stop_acquisition(camera.get(), &error);
        guint64 missing = 0;
        arv_gv_stream_get_statistics(ARV_GV_STREAM(stream.get()), &result.resent, &missing);
        result.sizeMismatches =
            arv_stream_get_info_uint64_by_name(stream.get(), "n_size_mismatch_errors");
        result.resendRequests =
            arv_stream_get_info_uint64_by_name(stream.get(), "n_resend_requests");
        return result;
    }

    void Judge(ArvBuffer* buffer, StreamResult& result) {
        if (!result.sawFirst) {
            result.sawFirst = true;
            return;
        }
        if (arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS) {
            ++result.failed;
            return;
        }
        ++result.complete;
        EXPECT_EQ(arv_buffer_get_image_width(buffer), static_cast<gint>(kWidth));
        EXPECT_EQ(arv_buffer_get_image_pixel_format(buffer), kMono8);
        size_t size = 0;
        const auto* data = static_cast<const uint8_t*>(arv_buffer_get_data(buffer, &size));
        std::vector<uint8_t> expected = image_;
        stamp_block_id(expected.data(), expected.size(), arv_buffer_get_frame_id(buffer));
        if (size == expected.size() && std::memcmp(data, expected.data(), size) == 0)
            ++result.exact;
    }

    Camera camera_{Config()};
    const std::vector<uint8_t> image_ = make_test_image({kMono8, kWidth, kHeight});
};

TEST_F(AravisStream, TakesCompleteByteExactFrames) {
    const StreamResult result = Stream();
    EXPECT_GT(result.complete, 10u);
    EXPECT_EQ(result.failed, 0u);
    EXPECT_EQ(result.exact, result.complete);
}

// A packet socket sees the link as it is: one datagram per packet, each of the size the
// leader announced, so nothing is taken for a size mismatch or asked for again.
TEST_F(AravisStream, APacketSocketSeesCameraSizedPacketsOnly) {
    const StreamResult result = Stream(true);
    EXPECT_GT(result.complete, 10u);
    EXPECT_EQ(result.failed, 0u);
    EXPECT_EQ(result.exact, result.complete);
    EXPECT_EQ(result.sizeMismatches, 0u);
    EXPECT_EQ(result.resendRequests, 0u);
}

TEST_F(AravisStream, RecoversDroppedPacketsThroughResend) {
    FaultConfig faults;
    faults.drop_fraction = 0.01;
    camera_.set_faults(faults);
    const StreamResult result = Stream();
    EXPECT_GT(result.complete, 10u);
    EXPECT_EQ(result.failed, 0u);
    EXPECT_EQ(result.exact, result.complete);
    EXPECT_GT(result.resent, 0u);
}

}  // namespace
}  // namespace ry::emulator
