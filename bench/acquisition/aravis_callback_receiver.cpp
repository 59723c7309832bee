#include "aravis_callback_receiver.h"

#include "measurement_window.h"
#include "proc_readings.h"

namespace ry::bench {
namespace {

void OnBuffer(void* log, ArvStreamCallbackType type, ArvBuffer* buffer) {
    if (type != ARV_STREAM_CALLBACK_TYPE_BUFFER_DONE) {
        return;
    }
    size_t bytes = 0;
    arv_buffer_get_data(buffer, &bytes);
    static_cast<CallbackLog*>(log)->Record(
        arv_buffer_get_frame_id(buffer), arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS,
        bytes);
}

}  // namespace

std::optional<ReceiverReport> MeasureAravisCallback(const AravisRun& run, RunBoard& board) {
    CallbackLog log(board.trailers, LogCapacity(run.seconds));
    // Aravis falls back to its plain socket silently when it cannot open a packet socket.
    const int inherited = OwnedPacketSockets();
    auto stream = AravisStream::Open(run, &OnBuffer, &log);
    if (!stream || !stream->Start()) {
        return std::nullopt;
    }
    ReceiverSummary& summary = board.summary;
    summary.packetSocketOpen = OwnedPacketSockets() > inherited;
    MeasureWindow(
        log, run.seconds, [&stream](auto until) { stream->Recycle(until, nullptr); }, summary);
    stream->Stop();
    log.Summarize(summary);
    return ReceiverReport{summary.figures, summary.packetSocketOpen};
}

}  // namespace ry::bench
