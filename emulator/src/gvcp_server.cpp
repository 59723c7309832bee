#include <poll.h>

#include <algorithm>
#include <thread>

#include "camera_device.h"
#include "ry/gev/protocol/bootstrap.h"

namespace ry::emulator {

namespace bs = gev::bootstrap;
using gev::GevStatus;
using gev::GvcpCommand;

namespace {

constexpr int kPollMs = 20;  // also the resolution of the heartbeat check
constexpr auto kRetryWindow = std::chrono::seconds(1);

std::uint16_t code(GvcpCommand c) {
    return static_cast<std::uint16_t>(c);
}
std::uint16_t status_code(GevStatus s) {
    return static_cast<std::uint16_t>(s);
}

// Write acknowledges keep their payload (reserved word and index: nothing was written)
// whatever the status; the others carry none with an error.
std::vector<std::uint8_t> error_ack(GevStatus status, const gev::GvcpCommandHeader& h) {
    if (h.command == code(GvcpCommand::WriteReg))
        return gev::make_writereg_ack(status_code(status), h.req_id, 0);
    if (h.command == code(GvcpCommand::WriteMem))
        return gev::make_writemem_ack(status_code(status), h.req_id, 0);
    return gev::make_ack(status_code(status), gev::ack_code_for(h.command), h.req_id);
}

}  // namespace

void CameraDevice::serve() {
    std::vector<std::uint8_t> buffer(2048);
    while (!quit_) {
        pollfd fds[2] = {{control_.fd(), POLLIN, 0}, {broadcast_.fd(), POLLIN, 0}};
        const int count = broadcast_.is_open() ? 2 : 1;
        const int ready = ::poll(fds, count, kPollMs);
        {
            std::lock_guard lock(mutex_);
            check_heartbeat();
        }
        if (ready <= 0) {
            continue;
        }
        for (int i = 0; i < count; ++i) {
            if ((fds[i].revents & POLLIN) == 0) {
                continue;
            }
            const UdpSocket& socket = i == 0 ? control_ : broadcast_;
            Endpoint from;
            const std::size_t n = socket.receive(buffer, from, 0);
            if (n > 0) {
                handle_datagram(socket, from, {buffer.data(), n}, i == 1);
            }
        }
    }
}

void CameraDevice::handle_datagram(const UdpSocket& socket, Endpoint from, gev::ConstBytes datagram,
                                   bool via_broadcast) {
    const auto header = gev::decode_command_header(datagram);
    std::unique_lock lock(mutex_);
    if (config_.faults.unplugged) {
        return;  // a pulled cable: the command never arrives
    }
    if (!header) {
        // Acknowledges (from event replies) and junk are not commands; junk with a key but
        // too short to hold a header is answered like a bad header when possible.
        if (datagram.size() >= 4 && datagram[0] == gev::kGvcpKey &&
            (datagram[1] & gev::kFlagAckRequired) != 0) {
            gev::GvcpCommandHeader partial{datagram[1], gev::load_be16(datagram.data() + 2), 0, 0};
            lock.unlock();
            control_.send_to(from, error_ack(GevStatus::InvalidHeader, partial));
        }
        return;
    }
    if (via_broadcast && header->command != code(GvcpCommand::Discovery) &&
        header->command != code(GvcpCommand::ForceIp)) {
        return;  // only discovery and FORCEIP are meant for everyone
    }
    const auto payload = gev::command_payload(datagram, *header);
    const bool is_write = header->command == code(GvcpCommand::WriteReg) ||
                          header->command == code(GvcpCommand::WriteMem);
    const auto now = std::chrono::steady_clock::now();
    CommandOutcome outcome;
    std::vector<std::uint8_t> ack;
    if (!payload) {
        ack = error_ack(GevStatus::InvalidHeader, *header);
    } else if (is_write && last_write_.from == from && now - last_write_.at < kRetryWindow &&
               std::equal(datagram.begin(), datagram.end(), last_write_.command.begin(),
                          last_write_.command.end())) {
        note_command_from(from);
        ack = last_write_.ack;  // a retry: the host lost our answer, not the command
    } else {
        note_command_from(from);
        ack = execute(*header, *payload, from, outcome);
        if (is_write) {
            last_write_ = {from, {datagram.begin(), datagram.end()}, ack, now};
        }
    }
    const bool answer = !ack.empty() && (header->flags & gev::kFlagAckRequired) != 0;
    lock.unlock();
    if (answer) {
        // Discovery answers come from the control socket so that the source is our address.
        send_ack(via_broadcast ? control_ : socket, from, std::move(ack), *header, outcome.slow_ms);
    }
}

void CameraDevice::send_ack(const UdpSocket& socket, Endpoint to, std::vector<std::uint8_t> ack,
                            const gev::GvcpCommandHeader& header, std::uint32_t slow_ms) {
    const FaultConfig faults = this->faults();
    if (slow_ms > 0) {
        const bool pending_enabled = (current_gvcp_config() & bs::kConfigPendingAck) != 0;
        if (pending_enabled) {
            socket.send_to(
                to, gev::make_pending_ack(header.req_id,
                                          static_cast<std::uint16_t>(
                                              std::min<std::uint32_t>(slow_ms + 100, 0xFFFF))));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(slow_ms));
    }
    if (faults.ack_delay_ms > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(faults.ack_delay_ms));
    }
    if (faults.malformed_packets && ack.size() > 6) {
        ack.resize(6);  // shorter than an acknowledge header
    }
    socket.send_to(to, ack);
}

