// The acknowledges a device sends to the client's requests, and the requests a device (the
// emulator) reads. The first bytes choose the request (kind, count, request id, address);
// the datagrams that follow are what arrives while the client waits, judged in order as
// the control channel judges them until one ends the request.
#include <cstdint>
#include <cstring>
#include <vector>

#include "datagram_feed.h"
#include "ry/gev/client/device_answers.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace {

using namespace ry::gev;
using namespace ry::gev::client;
using ry::gev::fuzz::DatagramFeed;

enum class Request : uint8_t { ReadReg, WriteReg, ReadMem, WriteMem, ForceIp, DeviceSide, Count };

uint16_t ExpectedAck(Request request) {
    switch (request) {
        case Request::ReadReg:
            return static_cast<uint16_t>(GvcpAck::ReadReg);
        case Request::WriteReg:
            return static_cast<uint16_t>(GvcpAck::WriteReg);
        case Request::ReadMem:
            return static_cast<uint16_t>(GvcpAck::ReadMem);
        default:
            return static_cast<uint16_t>(GvcpAck::WriteMem);
    }
}

// What the control channel does with an answer once the request is settled.
void TakeAnswer(Request request, ConstBytes payload, uint16_t count, uint32_t address) {
    if (request == Request::ReadReg) {
        std::vector<uint32_t> values(count % kMaxReadRegCount + 1);
        TakeRegisterValues(payload, values);
    } else if (request == Request::ReadMem) {
        std::vector<uint8_t> data(count % (kMaxMemoryAccess + 1));
        TakeMemoryData(payload, address, data);
    } else if (request == Request::WriteReg) {
        decode_writereg_ack(payload);
    } else {
        decode_writemem_ack(payload);
    }
}

void AwaitAck(DatagramFeed& feed, Request request, uint16_t count, uint16_t id, uint32_t address) {
    while (const auto datagram = feed.Next()) {
        if (request == Request::ForceIp) {
            if (JudgeForceIpAck(*datagram, id))
                return;
            continue;
        }
        const AckVerdict verdict = JudgeAck(*datagram, id, ExpectedAck(request));
        if (verdict.kind == AckVerdict::Kind::Error)
            return;
        if (verdict.kind == AckVerdict::Kind::Answer) {
            TakeAnswer(request, verdict.payload, count, address);
            return;
        }
    }
}

// The device's side of the same exchange: every command decoder on whatever arrives.
void ReadCommands(DatagramFeed& feed) {
    while (const auto datagram = feed.Next()) {
        const auto header = decode_command_header(*datagram);
        if (!header)
            continue;
        const auto payload = command_payload(*datagram, *header);
        if (!payload)
            continue;
        decode_readreg_command(*payload);
        decode_writereg_command(*payload);
        decode_readmem_command(*payload);
        decode_writemem_command(*payload);
        decode_packetresend_command(header->flags, *payload);
        decode_forceip_command(*payload);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DatagramFeed feed(data, size);
    const auto request = static_cast<Request>(feed.Byte() % static_cast<uint8_t>(Request::Count));
    const uint16_t count = feed.Word();
    const uint16_t id = feed.Word();
    const uint32_t address = feed.Long();
    if (request == Request::DeviceSide)
        ReadCommands(feed);
    else
        AwaitAck(feed, request, count, id, address);
    return 0;
}
