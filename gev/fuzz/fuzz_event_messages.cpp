// What arrives on the message channel: EVENT and EVENTDATA commands in both id formats,
// read as the client reads them, with the acknowledge it would send and every item's data
// touched the way the transport layer hands it to an application.
#include <cstdint>
#include <numeric>

#include "datagram_feed.h"
#include "ry/gev/client/device_answers.h"

namespace {

using namespace ry::gev;
using namespace ry::gev::client;
using ry::gev::fuzz::DatagramFeed;

volatile uint64_t sink;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DatagramFeed feed(data, size);
    while (const auto datagram = feed.Next()) {
        const auto message = ParseEventMessage(*datagram);
        if (!message)
            continue;
        if (!message->ack.empty() && message->ack.size() != kGvcpHeaderSize)
            __builtin_trap();  // an event acknowledge is a bare header
        for (const EventItem& item : message->items)
            sink = std::accumulate(item.data.begin(), item.data.end(),
                                   item.block_id ^ item.timestamp ^ item.event_id);
    }
    return 0;
}
