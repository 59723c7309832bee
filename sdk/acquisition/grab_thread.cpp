// The grab thread: one pass per filled buffer (or per wait that brought none), each frame
// described in an IMAGE_INFO and handed to the application, loss written to the log, the
// buffer queued again. Nothing here costs a control-channel round trip per frame: the
// pixel format is read from the camera only when the stream's own format changes.
#include <cinttypes>
#include <string>

#include "acquisition/grab_thread.h"
#include "acquisition/pixel_format_read.h"
#include "acquisition/stream_counters.h"
#include "camera/camera_log.h"
#include "camera/standard_features_accessors.h"

namespace RYSDK::acquisition {

using camera::TL;
using core::kLogDebug;
using core::kLogErr;
using core::kLogEtc;
using core::kLogInfo;

namespace {

RY_CAMERA_SITE(ThrGrabContinuosOpt);

template <typename Value>
GC_ERROR QueryBuffer(TransportHandle stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command,
                     Value& value) {
    INFO_DATATYPE type = 0;
    size_t size = sizeof(Value);
    return TL().DSGetBufferInfo(stream, buffer, command, &type, &value, &size);
}

template <typename Value>
bool BufferInfo(TransportHandle stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command,
                Value& value) {
    return QueryBuffer(stream, buffer, command, value) == GC_ERR_SUCCESS;
}

// The passes the camera's acquisition mode asks for; `stored` when the camera does not say.
int64_t FramesToGrab(const GrabSession& session, int64_t stored) {
    const camera::FeatureAccess access(session.nodeMap.get(), kSite);
    if (access.CheckNodeMap() != RESULT_SUCCESS)
        return stored;
    auto* mode = access.As<RyGenApi::IEnumeration>("AcquisitionMode");
    if (mode == nullptr || !RyGenApi::IsReadable(mode->GetAccessMode()))
        return stored;
    RyGenApi::IEnumEntry* entry = mode->GetCurrentEntry();
    if (entry == nullptr)
        return stored;
    const std::string text = entry->GetSymbolic();
    auto frameCount = [&] {
        auto* count = access.As<RyGenApi::IInteger>("AcquisitionFrameCount");
        return count != nullptr ? count->GetValue() : stored;
    };
    if (text == "SingleFrame")
        return 1;
    if (text == "MultiFrame")
        return frameCount();
    if (text == "Continuous")
        return session.continuousHonoursFrameCount ? frameCount() : kContinuousPasses;
    return stored;
}

uint64_t EventTimeout(const GrabSession& session) {
    const camera::StandardFeature hold(session.nodeMap.get(), kSite, "StreamHold",
                                       camera::kPlainErrorOnKind);
    bool held = false;
    const RESULT result = RY_GUARDED(kSite, [&] { return hold.GetBoolean(&held); });
    if ((result == RESULT_SUCCESS && held) || session.timeoutMs == 0)
        return RY_EVENT_WAIT_FOREVER;
    return session.timeoutMs;
}

// Reads the camera's pixel format once, and again whenever a frame arrives in a format
// other than the last one's: the camera cannot change it while it streams.
class PixelFormatOfFrames {
  public:
    explicit PixelFormatOfFrames(const GrabSession& session) : session_(session) {}

    RESULT Read(BUFFER_HANDLE buffer, PIXEL_FORMAT& format) {
        uint64_t streamed = 0;
        const bool known = BufferInfo(session_.stream, buffer, BUFFER_INFO_PIXELFORMAT, streamed);
        if (!valid_ || !known || streamed != streamed_) {
            PIXEL_FORMAT read = PIXEL_FORMAT_MONO8;
            result_ = ReadPixelFormat(session_.nodeMap.get(), &read);
            format_ = read;
            streamed_ = streamed;
            valid_ = known;
        }
        if (result_ == RESULT_SUCCESS)
            format = format_;
        return result_;
    }

  private:
    const GrabSession& session_;
    bool valid_ = false;
    uint64_t streamed_ = 0;
    PIXEL_FORMAT format_ = PIXEL_FORMAT_MONO8;
    RESULT result_ = RESULT_SUCCESS;
};

class GrabLoop {
  public:
    explicit GrabLoop(const GrabSession& session)
        : session_(session),
          state_(*session.state),
          stream_(session.stream),
          pixelFormat_(session) {}

