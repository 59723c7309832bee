// What a camera shares with its copies and with its worker threads. Copies of a RyCamera
// hold one CameraShared; each worker thread holds the smaller blocks it reads, so a thread
// that outlives its bounded wait (and is detached) never touches freed memory.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "acquisition/acquisition_state.h"
#include "acquisition/buffer_table.h"
#include "camera/my_port.h"
#include "core/platform/sync_event.h"
#include "core/platform/worker_thread.h"
#include "ry/genicam/NodeMapRef.h"
#include "rysdk/RyCameraTypes.h"
#include "rysdk/RySerial.h"
#include "rysdk/RyTypes.h"

namespace RYSDK::camera {

// The node map with the port it reads through: the port outlives the map.
struct DeviceNodeMap {
    explicit DeviceNodeMap(std::shared_ptr<MyPort> registerPort)
        : port(std::move(registerPort)), map("Device") {}

    std::shared_ptr<MyPort> port;
    RyGenApi::CNodeMapRef map;
};

// Signals between the camera and its threads.
struct ThreadSignals {
    // Set by close and by the destructor to wake every waiting thread; it stays set.
    core::SyncEvent stop{core::SyncEvent::Mode::ManualReset};
    std::atomic<int32_t> exitRequest{0};
    std::atomic<pGeneralEventCallbackFn> generalEventCallback{nullptr};
};

// Where the camera's events with one identifier go.
struct EventRoute {
    uint16_t eventId = 0;
    pEventCallbackFn callback = nullptr;
    void* context = nullptr;
};

struct CameraShared {
    CameraShared() = default;
    // The last holder of an open camera gone without a close: its threads are given a short
    // wait and the stream and device are given back to the transport layer.
    ~CameraShared();
    CameraShared(const CameraShared&) = delete;
    CameraShared& operator=(const CameraShared&) = delete;

    TransportHandle device = nullptr;
    TransportHandle stream = nullptr;
    TransportHandle newBufferEvent = nullptr;
    bool newBufferEventRegistered = false;
    TransportHandle deviceErrorEvent = nullptr;

    std::shared_ptr<MyPort> port = std::make_shared<MyPort>();
    RySerial serial;
    std::shared_ptr<DeviceNodeMap> nodeMap;
    acquisition::BufferTable buffers;
    // One zeroed block of a buffer's size for the independent-callback delivery.
    acquisition::CopyBuffer copyBuffer;
    int32_t independentCallback = 0;
    int32_t queueManager = 0;
    int32_t continuousHonoursFrameCount = 0;
    // Passes of the grab thread when the camera's acquisition mode cannot be read.
    int64_t framesToGrab = acquisition::kContinuousPasses;

    std::shared_ptr<acquisition::AcquisitionState> acquisition =
        std::make_shared<acquisition::AcquisitionState>();
    std::unique_ptr<core::WorkerThread> grabThread;
    std::unique_ptr<core::WorkerThread> callbackThread;
    // Threads an Abort stopped waiting for; the next Grab or the close waits for them again.
    std::vector<std::unique_ptr<core::WorkerThread>> retiredThreads;

    pImageCallbackFn imageCallback = nullptr;
    pDisconnectCallbackFn disconnectCallback = nullptr;
    void* userPointer = nullptr;
    // The privilege the device was opened with decides whether control is released.
    CCP_PRIVILEGE privilege = CCP_PRIVILEGE_CONTROL;

    std::shared_ptr<ThreadSignals> signals = std::make_shared<ThreadSignals>();
    // Read on the transport layer's event thread while the application may still register.
    std::mutex eventMutex;
    std::vector<EventRoute> eventRoutes;
    core::WorkerThread connectionThread;
    core::WorkerThread generalEventThread;
};

}  // namespace RYSDK::camera
