#include "frame_timing.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <linux/filter.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace ry::bench {

int64_t RealtimeNs() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void DeliveryLog::Clear() {
    shared_->count = 0;
}

void DeliveryLog::Add(uint64_t blockId) {
    const int64_t now = RealtimeNs();
    const uint64_t at = shared_->count.load(std::memory_order_relaxed);
    if (at < kMaxFrames) {
        shared_->entries[at] = {blockId, now};
        shared_->count.store(at + 1, std::memory_order_release);
    }
}

size_t DeliveryLog::Count() const {
    return shared_->count.load(std::memory_order_acquire);
}

const DeliveryLog::Entry& DeliveryLog::At(size_t i) const {
    return shared_->entries[i];
}

namespace {

constexpr size_t kBlockIds = 65536;

// Datagram packet socket: offset 0 is the IP header. Incoming UDP trailers from the camera.
bool AttachTrailerFilter(int fd, uint32_t cameraIp) {
    sock_filter program[] = {
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<uint32_t>(SKF_AD_OFF + SKF_AD_PKTTYPE)},
        {BPF_JMP | BPF_JEQ | BPF_K, 9, 0, PACKET_OUTGOING},
        {BPF_LD | BPF_B | BPF_ABS, 0, 0, 9},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 7, IPPROTO_UDP},
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, 12},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 5, cameraIp},
        {BPF_LDX | BPF_B | BPF_MSH, 0, 0, 0},
        {BPF_LD | BPF_B | BPF_IND, 0, 0, 8 + 4},  // GVSP format byte
        {BPF_ALU | BPF_AND | BPF_K, 0, 0, 0x0F},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 2},  // trailer
        {BPF_RET | BPF_K, 0, 0, 128},
        {BPF_RET | BPF_K, 0, 0, 0},
    };
    sock_fprog fprog{static_cast<unsigned short>(std::size(program)), program};
    return ::setsockopt(fd, SOL_SOCKET, SO_ATTACH_FILTER, &fprog, sizeof fprog) == 0;
}

uint64_t BlockIdOf(const uint8_t* ip, size_t size) {
    const size_t ipHeader = size_t{ip[0] & 0x0Fu} * 4;
    const uint8_t* gvsp = ip + ipHeader + 8;
    if (size < ipHeader + 8 + 20) {
        return size >= ipHeader + 8 + 8 ? (gvsp[2] << 8 | gvsp[3]) : 0;
    }
    if ((gvsp[4] & 0x80) == 0) {
        return gvsp[2] << 8 | gvsp[3];
    }
    uint64_t id = 0;
    for (int i = 8; i < 16; ++i) {
        id = id << 8 | gvsp[i];
    }
    return id;
}

}  // namespace

TrailerClock::TrailerClock(uint32_t cameraIp)
    : stopFd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      arrivals_(new std::atomic<int64_t>[kBlockIds]) {
    Clear();
    const int fd = ::socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int one = 1;
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_IP);
    address.sll_ifindex = static_cast<int>(::if_nametoindex("lo"));
    if (fd < 0 || !AttachTrailerFilter(fd, cameraIp) ||
        ::setsockopt(fd, SOL_SOCKET, SO_TIMESTAMPNS, &one, sizeof one) != 0 ||
        ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        if (fd >= 0) {
            ::close(fd);
        }
        return;
    }
    ::setsockopt(fd, SOL_PACKET, PACKET_IGNORE_OUTGOING, &one, sizeof one);
    fd_ = fd;
    thread_ = std::thread([this] { Run(); });
}

TrailerClock::~TrailerClock() {
    if (thread_.joinable()) {
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(stopFd_, &one, sizeof one);
        thread_.join();
    }
    if (fd_ >= 0) {
        ::close(fd_);
    }
    ::close(stopFd_);
}

void TrailerClock::Clear() {
    for (size_t i = 0; i < kBlockIds; ++i) {
        arrivals_[i].store(0, std::memory_order_relaxed);
    }
}

int64_t TrailerClock::ArrivalNs(uint64_t blockId) const {
    return arrivals_[blockId % kBlockIds].load(std::memory_order_acquire);
}