std::vector<std::uint8_t> CameraDevice::execute(const gev::GvcpCommandHeader& h,
                                                gev::ConstBytes payload, Endpoint from,
                                                CommandOutcome& outcome) {
    switch (static_cast<GvcpCommand>(h.command)) {
        case GvcpCommand::Discovery:
            return gev::make_discovery_ack(h.req_id, device_info());
        case GvcpCommand::ReadReg:
            return on_readreg(h, payload, from);
        case GvcpCommand::WriteReg:
            return on_writereg(h, payload, from, outcome);
        case GvcpCommand::ReadMem:
            return on_readmem(h, payload, from);
        case GvcpCommand::WriteMem:
            return on_writemem(h, payload, from, outcome);
        case GvcpCommand::PacketResend: {
            if (const auto request = gev::decode_packetresend_command(h.flags, payload)) {
                streamer_->resend(*request);
                return {};  // resent packets go on the stream channel; no GVCP answer
            }
            return error_ack(GevStatus::InvalidHeader, h);
        }
        case GvcpCommand::ForceIp:
            on_forceip(h, payload, from);
            return {};
        case GvcpCommand::Event:
        case GvcpCommand::EventData:
        case GvcpCommand::Action:
        default:
            return error_ack(GevStatus::NotImplemented, h);
    }
}

std::vector<std::uint8_t> CameraDevice::on_readreg(const gev::GvcpCommandHeader& h,
                                                   gev::ConstBytes payload, Endpoint from) {
    const auto addresses = gev::decode_readreg_command(payload);
    if (!addresses) {
        return error_ack(GevStatus::InvalidHeader, h);
    }
    if (!may_read(from)) {
        return error_ack(GevStatus::AccessDenied, h);
    }
    std::vector<std::uint32_t> values;
    for (const std::uint32_t address : *addresses) {
        std::uint8_t word[4];
        const GevStatus status = read_memory(address, word);
        if (status != GevStatus::Success) {
            return gev::make_readreg_ack(status_code(status), h.req_id, values);
        }
        values.push_back(gev::load_be32(word));
    }
    return gev::make_readreg_ack(0, h.req_id, values);
}

std::vector<std::uint8_t> CameraDevice::on_writereg(const gev::GvcpCommandHeader& h,
                                                    gev::ConstBytes payload, Endpoint from,
                                                    CommandOutcome& outcome) {
    const auto writes = gev::decode_writereg_command(payload);
    if (!writes) {
        return error_ack(GevStatus::InvalidHeader, h);
    }
    std::uint16_t index = 0;
    for (const auto& write : *writes) {
        CommandOutcome one;
        if (write.address % 4 != 0) {
            one.status = GevStatus::BadAlignment;
        } else if (write.address == bs::kControlChannelPrivilege) {
            one = write_ccp(from, write.value);
        } else if (!may_write(from)) {
            one.status = GevStatus::AccessDenied;
        } else {
            one = write_word(write.address, write.value, from);
        }
        outcome.slow_ms += one.slow_ms;
        if (one.status != GevStatus::Success) {
            return gev::make_writereg_ack(status_code(one.status), h.req_id, index);
        }
        ++index;
    }
    return gev::make_writereg_ack(0, h.req_id, index);
}

std::vector<std::uint8_t> CameraDevice::on_readmem(const gev::GvcpCommandHeader& h,
                                                   gev::ConstBytes payload, Endpoint from) {
    const auto request = gev::decode_readmem_command(payload);
    if (!request) {
        return error_ack(GevStatus::InvalidHeader, h);
    }
    if (request->count == 0 || request->count > gev::kMaxMemoryAccess) {
        return error_ack(GevStatus::InvalidParameter, h);
    }
    if (!may_read(from)) {
        return error_ack(GevStatus::AccessDenied, h);
    }
    std::vector<std::uint8_t> data(request->count);
    const GevStatus status = read_memory(request->address, data);
    if (status != GevStatus::Success) {
        return error_ack(status, h);
    }
    return *gev::make_readmem_ack(h.req_id, request->address, data);
}

std::vector<std::uint8_t> CameraDevice::on_writemem(const gev::GvcpCommandHeader& h,
                                                    gev::ConstBytes payload, Endpoint from,
                                                    CommandOutcome& outcome) {
    const auto block = gev::decode_writemem_command(payload);
    if (!block) {
        return error_ack(GevStatus::InvalidHeader, h);
    }
    if (block->data.size() > gev::kMaxMemoryAccess) {
        return error_ack(GevStatus::InvalidParameter, h);
    }
    outcome = write_memory(block->address, block->data, from);
    if (outcome.status != GevStatus::Success) {
        return error_ack(outcome.status, h);
    }
    return gev::make_writemem_ack(0, h.req_id, static_cast<std::uint16_t>(block->data.size()));
}

void CameraDevice::on_forceip(const gev::GvcpCommandHeader& h, gev::ConstBytes payload,
                              Endpoint from) {
    const auto request = gev::decode_forceip_command(payload);
    const gev::DeviceInfo info = device_info();
    if (!request || request->mac != info.mac || primary_.port != 0 || request->ip == 0) {
        return;  // not for us, or the camera is in use, or a restart of the IP cycle
    }
    if (!config_.bind_any) {
        // The control socket moves to the new address; a wildcard socket already has it.
        try {
            control_ = UdpSocket(Endpoint{request->ip, control_port_}, false);
        } catch (const std::exception&) {
            control_.send_to(from, error_ack(GevStatus::Error, h));
            return;
        }
    }
    set_boot(bs::kCurrentIp, request->ip);
    set_boot(bs::kCurrentSubnetMask, request->subnet_mask);
    set_boot(bs::kCurrentGateway, request->gateway);
    if (h.flags & gev::kFlagAckRequired) {
        control_.send_to(
            from, gev::make_ack(0, static_cast<std::uint16_t>(gev::GvcpAck::ForceIp), h.req_id));
    }
}

}  // namespace ry::emulator
