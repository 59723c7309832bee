// Copies packet data into a lent buffer without reading the buffer's lines into the cache
// first (non-temporal stores). A frame is written once and read by the application later, so
// the usual read-for-ownership of each destination line is wasted work; on the ring path,
// where every payload byte is copied out of the ring by the receiving thread, that copy is
// most of the thread's time. Small copies and CPUs without AVX2 take memcpy.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ry::gev::stream::detail {

void StreamingCopy(uint8_t* destination, const uint8_t* source, size_t bytes);
// Orders the streaming stores before what follows (the frame's hand-over to another thread).
void StreamingCopyFence();

}  // namespace ry::gev::stream::detail