    void Run() {
        RY_LOG_EVENT(kSite, kLogDebug, L"Start Grab Thread");
        TL().DSStartBufferGrabbing(stream_);
        TL().InitEvent(session_.newBufferEvent);
        if (!session_.queueManager)
            TL().DSSetForceQueueBuffer(stream_, 1);
        const int64_t frames = FramesToGrab(session_, session_.framesToGrab);
        const uint64_t timeout = EventTimeout(session_);
        int64_t pass = 0;
        while (pass < frames && state_.grabbing.load() != 0) {
            if (!RunPass(timeout))
                break;
            ++pass;
        }
        Finish();
    }

  private:
    // One wait and what it brought; false when the loop is over.
    bool RunPass(uint64_t timeout) {
        RY_NEW_BUFFER_DATA data{};
        size_t size = sizeof(data);
        const GC_ERROR rc = TL().EventGetData(session_.newBufferEvent, &data, &size, timeout);
        if (rc == GC_ERR_TIMEOUT) {
            LogTimeout(timeout);
            return false;
        }
        if (rc == GC_ERR_NO_DATA || (rc != GC_ERR_SUCCESS && state_.grabbing.load() == 0)) {
            RY_LOG_EVENT(kSite, kLogDebug, L"[EventGetData - NODATA : %d] ", rc);
            if (state_.grabbing.load() == 0) {
                RY_LOG_EVENT(kSite, kLogDebug, L"[EventGetData - NODATA Break;] ");
                return false;
            }
            RY_LOG_EVENT(kSite, kLogDebug, L"[EventGetData - NODATA Continue] ");
            return true;
        }
        HandleBuffer(data.buffer);
        return true;
    }

