// A data stream: the announced buffers, the input queue the receiving engine takes from,
// the output queue (the new-buffer event) it delivers to, and the stream channel set-up.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "modules.h"
#include "ry/gev/client/udp_socket.h"

namespace ry::gentl {

class DeviceModule;

class StreamModule : public std::enable_shared_from_this<StreamModule> {
  public:
    static constexpr ModuleKind kKind = ModuleKind::Stream;

    StreamModule(std::shared_ptr<DeviceModule> device, uint32_t channel);
    ~StreamModule();

    // Binds the receiver and points the device's stream channel at it.
    GC_ERROR Open();
    void Close();
    bool IsOpen() const;

    GC_ERROR Announce(void* data, size_t size, void* user, BUFFER_HANDLE* handle);
    GC_ERROR Revoke(BUFFER_HANDLE handle, void** data, void** user);
    GC_ERROR Queue(BUFFER_HANDLE handle);
    GC_ERROR Flush(ACQ_QUEUE_TYPE mode);
    GC_ERROR RecoverQueued();
    GC_ERROR StartAcquisition();
    GC_ERROR StopAcquisition(ACQ_STOP_FLAGS flags);
    GC_ERROR SetGrabbing(bool on);
    void SetForceQueue(bool on);
    void SetClearBuffer(bool on);

    GC_ERROR GetInfo(STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
    GC_ERROR GetBufferInfo(BUFFER_HANDLE handle, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type,
                           void* buffer, size_t* size);

    const std::shared_ptr<EventChannel>& NewBufferEvents() const { return newBuffers_; }
    void ApplyInterfaceSettings(const stream::ReceiverSettings& settings);
    uint16_t LocalPort() const;
    uint32_t PacketSize() const { return packetSize_.load(); }

  private:
    enum class BufferState { Idle, Queued, Lent, Output };
    struct Buffer {
        uint8_t* data = nullptr;
        size_t size = 0;
        void* user = nullptr;
        BufferState state = BufferState::Idle;
        bool hasFrame = false;
        stream::ReceivedFrame frame;
    };

    bool TakeBuffer(stream::LentBuffer& lent);
    void Deliver(const stream::ReceivedFrame& frame);
    void ReturnBuffer(const stream::LentBuffer& lent);
    Buffer* FindLocked(BUFFER_HANDLE handle);
    bool PendingInOutputLocked(const Buffer* buffer);
    void EnqueueLocked(Buffer* buffer, bool atFront = false);
    GC_ERROR ConfigureChannel(uint16_t port);
    uint32_t NegotiatePacketSize();
    void FollowDeviceSettings();
    GC_ERROR BufferInfoLocked(const Buffer& buffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type,
                              void* out, size_t* size);
    void StopReceiver(bool discardPartial);

    const std::shared_ptr<DeviceModule> device_;
    const uint32_t channel_;
    std::shared_ptr<EventChannel> newBuffers_ = std::make_shared<EventChannel>();
    std::unique_ptr<stream::FrameReceiver> receiver_;
    client::UdpSocket multicastMembership_;
    std::atomic<uint32_t> packetSize_{0};  // read by DSGetInfo on any thread

    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<Buffer>> buffers_;
    std::deque<Buffer*> input_;
    bool open_ = false;
    bool acquiring_ = false;
    bool grabbing_ = false;
    bool forceQueue_ = false;
    bool clearOnQueue_ = false;
    uint64_t delivered_ = 0;
    uint64_t underruns_ = 0;
    uint64_t corrupted_ = 0;
    uint64_t started_ = 0;
};

}  // namespace ry::gentl
