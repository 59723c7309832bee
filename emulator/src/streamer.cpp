#include "streamer.h"

#include <netinet/in.h>
#include <netinet/udp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ry::emulator {
namespace {

constexpr std::size_t kGsoMaxBytes = 65000;  // one GSO send must stay below the IP limit
constexpr std::size_t kGsoMaxSegments = 64;
constexpr std::size_t kBatch = 64;
constexpr std::uint32_t kMaxResendRange = 4096;

}  // namespace

Streamer::Streamer(std::uint32_t bind_ip, std::uint32_t window_blocks, StreamCounters& counters,
                   EventHook events)
    : socket_(Endpoint{bind_ip, 0}, false),
      window_blocks_(std::max<std::uint32_t>(1, window_blocks)),
      counters_(counters),
      events_(std::move(events)) {
    source_port_ = socket_.local_port();
    reset_clock();
    socket_.set_option(SOL_SOCKET, SO_SNDBUF, 8 << 20);
    thread_ = std::thread([this] { run(); });
}

Streamer::~Streamer() {
    {
        std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

// Builds the packets for the current plan and channel outside the lock: a large test image
// takes a while, and neither the control thread nor resends should wait for it.
bool Streamer::refresh_packets(std::unique_lock<std::mutex>& lock) {
    const ImageSettings image = plan_.image;
    const PacketLayout layout{channel_.packet_size, channel_.extended_ids};
    if (!packets_.empty() && packets_.image() == image && packets_.layout() == layout) {
        return true;
    }
    lock.unlock();
    FramePackets fresh(image, layout);
    lock.lock();
    if (!(plan_.image == image) ||
        !(PacketLayout{channel_.packet_size, channel_.extended_ids} == layout)) {
        return false;  // changed meanwhile: build again on the next round
    }
    packets_ = std::move(fresh);
    window_.clear();  // older blocks no longer match the packets that would be rebuilt
    return true;
}

void Streamer::set_channel(const StreamChannel& channel) {
    std::lock_guard lock(mutex_);
    channel_ = channel;
    socket_.set_option(IPPROTO_IP, IP_MTU_DISCOVER,
                       channel.do_not_fragment ? IP_PMTUDISC_DO : IP_PMTUDISC_DONT);
    if (!(packets_.layout() == PacketLayout{channel.packet_size, channel.extended_ids})) {
        window_.clear();  // resends of older blocks would come out in the wrong layout
    }
}

void Streamer::set_faults(const FaultConfig& faults) {
    std::lock_guard lock(mutex_);
    faults_ = faults;
}

void Streamer::set_trailer_observer(TrailerObserver observer) {
    std::lock_guard lock(mutex_);
    trailer_observer_ = std::move(observer);
}

void Streamer::start(const AcquisitionPlan& plan) {
    {
        std::lock_guard lock(mutex_);
        plan_ = plan;
        frames_left_ = plan.mode == AcquisitionMode::SingleFrame  ? 1
                       : plan.mode == AcquisitionMode::MultiFrame ? std::max(1u, plan.frame_count)
                                                                  : 0;
        pending_triggers_ = 0;
        acquiring_ = true;
        events_(kEventAcquisitionStart, 0, now_ticks());
    }
    wake_.notify_all();
}

void Streamer::stop() {
    {
        std::lock_guard lock(mutex_);
        if (acquiring_) {
            finish_acquisition();
        }
    }
    wake_.notify_all();
}

void Streamer::finish_acquisition() {
    acquiring_ = false;
    events_(kEventAcquisitionEnd, last_block_id_, now_ticks());
}

void Streamer::trigger() {
    {
        std::lock_guard lock(mutex_);
        if (!acquiring_ || !plan_.triggered) {
            return;
        }
        ++pending_triggers_;
    }
    wake_.notify_all();
}

void Streamer::set_hold(bool hold) {
    {
        std::lock_guard lock(mutex_);
        hold_ = hold;
    }
    wake_.notify_all();
}

namespace {
std::int64_t steady_ns() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
}  // namespace

std::uint64_t Streamer::now_ticks() const {
    return static_cast<std::uint64_t>(steady_ns() - epoch_ns_.load());
}

void Streamer::reset_clock() {
    epoch_ns_ = steady_ns();
}

std::uint64_t Streamer::next_block_id() {
    if (channel_.extended_ids) {
        return ++last_block_id_;
    }
    last_block_id_ = gev::next_block_id16(static_cast<std::uint16_t>(last_block_id_));
    return last_block_id_;
}

void Streamer::run() {
    std::unique_lock lock(mutex_);
    auto due = std::chrono::steady_clock::now();
    while (!quit_) {
        if (!acquiring_) {
            wake_.wait(lock, [&] { return quit_ || acquiring_.load(); });
            due = std::chrono::steady_clock::now();
            continue;
        }
        if (!wait_for_frame(lock, due) || !refresh_packets(lock) || !acquiring_) {
            continue;
        }
        // The camera reads as idle as soon as the last frame goes out, so a host that
        // reconfigures right after the trailer is not refused.
        const bool last_frame = frames_left_ == 1;
        if (last_frame) {
            frames_left_ = 0;
            acquiring_ = false;
        }
        send_block(lock);
        if (last_frame) {
            events_(kEventAcquisitionEnd, last_block_id_, now_ticks());
        }
        if (plan_.fps > 0) {
            const auto period = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                std::chrono::duration<double>(1.0 / plan_.fps));
            due = std::max(due + period, std::chrono::steady_clock::now() - period);
        } else {
            // Let the control thread in between frames when sending flat out.
            lock.unlock();
            std::this_thread::yield();
            lock.lock();
        }
        if (acquiring_ && frames_left_ > 1) {
            --frames_left_;
        }
    }
}

bool Streamer::wait_for_frame(std::unique_lock<std::mutex>& lock,
                              std::chrono::steady_clock::time_point due) {
    if (plan_.triggered) {
        wake_.wait(lock, [&] { return quit_ || !acquiring_ || (pending_triggers_ > 0 && !hold_); });
        if (quit_ || !acquiring_) {
            return false;
        }
        --pending_triggers_;
        return true;
    }
    if (wake_.wait_until(lock, due, [&] { return quit_ || !acquiring_; })) {
        return false;
    }
    wake_.wait(lock, [&] { return quit_ || !acquiring_ || !hold_; });
    return !quit_ && acquiring_;
}

void Streamer::send_block(std::unique_lock<std::mutex>&) {
    if (packets_.empty()) {
        return;
    }
    const std::uint64_t block_id = next_block_id();
    const std::uint64_t timestamp = now_ticks();
    if (plan_.triggered) {
        events_(kEventFrameTrigger, block_id, timestamp);
    }
    window_.push_back({block_id, timestamp});
    while (window_.size() > window_blocks_) {
        window_.pop_front();
    }
    counters_.frames++;
    events_(kEventExposureEnd, block_id, timestamp);
    if (channel_.destination.port == 0 || faults_.unplugged) {
        return;
    }
    packets_.prepare_block(block_id);
    const std::size_t leader = packets_.build_packet(block_id, 0, timestamp, 0, 0, scratch_);
    send_datagram(scratch_.data(), faults_.malformed_packets ? packets_.header_size() + 4 : leader);
    const bool plain = faults_.drop_fraction <= 0 && faults_.drop_packet_ids.empty() &&
                       channel_.packet_delay_ns == 0 && !faults_.malformed_packets;
    if (plain && gso_ok_) {
        send_payload_fast();
    } else {
        send_payload_per_packet(faults_);
    }
    const std::uint32_t trailer_id = packets_.payload_packet_count() + 1;
    if (!should_drop(faults_, trailer_id)) {
        const std::size_t size = packets_.build_packet(block_id, trailer_id, 0, 0, 0, scratch_);
        if (send_datagram(scratch_.data(), size) && trailer_observer_) {
            trailer_observer_(block_id);
        }
    }
}

bool Streamer::send_datagram(const std::uint8_t* data, std::size_t size) {
    const bool sent = socket_.send_to(channel_.destination, {data, size});
    if (sent) {
        counters_.packets++;
        counters_.bytes += size;
    }
    return sent;
}

// Sends the payload packets as UDP GSO super-datagrams: the kernel cuts each into segments
// of exactly one packet, so one system call carries up to 64 packets.
void Streamer::send_payload_fast() {
    const auto& train = packets_.train();
    const std::size_t segment = packets_.segment_size();
    const std::size_t per_call =
        std::clamp<std::size_t>(kGsoMaxBytes / segment, 1, kGsoMaxSegments);
    const sockaddr_in to = to_sockaddr(channel_.destination);
    std::size_t offset = 0;
    while (offset < train.size()) {
        const std::size_t length = std::min(train.size() - offset, per_call * segment);
        iovec iov{const_cast<std::uint8_t*>(train.data() + offset), length};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(std::uint16_t))] = {};
        msghdr message{};
        message.msg_name = const_cast<sockaddr_in*>(&to);
        message.msg_namelen = sizeof to;
        message.msg_iov = &iov;
        message.msg_iovlen = 1;
        if (length > segment) {
            message.msg_control = control;
            message.msg_controllen = sizeof control;
            cmsghdr* cm = CMSG_FIRSTHDR(&message);
            cm->cmsg_level = SOL_UDP;
            cm->cmsg_type = UDP_SEGMENT;
            cm->cmsg_len = CMSG_LEN(sizeof(std::uint16_t));
            const auto gso = static_cast<std::uint16_t>(segment);
            std::memcpy(CMSG_DATA(cm), &gso, sizeof gso);
        }
        if (::sendmsg(socket_.fd(), &message, MSG_NOSIGNAL) < 0 && length > segment &&
            (errno == EIO || errno == EINVAL || errno == ENOPROTOOPT || errno == EOPNOTSUPP)) {
            gso_ok_ = false;  // no segmentation offload here: finish the frame packet by packet
            send_payload_per_packet(faults_);
            return;
        }
        counters_.packets += (length + segment - 1) / segment;
        counters_.bytes += length;
        offset += length;
    }
}

