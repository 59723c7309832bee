// Aravis's camera and stream, set up the one way every comparison with Aravis uses them:
// opened from 127.0.0.1 with the run's packet size in continuous mode, on its plain UDP
// socket or in its packet-socket mode, with the largest receive buffer the kernel grants.
#pragma once

#include <arv.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ry::bench {

struct AravisRun {
    std::string deviceAddress;  // dotted IPv4, reached from 127.0.0.1
    uint32_t packetSize = 9000;
    uint32_t buffers = 16;
    double seconds = 5;
    bool packetSocket = false;
    pid_t emulator = -1;  // for the machine's CPU
};

struct GObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectRelease>;

class AravisStream {
  public:
    // `callback`, when given, runs on Aravis's stream thread for each buffer (the callback
    // form of its API). Nullopt when the camera or the stream cannot be set up; the reason
    // is printed.
    static std::optional<AravisStream> Open(const AravisRun& run,
                                            ArvStreamCallback callback = nullptr,
                                            void* callbackData = nullptr);

    // Starts the camera's acquisition; false (printed) when it refuses.
    bool Start();
    // Takes each filled buffer off the stream, shows it to `onBuffer` (when given) and
    // queues it again, until `end`.
    void Recycle(std::chrono::steady_clock::time_point end,
                 const std::function<void(ArvBuffer*)>& onBuffer);
    void Stop();

  private:
    AravisStream() = default;

    GObjectPtr<ArvCamera> camera_;  // outlives its stream
    GObjectPtr<ArvStream> stream_;
};

}  // namespace ry::bench
