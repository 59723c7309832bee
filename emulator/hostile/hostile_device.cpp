#include "hostile_device.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <list>

#include "bad_answers.h"
#include "ry/gev/protocol/bootstrap.h"
#include "ry/gev/protocol/gvcp_payloads.h"
#include "udp_socket.h"

namespace ry::emulator::hostile {
namespace {

namespace bs = gev::bootstrap;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr int kPollMs = 20;
constexpr std::uint32_t kUrlEnd = bs::kFirstUrl + 512;

}  // namespace

std::string hostile_text(std::size_t width) {
    static const std::string pattern =
        "\x1b[2J\x1b]0;owned\x07\r\n\t\x7f\xff\xfe\xc3(\x1b[31mred\x08\x08\x08";
    std::string text;
    while (text.size() < width)
        text += pattern;
    text.resize(width);
    return text;
}

struct HostileDevice::Inside {
    struct Scheduled {
        Clock::time_point due;
        Endpoint to;
        Bytes bytes;
    };

    HostileConfig config;
    UdpSocket control;
    UdpSocket broadcast;
    std::list<Scheduled> scheduled;
    std::uint32_t privilege = 0;
    std::array<std::uint8_t, gev::kDiscoveryAckPayloadSize> image{};

    gev::DeviceInfo info() const {
        gev::DeviceInfo info;
        info.version_major = 2;
        info.device_mode = 0x80000000;
        info.ip = *parse_ipv4(config.address);
        info.mac = {0x02, 0x48, 0x4F, 0x53, 0x54, static_cast<std::uint8_t>(info.ip)};
        info.ip_config_supported = info.ip_config_current = 0x7;
        info.subnet_mask = 0xFF000000;
        const bool bad = config.hostile_texts;
        info.manufacturer = bad ? hostile_text(32) : "RyHostile";
        info.model = bad ? hostile_text(32) : "Hostile";
        info.device_version = bad ? hostile_text(32) : "1.0";
        info.manufacturer_info = bad ? hostile_text(48) : "a camera that lies";
        info.serial_number = bad ? hostile_text(16) : "HOSTILE1";
        info.user_defined_name = bad ? hostile_text(16) : "";
        return info;
    }

    std::uint32_t word(std::uint32_t address) const {
        switch (address) {
            case bs::kStreamChannelCount:
                return 1;
            case bs::kHeartbeatTimeout:
                return 3000;
            case bs::kTimestampFrequencyLow:
                return 1000000000;
            case bs::kControlChannelPrivilege:
                return privilege;
            default:
                return 0;
        }
    }

    std::uint8_t byte_at(std::uint32_t address) const {
        if (address < image.size())
            return image[address];
        if (address >= bs::kFirstUrl && address < kUrlEnd) {
            const std::size_t at = address - bs::kFirstUrl;
            return at < config.url.size() ? static_cast<std::uint8_t>(config.url[at]) : 0;
        }
        std::uint8_t bytes[4];
        gev::store_be32(bytes, word(address & ~3u));
        return bytes[address & 3u];
    }

    Bytes memory(std::uint32_t address, std::size_t count) const {
        Bytes data(count);
        for (std::size_t i = 0; i < count; ++i)
            data[i] = byte_at(address + static_cast<std::uint32_t>(i));
        return data;
    }

    Bytes read_registers(const gev::GvcpCommandHeader& h, gev::ConstBytes payload) const {
        const auto addresses = gev::decode_readreg_command(payload);
        if (!addresses)
            return {};
        std::vector<std::uint32_t> values;
        for (const std::uint32_t address : *addresses)
            values.push_back(gev::load_be32(memory(address, 4).data()));
        return gev::make_readreg_ack(0, h.req_id, values);
    }

    Bytes read_memory(const gev::GvcpCommandHeader& h, gev::ConstBytes payload) const {
        const auto request = gev::decode_readmem_command(payload);
        if (!request || request->count > gev::kMaxMemoryAccess)
            return {};
        return *gev::make_readmem_ack(h.req_id, request->address,
                                      memory(request->address, request->count));
    }