void TrailerClock::Run() {
    uint8_t packet[128];
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(timespec))];
    while (true) {
        pollfd fds[2] = {{fd_, POLLIN, 0}, {stopFd_, POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0 || (fds[1].revents & POLLIN) != 0) {
            return;
        }
        iovec vector{packet, sizeof packet};
        msghdr message{};
        message.msg_iov = &vector;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t got = ::recvmsg(fd_, &message, MSG_DONTWAIT);
        if (got <= 0) {
            continue;
        }
        for (cmsghdr* c = CMSG_FIRSTHDR(&message); c != nullptr; c = CMSG_NXTHDR(&message, c)) {
            if (c->cmsg_level == SOL_SOCKET && c->cmsg_type == SCM_TIMESTAMPNS) {
                timespec at{};
                std::memcpy(&at, CMSG_DATA(c), sizeof at);
                const uint64_t id = BlockIdOf(packet, static_cast<size_t>(got));
                arrivals_[id % kBlockIds].store(int64_t{at.tv_sec} * 1'000'000'000 + at.tv_nsec,
                                                std::memory_order_release);
            }
        }
    }
}

Latency MatchLatency(const DeliveryLog& log, const TrailerClock& clock) {
    std::vector<double> micros;
    for (size_t i = 0; i < log.Count(); ++i) {
        const auto& entry = log.At(i);
        const int64_t arrival = clock.ArrivalNs(entry.blockId);
        const int64_t waited = entry.deliveredNs - arrival;
        if (arrival != 0 && waited >= 0 && waited < 1'000'000'000) {
            micros.push_back(static_cast<double>(waited) / 1000.0);
        }
    }
    Latency latency;
    latency.frames = micros.size();
    if (micros.empty()) {
        return latency;
    }
    std::sort(micros.begin(), micros.end());
    latency.medianUs = micros[micros.size() / 2];
    latency.p99Us = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
    return latency;
}

CpuSample SampleCpu(pid_t emulator) {
    CpuSample sample;
    sample.process = ry::gev::tools::ProcessCpuSeconds();
    sample.emulator = ProcessCpuSecondsOf(emulator);
    sample.softirq = ReadMachineCpu().softirq;
    return sample;
}

double MachineSeconds(const CpuSample& start, const CpuSample& end) {
    return (end.process - start.process) + (end.emulator - start.emulator) +
           (end.softirq - start.softirq);
}

pid_t FindChild(const char* program) {
    const std::string name = std::string(program).substr(std::string(program).rfind('/') + 1);
    DIR* proc = ::opendir("/proc");
    pid_t found = -1;
    for (dirent* entry = proc ? ::readdir(proc) : nullptr; entry && found < 0;
         entry = ::readdir(proc)) {
        const pid_t pid = static_cast<pid_t>(std::atoi(entry->d_name));
        if (pid <= 0) {
            continue;
        }
        const auto fields = ProcessStatFields(pid);
        if (fields.size() > 2 && std::stoi(fields[2]) == ::getpid() &&
            name.compare(0, fields[0].size(), fields[0]) == 0) {
            found = pid;
        }
    }
    if (proc) {
        ::closedir(proc);
    }
    return found;
}

MeasuredRun::MeasuredRun(double seconds, pid_t emulator, int packetSocketsBefore, DeliveryLog& log)
    : emulator_(emulator), log_(log), cpuStart_(SampleCpu(emulator)) {
    report_.packetSocketOpen = OwnedPacketSockets() > packetSocketsBefore;
    start_ = std::chrono::steady_clock::now();
    end_ = start_ + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                        std::chrono::duration<double>(seconds));
}

void MeasuredRun::Delivered(uint64_t blockId, bool complete, uint64_t bytes) {
    log_.Add(blockId);
    tally_.Add(blockId, complete, bytes);
}

ReceiverReport MeasuredRun::Finish() const {
    const CpuSample cpuEnd = SampleCpu(emulator_);
    ReceiverReport report = report_;
    report.figures = tally_.Figures();
    report.figures.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    report.figures.cpuSeconds = cpuEnd.process - cpuStart_.process;
    report.machineCpuSeconds = MachineSeconds(cpuStart_, cpuEnd);
    return report;
}

}  // namespace ry::bench
