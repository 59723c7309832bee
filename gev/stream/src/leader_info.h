// What a leader tells the engine about its block. Read once per frame, so it goes through the
// protocol library's decoders.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ry/gev/protocol/gvsp.h"

namespace ry::gev::stream::detail {

struct LeaderFields {
    // Payload type and timestamp for every leader; the image layout for image leaders.
    ry::gev::ImageLeader image;
    uint64_t payloadBytes = 0;  // expected block size; 0 when the leader does not say
};

// False when the leader is too short to carry its payload type and timestamp.
bool DecodeLeader(const uint8_t* data, size_t size, LeaderFields& out);

}  // namespace ry::gev::stream::detail
