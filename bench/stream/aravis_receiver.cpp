#include "aravis_receiver.h"

#include <arv.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <thread>

namespace ry::bench {
namespace {

constexpr guint64 kPopTimeoutUs = 100000;
constexpr auto kSettleTime = std::chrono::milliseconds(100);
constexpr gint kFallbackBufferBytes = 4 << 20;

struct ObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using Object = std::unique_ptr<T, ObjectRelease>;

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

Object<ArvCamera> OpenCamera(const AravisRun& run) {
    Object<GInetAddress> host(g_inet_address_new_from_string("127.0.0.1"));
    Object<GInetAddress> device(g_inet_address_new_from_string(run.deviceAddress.c_str()));
    if (!device) {
        std::fprintf(stderr, "aravis: bad address %s\n", run.deviceAddress.c_str());
        return nullptr;
    }
    GError* error = nullptr;
    Object<ArvDevice> gvDevice(arv_gv_device_new(host.get(), device.get(), &error));
    if (Failed(error, "open device")) {
        return nullptr;
    }
    Object<ArvCamera> camera(arv_camera_new_with_device(gvDevice.get(), &error));
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

std::optional<ReceiverReport> MeasureAravis(const AravisRun& run, DeliveryLog& log) {
    const int inherited = OwnedPacketSockets();
    Object<ArvCamera> camera = OpenCamera(run);
    if (!camera) {
        return std::nullopt;
    }
    GError* error = nullptr;
    const guint payload = arv_camera_get_payload(camera.get(), &error);
    if (Failed(error, "payload")) {
        return std::nullopt;
    }
    Object<ArvStream> stream(arv_camera_create_stream(camera.get(), nullptr, nullptr, &error));
    if (Failed(error, "stream")) {
        return std::nullopt;
    }
    // Aravis's best plain-socket setting: the largest buffer SO_RCVBUF grants (it sizes the
    // buffer to one payload otherwise), applied by its stream thread before the first frame.
    g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED,
                 "socket-buffer-size", LargestReceiveBuffer(), nullptr);
    for (uint32_t i = 0; i < run.buffers; ++i) {
        arv_stream_push_buffer(stream.get(), arv_buffer_new_allocate(payload));
    }
    std::this_thread::sleep_for(kSettleTime);
    arv_camera_start_acquisition(camera.get(), &error);
    if (Failed(error, "start")) {
        return std::nullopt;
    }
    MeasuredRun measured(run.seconds, run.emulator, inherited, log);
    while (measured.Going()) {
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream.get(), kPopTimeoutUs);
        if (buffer) {
            size_t size = 0;
            arv_buffer_get_data(buffer, &size);
            measured.Delivered(arv_buffer_get_frame_id(buffer),
                               arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS, size);
            arv_stream_push_buffer(stream.get(), buffer);
        }
    }
    const ReceiverReport result = measured.Finish();
    arv_camera_stop_acquisition(camera.get(), &error);
    Failed(error, "stop");
    return result;
}

}  // namespace ry::bench
