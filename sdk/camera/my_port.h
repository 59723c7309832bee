// The register port the node map reads and writes the camera through: the transport
// layer's device port. A transport failure is not reported to the node map, which then
// sees the buffer as it stands, as a GenICam port with no error channel does.
#pragma once

#include <atomic>

#include "ry/genicam/Interfaces.h"
#include "rysdk/RyTypes.h"

namespace RYSDK::camera {

class MyPort final : public RyGenApi::IPort {
  public:
    // Until a device handle is stored the port reads and writes nothing.
    void SetPortHandle(TransportHandle device) noexcept { handle_.store(device); }
    TransportHandle GetPortHandle() const noexcept { return handle_.load(); }

    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    RyGenApi::EAccessMode GetAccessMode() const override { return RyGenApi::RW; }

  private:
    // Threads that outlive a close may still read through the port: the handle is atomic,
    // and a closed device's handle is refused by the transport layer.
    std::atomic<TransportHandle> handle_{nullptr};
};

}  // namespace RYSDK::camera
