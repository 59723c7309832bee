#include "aravis_stream.h"

#include <cstdio>
#include <fstream>
#include <thread>

namespace ry::bench {
namespace {

constexpr guint64 kPopTimeoutUs = 100000;
constexpr auto kSettleTime = std::chrono::milliseconds(100);
constexpr gint kFallbackBufferBytes = 4 << 20;

gint LargestReceiveBuffer() {
    std::ifstream limit("/proc/sys/net/core/rmem_max");
    long bytes = 0;
    return limit >> bytes && bytes > 0 && bytes < (1l << 30) ? static_cast<gint>(bytes)
                                                             : kFallbackBufferBytes;
}

bool Failed(GError* error, const char* what) {
    if (!error) {
        return false;
    }
    std::fprintf(stderr, "aravis: %s: %s\n", what, error->message);
    g_error_free(error);
    return true;
}

GObjectPtr<ArvCamera> OpenCamera(const AravisRun& run) {
    GObjectPtr<GInetAddress> host(g_inet_address_new_from_string("127.0.0.1"));
    GObjectPtr<GInetAddress> device(g_inet_address_new_from_string(run.deviceAddress.c_str()));
    if (!device) {
        std::fprintf(stderr, "aravis: bad address %s\n", run.deviceAddress.c_str());
        return nullptr;
    }
    GError* error = nullptr;
    GObjectPtr<ArvDevice> gvDevice(arv_gv_device_new(host.get(), device.get(), &error));
    if (Failed(error, "open device")) {
        return nullptr;
    }
    GObjectPtr<ArvCamera> camera(arv_camera_new_with_device(gvDevice.get(), &error));
    if (Failed(error, "camera")) {
        return nullptr;
    }
    arv_camera_gv_set_packet_size(camera.get(), static_cast<gint>(run.packetSize), &error);
    if (!Failed(error, "packet size")) {
        arv_camera_set_acquisition_mode(camera.get(), ARV_ACQUISITION_MODE_CONTINUOUS, &error);
    }
    if (Failed(error, "acquisition mode")) {
        return nullptr;
    }
    arv_camera_gv_set_stream_options(
        camera.get(),
        run.packetSocket ? ARV_GV_STREAM_OPTION_NONE : ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
    return camera;
}

}  // namespace

std::optional<AravisStream> AravisStream::Open(const AravisRun& run, ArvStreamCallback callback,
                                               void* callbackData) {
    AravisStream opened;
    opened.camera_ = OpenCamera(run);
    if (!opened.camera_) {
        return std::nullopt;
    }
    GError* error = nullptr;
    const guint payload = arv_camera_get_payload(opened.camera_.get(), &error);
    if (Failed(error, "payload")) {
        return std::nullopt;
    }
    opened.stream_.reset(
        arv_camera_create_stream(opened.camera_.get(), callback, callbackData, &error));
    if (Failed(error, "stream")) {
        return std::nullopt;
    }
    // Aravis's best plain-socket setting: the largest buffer SO_RCVBUF grants (it sizes the
    // buffer to one payload otherwise), applied by its stream thread before the first frame.
    g_object_set(opened.stream_.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED,
                 "socket-buffer-size", LargestReceiveBuffer(), nullptr);
    for (uint32_t i = 0; i < run.buffers; ++i) {
        arv_stream_push_buffer(opened.stream_.get(), arv_buffer_new_allocate(payload));
    }
    std::this_thread::sleep_for(kSettleTime);
    return opened;
}

bool AravisStream::Start() {
    GError* error = nullptr;
    arv_camera_start_acquisition(camera_.get(), &error);
    return !Failed(error, "start");
}

void AravisStream::Recycle(std::chrono::steady_clock::time_point end,
                           const std::function<void(ArvBuffer*)>& onBuffer) {
    while (std::chrono::steady_clock::now() < end) {
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream_.get(), kPopTimeoutUs);
        if (buffer) {
            if (onBuffer) {
                onBuffer(buffer);
            }
            arv_stream_push_buffer(stream_.get(), buffer);
        }
    }
}

void AravisStream::Stop() {
    GError* error = nullptr;
    arv_camera_stop_acquisition(camera_.get(), &error);
    Failed(error, "stop");
}

}  // namespace ry::bench
