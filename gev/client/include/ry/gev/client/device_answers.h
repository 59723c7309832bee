// How the client reads what a device sends it: acknowledges of its requests, discovery
// answers and message-channel events. Every function here takes the datagram as it came off
// the socket, trusts none of its fields and never reads past it; the socket loops only
// receive and act on the verdict.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "RyGenTLErrors.h"
#include "ry/gev/client/discovery.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::gev::client {

// What one datagram means to a request that waits for the acknowledge `expectedAck` with
// the id `requestId`.
struct AckVerdict {
    enum class Kind { Ignore, Pending, Error, Answer };
    Kind kind = Kind::Ignore;
    uint16_t pendingMs = 0;           // Pending: the device's time to completion
    GC_ERROR error = GC_ERR_SUCCESS;  // Error: the status as a transport code
    ConstBytes payload;               // Answer: the payload, a view into the datagram
};
AckVerdict JudgeAck(ConstBytes datagram, uint16_t requestId, uint16_t expectedAck);

// The values of a READREG_ACK payload for the addresses asked for (values.size() of them).
// GC_ERR_IO when the payload is not whole words or carries fewer values.
GC_ERROR TakeRegisterValues(ConstBytes payload, std::span<uint32_t> values);
// The data of a READMEM_ACK payload for a read of data.size() bytes at `address`. GC_ERR_IO
// when the echoed address differs or fewer bytes came.
GC_ERROR TakeMemoryData(ConstBytes payload, uint32_t address, std::span<uint8_t> data);

inline constexpr uint16_t kDiscoveryRequestId = 0xFFFF;
// A DISCOVERY_ACK to our request, as a device record; nullopt for anything else.
std::optional<DiscoveredDevice> ParseDiscoveryAck(ConstBytes datagram);
// The result a FORCEIP_ACK to request `requestId` carries; nullopt for anything else.
std::optional<GC_ERROR> JudgeForceIpAck(ConstBytes datagram, uint16_t requestId);

// An EVENT or EVENTDATA command with its items, and the acknowledge it asks for (empty
// when the device wants none).
struct EventMessage {
    std::vector<EventItem> items;
    std::vector<uint8_t> ack;
};
std::optional<EventMessage> ParseEventMessage(ConstBytes datagram);

}  // namespace ry::gev::client
