// Turns the honest acknowledge of a request into the datagrams a hostile device sends.
#pragma once

#include <cstdint>
#include <vector>

#include "hostile_device.h"

namespace ry::emulator::hostile {

struct Send {
    std::uint32_t delay_ms = 0;  // after the request
    std::vector<std::uint8_t> bytes;
};

std::vector<Send> spoil(Answer answer, const std::vector<std::uint8_t>& ack, std::uint32_t late_ms);

}  // namespace ry::emulator::hostile