    Bytes write_registers(const gev::GvcpCommandHeader& h, gev::ConstBytes payload) {
        const auto writes = gev::decode_writereg_command(payload);
        if (!writes)
            return {};
        for (const auto& write : *writes)
            if (write.address == bs::kControlChannelPrivilege)
                privilege = write.value;
        return gev::make_writereg_ack(0, h.req_id, static_cast<std::uint16_t>(writes->size()));
    }

    void schedule(Endpoint to, const std::vector<Send>& sends) {
        const auto now = Clock::now();
        for (const Send& send : sends)
            scheduled.push_back({now + std::chrono::milliseconds(send.delay_ms), to, send.bytes});
    }

    void answer(Endpoint from, const gev::GvcpCommandHeader& h, gev::ConstBytes payload) {
        Bytes ack;
        Answer how = Answer::Honest;
        switch (static_cast<gev::GvcpCommand>(h.command)) {
            case gev::GvcpCommand::Discovery:
                ack = gev::make_discovery_ack(h.req_id, info());
                how = config.discovery;
                break;
            case gev::GvcpCommand::ReadReg:
                ack = read_registers(h, payload);
                how = config.reads;
                break;
            case gev::GvcpCommand::ReadMem:
                ack = read_memory(h, payload);
                how = config.reads;
                break;
            case gev::GvcpCommand::WriteReg:
                ack = write_registers(h, payload);
                break;
            case gev::GvcpCommand::WriteMem:
                ack = gev::make_writemem_ack(0, h.req_id, 0);
                break;
            default:
                ack = gev::make_ack(static_cast<std::uint16_t>(gev::GevStatus::NotImplemented),
                                    gev::ack_code_for(h.command), h.req_id);
        }
        if (ack.empty())
            ack = gev::make_ack(static_cast<std::uint16_t>(gev::GevStatus::InvalidHeader),
                                gev::ack_code_for(h.command), h.req_id);
        if (h.flags & gev::kFlagAckRequired)
            schedule(from, spoil(how, ack, config.late_ms));
    }

    void send_due() {
        const auto now = Clock::now();
        for (auto it = scheduled.begin(); it != scheduled.end();) {
            if (it->due > now) {
                ++it;
                continue;
            }
            control.send_to(it->to, it->bytes);
            it = scheduled.erase(it);
        }
    }

    int wait_ms() const {
        int wait = kPollMs;
        const auto now = Clock::now();
        for (const Scheduled& s : scheduled) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(s.due - now);
            wait = std::clamp(static_cast<int>(left.count()), 0, wait);
        }
        return wait;
    }
};

HostileDevice::HostileDevice(HostileConfig config) : inside_(std::make_unique<Inside>()) {
    const auto ip = parse_ipv4(config.address);
    if (!ip)
        throw std::runtime_error("not an IPv4 address: " + config.address);
    inside_->config = std::move(config);
    inside_->control = UdpSocket(Endpoint{*ip, gev::kGvcpPort}, false);
    if (inside_->config.answer_broadcasts)
        inside_->broadcast = UdpSocket(Endpoint{0xFFFFFFFF, gev::kGvcpPort}, true);
    inside_->image = gev::encode_device_info(inside_->info());
    server_ = std::thread([this] { serve(); });
}

HostileDevice::~HostileDevice() {
    quit_ = true;
    server_.join();
}

void HostileDevice::serve() {
    Bytes buffer(2048);
    Inside& in = *inside_;
    while (!quit_) {
        in.send_due();
        pollfd fds[2] = {{in.control.fd(), POLLIN, 0}, {in.broadcast.fd(), POLLIN, 0}};
        const int count = in.broadcast.is_open() ? 2 : 1;
        if (::poll(fds, count, in.wait_ms()) <= 0)
            continue;
        for (int i = 0; i < count; ++i) {
            if ((fds[i].revents & POLLIN) == 0)
                continue;
            Endpoint from;
            const std::size_t n = (i == 0 ? in.control : in.broadcast).receive(buffer, from, 0);
            const gev::ConstBytes datagram(buffer.data(), n);
            const auto header = gev::decode_command_header(datagram);
            const auto payload = header ? gev::command_payload(datagram, *header) : std::nullopt;
            if (!payload)
                continue;
            ++commands_;
            in.answer(from, *header, *payload);
        }
    }
}

}  // namespace ry::emulator::hostile
