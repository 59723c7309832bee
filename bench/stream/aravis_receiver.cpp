#include "aravis_receiver.h"

#include <chrono>

namespace ry::bench {

std::optional<ReceiverReport> MeasureAravis(const AravisRun& run, DeliveryLog& log) {
    const int inherited = OwnedPacketSockets();
    auto stream = AravisStream::Open(run);
    if (!stream || !stream->Start()) {
        return std::nullopt;
    }
    MeasuredRun measured(run.seconds, run.emulator, inherited, log);
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(run.seconds));
    stream->Recycle(end, [&measured](ArvBuffer* buffer) {
        size_t size = 0;
        arv_buffer_get_data(buffer, &size);
        measured.Delivered(arv_buffer_get_frame_id(buffer),
                           arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS, size);
    });
    const ReceiverReport result = measured.Finish();
    stream->Stop();
    return result;
}

}  // namespace ry::bench
