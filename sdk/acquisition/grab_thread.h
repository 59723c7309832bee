// The camera's grab thread and callback thread. Each runs on a GrabSession: everything it
// touches, held by the thread itself, so that a thread left to end on its own after a
// bounded wait never reaches into a closed camera.
#pragma once

#include <cstdint>
#include <memory>

#include "acquisition/acquisition_state.h"
#include "camera/camera_shared.h"
#include "rysdk/RyCameraTypes.h"
#include "rysdk/RyTypes.h"

namespace RYSDK::acquisition {

struct GrabSession {
    std::shared_ptr<AcquisitionState> state;
    std::shared_ptr<camera::DeviceNodeMap> nodeMap;
    std::shared_ptr<camera::ThreadSignals> signals;  // the general event callback
    TransportHandle stream = nullptr;
    TransportHandle newBufferEvent = nullptr;

    pImageCallbackFn imageCallback = nullptr;
    OBJECT_INFO* userObject = nullptr;
    CopyBuffer copyBuffer;  // the independent callback's copy of each frame

    uint32_t timeoutMs = 0;  // 0: without limit
    bool independentCallback = false;
    bool queueManager = false;
    bool continuousHonoursFrameCount = false;
    // Passes to run when the camera does not say ("AcquisitionMode" unreadable).
    int64_t framesToGrab = 0;
    uint64_t sessionId = 0;
};

// The grab loop: waits for filled buffers, hands each frame on and queues the buffer again;
// stops the camera's acquisition when it ends.
void RunGrabLoop(const GrabSession& session);

// The callback thread's loop: while grabbing, delivers the newest frame the grab thread left
// in the slot, copied into the copy buffer.
void RunCallbackLoop(const GrabSession& session);

// "AcquisitionStop" executed through the node map when the camera allows it: 1 when it does
// not (the trace says "AcquisitionStop!!"), RESULT_ERROR_XML_NODE_ACCESS_FAILED without a
// node map.
RESULT ExecuteAcquisitionStop(camera::DeviceNodeMap* nodeMap);

// Gives a delivered buffer back to the stream, unless the queue manager is on: then the
// application queues its buffers itself.
void RequeueUnlessManaged(bool queueManager, TransportHandle stream, void* buffer);

}  // namespace RYSDK::acquisition