bool Streamer::should_drop(const FaultConfig& faults, std::uint32_t packet_id) {
    if (faults.drop_packet_ids.count(packet_id) != 0) {
        return true;
    }
    return faults.drop_fraction > 0 &&
           std::uniform_real_distribution<double>(0.0, 1.0)(random_) < faults.drop_fraction;
}

void Streamer::send_payload_per_packet(const FaultConfig& faults) {
    const auto& train = packets_.train();
    const sockaddr_in to = to_sockaddr(channel_.destination);
    std::vector<mmsghdr> messages;
    std::vector<iovec> iovs;
    messages.reserve(kBatch);
    iovs.reserve(kBatch);
    auto flush = [&] {
        for (std::size_t i = 0; i < messages.size(); ++i) {
            messages[i].msg_hdr.msg_iov = &iovs[i];
        }
        std::size_t done = 0;
        while (done < messages.size()) {
            const int sent = ::sendmmsg(socket_.fd(), messages.data() + done,
                                        static_cast<unsigned>(messages.size() - done), 0);
            if (sent <= 0) {
                break;  // the rest is lost, as on a congested link
            }
            for (int i = 0; i < sent; ++i) {
                counters_.bytes += iovs[done + i].iov_len;
            }
            counters_.packets += sent;
            done += static_cast<std::size_t>(sent);
        }
        messages.clear();
        iovs.clear();
    };
    const bool paced = channel_.packet_delay_ns > 0;
    for (std::uint32_t id = 1; id <= packets_.payload_packet_count(); ++id) {
        if (should_drop(faults, id)) {
            continue;
        }
        iovs.push_back({const_cast<std::uint8_t*>(train.data() + packets_.packet_offset(id)),
                        packets_.packet_length(id)});
        if (faults.malformed_packets) {
            iovs.back().iov_len = 5;  // shorter than any GVSP header
        }
        mmsghdr message{};
        message.msg_hdr.msg_name = const_cast<sockaddr_in*>(&to);
        message.msg_hdr.msg_namelen = sizeof to;
        message.msg_hdr.msg_iovlen = 1;
        messages.push_back(message);
        if (messages.size() == kBatch || paced) {
            flush();
        }
        if (paced) {
            std::this_thread::sleep_for(std::chrono::nanoseconds(channel_.packet_delay_ns));
        }
    }
    flush();
}

