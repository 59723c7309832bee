#include "message_channel.h"

#include <algorithm>
#include <chrono>

namespace ry::emulator {
namespace {
constexpr std::size_t kQueueLimit = 256;  // events beyond this are dropped (channel overflow)
}

MessageChannel::MessageChannel(std::uint32_t bind_ip) : socket_(Endpoint{bind_ip, 0}, false) {
    source_port_ = socket_.local_port();
    thread_ = std::thread([this] { run(); });
}

MessageChannel::~MessageChannel() {
    {
        std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void MessageChannel::configure(const MessageSettings& settings) {
    std::lock_guard lock(mutex_);
    settings_ = settings;
    if (settings.destination.port == 0) {
        queue_.clear();
    }
}

void MessageChannel::enable(std::uint16_t event_id, bool on) {
    std::lock_guard lock(mutex_);
    if (on) {
        enabled_.insert(event_id);
    } else {
        enabled_.erase(event_id);
    }
}

bool MessageChannel::enabled(std::uint16_t event_id) const {
    std::lock_guard lock(mutex_);
    return enabled_.count(event_id) != 0;
}

void MessageChannel::set_silent(bool silent) {
    std::lock_guard lock(mutex_);
    silent_ = silent;
}

std::uint64_t MessageChannel::events_acknowledged() const {
    std::lock_guard lock(mutex_);
    return acknowledged_;
}

void MessageChannel::post(std::uint16_t event_id, std::uint64_t block_id, std::uint64_t timestamp,
                          std::vector<std::uint8_t> data) {
    {
        std::lock_guard lock(mutex_);
        if (settings_.destination.port == 0 || enabled_.count(event_id) == 0 ||
            queue_.size() >= kQueueLimit) {
            return;
        }
        queue_.push_back(gev::EventItem{event_id, 0, block_id, timestamp, std::move(data)});
    }
    wake_.notify_all();
}

void MessageChannel::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [&] { return quit_.load() || !queue_.empty(); });
        if (quit_) {
            return;
        }
        const gev::EventItem item = queue_.front();
        queue_.pop_front();
        const MessageSettings settings = settings_;
        const bool silent = silent_;
        req_id_ = gev::next_req_id(req_id_);
        const std::uint16_t req_id = req_id_;
        lock.unlock();
        const auto command = item.data.empty()
                                 ? gev::make_event_command(req_id, settings.extended_ids, {item})
                                 : gev::make_eventdata_command(req_id, settings.extended_ids, item);
        const bool acked = !silent && command && deliver(*command, req_id, settings);
        lock.lock();
        acknowledged_ += acked ? 1 : 0;
    }
}

bool MessageChannel::deliver(const std::vector<std::uint8_t>& command, std::uint16_t req_id,
                             const MessageSettings& settings) {
    std::uint8_t buffer[64];
    for (std::uint32_t attempt = 0; attempt <= settings.retries && !quit_; ++attempt) {
        socket_.send_to(settings.destination, command);
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(settings.timeout_ms);
        while (std::chrono::steady_clock::now() < deadline && !quit_) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            Endpoint from;
            const std::size_t n = socket_.receive(
                buffer, from, static_cast<int>(std::clamp<long>(left.count(), 1, 50)));
            const auto ack = gev::decode_ack_header({buffer, n});
            const auto expected = gev::ack_code_for(gev::load_be16(command.data() + 2));
            if (n > 0 && ack && ack->ack_id == req_id && ack->acknowledge == expected) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace ry::emulator
