#include "ry/gev/client/message_channel.h"

#include <array>
#include <chrono>

#include "ry/gev/client/device_answers.h"

namespace ry::gev::client {

MessageChannel::~MessageChannel() {
    Stop();
}

bool MessageChannel::Start(uint32_t localIp, uint32_t deviceIp, Handler handler,
                           std::string* errorText) {
    if (Running())
        return true;
    if (!socket_.Open(localIp, 0, errorText))
        return false;
    deviceIp_ = deviceIp;
    handler_ = std::move(handler);
    thread_ = std::jthread([this](std::stop_token stop) { Run(stop); });
    return true;
}

void MessageChannel::Stop() {
    if (!thread_.joinable())
        return;
    thread_.request_stop();
    thread_.join();
    thread_ = {};
    socket_.Close();
}

void MessageChannel::Run(std::stop_token stop) {
    std::array<uint8_t, kGvcpMaxDatagram + 64> buffer{};
    while (!stop.stop_requested()) {
        // A short wait keeps Stop prompt without a second wake-up mechanism.
        const auto got = socket_.Receive(buffer, std::chrono::milliseconds(50));
        if (got && got->sourceIp == deviceIp_)
            Handle(buffer.data(), got->size, *got);
    }
}

void MessageChannel::Handle(const uint8_t* data, size_t size, const Datagram& from) {
    const auto message = ParseEventMessage(ConstBytes(data, size));
    if (!message)
        return;
    // Acknowledge before running callbacks so a slow callback never causes a resend.
    if (!message->ack.empty())
        socket_.SendTo(from.sourceIp, from.sourcePort, message->ack);
    for (const EventItem& item : message->items)
        handler_(item);
}

}  // namespace ry::gev::client
