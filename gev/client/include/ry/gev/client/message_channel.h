// Receives EVENT and EVENTDATA commands from the device's message channel, acknowledges
// them and hands each item to a callback on the channel's own thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "ry/gev/client/udp_socket.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::gev::client {

class MessageChannel {
  public:
    using Handler = std::function<void(const EventItem& item)>;

    ~MessageChannel();
    // Binds to localIp on an ephemeral port and starts the thread. Only datagrams from
    // deviceIp are looked at.
    bool Start(uint32_t localIp, uint32_t deviceIp, Handler handler, std::string* errorText);
    void Stop();
    uint16_t LocalPort() const { return socket_.LocalPort(); }
    bool Running() const { return thread_.joinable(); }

  private:
    void Run(std::stop_token stop);
    void Handle(const uint8_t* data, size_t size, const Datagram& from);

    UdpSocket socket_;
    uint32_t deviceIp_ = 0;
    Handler handler_;
    std::jthread thread_;
};

}  // namespace ry::gev::client
