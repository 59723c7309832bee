// One emulated GigE Vision camera: a GVCP server on UDP port 3956 with the bootstrap
// registers and the camera's own GenICam description, and a GVSP stream sender.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ry/emulator/camera_config.h"

namespace ry::emulator {

class CameraDevice;

// Told the block id of each frame right after its trailer's send returned, on the stream
// thread; on loopback the trailer is then in the receiver's socket. Benchmarks time delivery
// from there. It must be quick: the next frame waits for it.
using TrailerObserver = std::function<void(std::uint64_t block_id)>;

class Camera {
  public:
    // Binds the sockets and starts the camera's threads. Throws std::runtime_error with the
    // reason when a socket cannot be set up or the configuration is invalid.
    explicit Camera(CameraConfig config);
    ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    const CameraConfig& config() const;
    std::string address() const;         // the current IPv4 address (FORCEIP may change it)
    std::uint16_t control_port() const;  // 3956 unless the configuration chose another
    std::uint16_t stream_source_port() const;

    // Faults can be changed while the camera runs.
    void set_faults(const FaultConfig& faults);
    FaultConfig faults() const;

    // Raises the external trigger line (as a wired trigger input would).
    void fire_external_trigger();

    // Replaces the observer (an empty one removes it); nothing sent changes.
    void set_trailer_observer(TrailerObserver observer);

    // Counters for tests and the benchmark.
    std::uint64_t frames_sent() const;
    std::uint64_t packets_sent() const;
    std::uint64_t bytes_sent() const;
    std::uint64_t packets_resent() const;
    // Writes of 0 to the older generation's stop register (0x88138) that it accepted.
    std::uint64_t legacy_stop_writes() const;

  private:
    std::unique_ptr<CameraDevice> device_;
};

}  // namespace ry::emulator
