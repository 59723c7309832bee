// One emulated GigE Vision camera: a GVCP server on UDP port 3956 with the bootstrap
// registers and the camera's own GenICam description, and a GVSP stream sender.
#pragma once

#include <memory>
#include <string>

#include "ry/emulator/camera_config.h"

namespace ry::emulator {

class CameraDevice;

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