void Streamer::send_single(std::uint64_t block_id, std::uint32_t packet_id, std::uint16_t status,
                           std::uint16_t flags) {
    const auto found = std::find_if(window_.begin(), window_.end(),
                                    [&](const SentBlock& b) { return b.block_id == block_id; });
    std::size_t size = 0;
    if (found != window_.end()) {
        size =
            packets_.build_packet(block_id, packet_id, found->timestamp, status, flags, scratch_);
    }
    if (size == 0) {
        const auto error = channel_.extended_status && found == window_.end()
                               ? gev::GevStatus::PacketRemoved
                               : gev::GevStatus::PacketUnavailable;
        size = packets_.build_error_packet(block_id, packet_id, static_cast<std::uint16_t>(error),
                                           scratch_);
    } else {
        counters_.resent++;
    }
    send_datagram(scratch_.data(), size);
}

void Streamer::resend(const gev::PacketResendRequest& request) {
    std::lock_guard lock(mutex_);
    if (faults_.ignore_resend || faults_.unplugged || channel_.destination.port == 0 ||
        packets_.empty() || request.stream_channel != 0 ||
        request.first_packet_id > request.last_packet_id) {
        return;
    }
    std::uint64_t block_id = request.block_id;
    if (!channel_.extended_ids) {
        block_id &= 0xFFFF;
    }
    const std::uint16_t status =
        channel_.extended_status ? static_cast<std::uint16_t>(gev::GevStatus::PacketResend) : 0;
    const std::uint16_t flags = channel_.extended_ids ? gev::kGvspFlagResent : 0;
    const std::uint32_t last =
        std::min(request.last_packet_id, request.first_packet_id + kMaxResendRange - 1);
    for (std::uint32_t id = request.first_packet_id; id <= last; ++id) {
        send_single(block_id, id, status, flags);
        if (id == 0xFFFFFFFF) {
            break;
        }
    }
}

void Streamer::send_test_packet() {
    std::lock_guard lock(mutex_);
    if (channel_.destination.port == 0 || faults_.unplugged ||
        channel_.packet_size <= gev::kIpUdpOverhead) {
        return;
    }
    std::vector<std::uint8_t> packet(channel_.packet_size - gev::kIpUdpOverhead, 0);
    for (std::size_t i = 8; i < packet.size(); ++i) {
        packet[i] = static_cast<std::uint8_t>(i);
    }
    socket_.send_to(channel_.destination, packet);
}

}  // namespace ry::emulator
