// The stream's counters as the grab thread and the statistics getters read them.
#pragma once

#include <cstdint>

#include "acquisition/acquisition_state.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"
#include "transport/transport_table.h"

namespace RYSDK::acquisition {

// One counter of the stream; `status`, when given, receives the transport's answer.
uint64_t ReadStreamCounter(TransportHandle stream, STREAM_INFO_CMD command,
                           GC_ERROR* status = nullptr);

// Logs the packets missing and resent since the last frame, naming the block at which each
// total moved, and remembers the totals in `state`.
void LogPacketCounters(TransportHandle stream, AcquisitionState& state, uint32_t blockId);

}  // namespace RYSDK::acquisition