    void HandleBuffer(BUFFER_HANDLE buffer) {
        void* base = nullptr;
        GC_ERROR rc = QueryBuffer(stream_, buffer, BUFFER_INFO_BASE, base);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"[DSGetBufferInfo BUFFER_INFO_BASE : %d] => hStream : %X, "
                         L"BufferHandle : %X, infoType: %X ",
                         rc, AddressBits(stream_), AddressBits(buffer), AddressBits(&base));
            return;
        }
        uint64_t status = 0;
        rc = QueryBuffer(stream_, buffer, BUFFER_INFO_STATUS, status);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"[DSGetBufferInfo 2 BUFFER_INFO_STATUS : %d %d]\n", rc,
                         static_cast<int>(status));
            return;
        }
        if (state_.grabbing.load() != 0) {
            const IMAGE_INFO image = Describe(buffer, base, status);
            const bool handedBack = Deliver(buffer, image);
            CheckLoss(image.blockId);
            if (!handedBack)
                return;  // queued once the callback thread or the poller is done with it
        }
        Requeue(buffer);
    }

    IMAGE_INFO Describe(BUFFER_HANDLE buffer, void* base, uint64_t status) {
        IMAGE_INFO image{};
        image.pixelFormat = PIXEL_FORMAT_MONO8;
        size_t width = 0;
        size_t height = 0;
        BufferInfo(stream_, buffer, BUFFER_INFO_WIDTH, width);
        BufferInfo(stream_, buffer, BUFFER_INFO_HEIGHT, height);
        image.width = static_cast<uint32_t>(width);
        image.height = static_cast<uint32_t>(height);
        image.result = pixelFormat_.Read(buffer, image.pixelFormat);
        BufferInfo(stream_, buffer, BUFFER_INFO_TIMESTAMP, image.timestamp);
        image.bufferStatus = static_cast<uint32_t>(status);
        uint32_t flags = 0;
        BufferInfo(stream_, buffer, BUFFER_INFO_FRAME_FLAG, flags);
        image.frameFlag = static_cast<uint8_t>(flags & 0xFF);
        uint64_t blockId = 0;
        BufferInfo(stream_, buffer, BUFFER_INFO_BLOCK_ID, blockId);
        image.blockId = static_cast<uint32_t>(blockId);
        image.pImage = base;
        return image;
    }

    // False when the buffer now waits in the slot for the callback thread or a poller.
    bool Deliver(BUFFER_HANDLE buffer, const IMAGE_INFO& image) {
        if (session_.imageCallback != nullptr && !session_.independentCallback) {
            const std::lock_guard<std::mutex> gate(state_.deliveryMutex);
            if (state_.grabbing.load() == 0)
                return true;
            const DeliveryScope delivering(state_);
            IMAGE_INFO record = image;
            session_.imageCallback(session_.userObject, &record);
            return true;
        }
        if (session_.imageCallback != nullptr) {
            BUFFER_HANDLE replaced = state_.SetImage(session_.userObject, image, buffer);
            state_.callbackReady.Set();
            Requeue(replaced);
            return false;
        }
        RY_LOG_TRACE(kSite, kLogInfo, L"Grabdata come!!!!!!! ");
        if (!state_.grabRequest.WaitFor(std::chrono::milliseconds(0))) {
            RY_LOG_EVENT(kSite, kLogDebug, L"Data is done Timeout ");
            return true;
        }
        // The poller's frame keeps its buffer until the poller asks for the next one.
        BUFFER_HANDLE replaced = state_.SetImage(session_.userObject, image, buffer);
        RY_LOG_TRACE(kSite, kLogInfo, L"Grabdata done!!!!!!! ");
        state_.grabDone.Set();
        Requeue(replaced);
        return false;
    }

    void CheckLoss(uint32_t blockId) {
        const uint64_t lost = ReadStreamCounter(stream_, STREAM_INFO_NUM_UNDERRUN);
        if (lost != state_.lastLostFrames) {
            const pGeneralEventCallbackFn general = session_.signals->generalEventCallback.load();
            if (general != nullptr)
                general(EVENT_TYPE_FRAME_LOST);
            RY_LOG_EVENT(kSite, kLogDebug,
                         L"Frame lost (buffer fault) on block ID (%d), total count (%d) :",
                         static_cast<int>(blockId), static_cast<int>(lost));
            state_.lastLostFrames = lost;
        }
        LogPacketCounters(stream_, state_, blockId);
    }

    void Requeue(BUFFER_HANDLE buffer) const {
        RequeueUnlessManaged(session_.queueManager, stream_, buffer);
    }

    void LogTimeout(uint64_t timeout) const {
        RY_LOG_EVENT(kSite, kLogErr, L"[EventGetData - TIMEOUT : %d, %d]", GC_ERR_TIMEOUT,
                     static_cast<int>(timeout));
        RY_LOG_EVENT(kSite, kLogErr, L"[DSGetBufferInfo 1 : => Queued:%lld / Announced:%lld ",
                     static_cast<long long>(ReadStreamCounter(stream_, STREAM_INFO_NUM_QUEUED)),
                     static_cast<long long>(ReadStreamCounter(stream_, STREAM_INFO_NUM_ANNOUNCED)));
    }

    void Finish() {
        // A frame the callback thread never took goes back to the stream.
        Requeue(state_.TakePendingBuffer());
        RY_LOG_EVENT(kSite, kLogDebug, L"ThrGrabContinuosOpt AcquisitionStop");
        ExecuteAcquisitionStop(session_.nodeMap.get());
        RY_LOG_EVENT(kSite, kLogEtc,
                     L"[DSGetBufferInfo : => Queued:%lld / Announced:%lld, Lost Image : %d ",
                     static_cast<long long>(ReadStreamCounter(stream_, STREAM_INFO_NUM_QUEUED)),
                     static_cast<long long>(ReadStreamCounter(stream_, STREAM_INFO_NUM_ANNOUNCED)),
                     static_cast<int>(ReadStreamCounter(stream_, STREAM_INFO_NUM_UNDERRUN)));
        // A later Grab owns the flag once it has started a session of its own.
        if (state_.session.load() == session_.sessionId)
            state_.grabbing.store(0);
        RY_LOG_EVENT(kSite, kLogDebug, L"Grab Thread - End");
    }

    static unsigned int AddressBits(const void* address) {
        return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(address));
    }

    const GrabSession& session_;
    AcquisitionState& state_;
    TransportHandle stream_;
    PixelFormatOfFrames pixelFormat_;
};

}  // namespace

void RunGrabLoop(const GrabSession& session) {
    RY_GUARDED(kSite, [&] {
        GrabLoop(session).Run();
        return RESULT_SUCCESS;
    });
}

void RequeueUnlessManaged(bool queueManager, TransportHandle stream, void* buffer) {
    if (!queueManager && stream != nullptr && buffer != nullptr)
        TL().DSQueueBuffer(stream, buffer);
}

RESULT ExecuteAcquisitionStop(camera::DeviceNodeMap* nodeMap) {
    static constexpr core::LogSite kStopSite{L"RyCamera", L"RYSDK::RyCamera::AcquisitionStop"};
    return RY_GUARDED(kStopSite, [&] {
        const camera::FeatureAccess access(nodeMap, kStopSite);
        const RESULT result = access.CheckNodeMap();
        if (result != RESULT_SUCCESS)
            return result;
        auto* command = access.As<RyGenApi::ICommand>("AcquisitionStop");
        if (command == nullptr || !RyGenApi::IsWritable(command->GetAccessMode())) {
            RY_LOG_TRACE(kStopSite, kLogInfo, L"AcquisitionStop!!");
            return RESULT_ERROR;
        }
        command->Execute(true);
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK::acquisition
