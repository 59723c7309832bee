// The message channel: EVENT commands from the camera to MCDA:MCP, each repeated until the
// host acknowledges it or the retry count (MCRC) runs out, waiting MCTT between tries.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <thread>

#include "ry/gev/protocol/gvcp_payloads.h"
#include "udp_socket.h"

namespace ry::emulator {

struct MessageSettings {
    Endpoint destination;  // port 0: channel closed
    std::uint32_t timeout_ms = 300;
    std::uint32_t retries = 2;
    bool extended_ids = false;
};

class MessageChannel {
  public:
    explicit MessageChannel(std::uint32_t bind_ip);
    ~MessageChannel();
    MessageChannel(const MessageChannel&) = delete;
    MessageChannel& operator=(const MessageChannel&) = delete;

    std::uint16_t source_port() const { return source_port_; }
    void configure(const MessageSettings& settings);
    void enable(std::uint16_t event_id, bool on);
    bool enabled(std::uint16_t event_id) const;
    void set_silent(bool silent);  // a pulled cable: nothing leaves the camera

    // Queues an event when the channel is open and the event is enabled. An event with data
    // goes out as EVENTDATA, one without as EVENT.
    void post(std::uint16_t event_id, std::uint64_t block_id, std::uint64_t timestamp,
              std::vector<std::uint8_t> data = {});
    std::uint64_t events_acknowledged() const;

  private:
    void run();
    bool deliver(const std::vector<std::uint8_t>& command, std::uint16_t req_id,
                 const MessageSettings& settings);

    UdpSocket socket_;
    std::uint16_t source_port_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    MessageSettings settings_;
    std::set<std::uint16_t> enabled_;
    std::deque<gev::EventItem> queue_;
    std::uint16_t req_id_ = 1;
    std::uint64_t acknowledged_ = 0;
    bool silent_ = false;
    std::atomic<bool> quit_{false};  // also ends a delivery that waits for its ack
    std::thread thread_;
};

}  // namespace ry::emulator
