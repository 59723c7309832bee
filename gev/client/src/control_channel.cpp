#include "ry/gev/client/control_channel.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>

#include "ry/gev/client/device_answers.h"
#include "ry/gev/protocol/gvcp.h"
#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::gev::client {
namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t AlignDown(uint64_t value) {
    return static_cast<uint32_t>(value & ~3ull);
}

// Runs `piece(done, count)` over [0, total) in pieces of at most `limit`, stopping at the
// first failure.
template <typename Piece>
GC_ERROR ForEachPiece(size_t total, size_t limit, Piece&& piece) {
    for (size_t done = 0; done < total;) {
        const size_t count = std::min(total - done, limit);
        if (const GC_ERROR rc = piece(done, count); rc != GC_ERR_SUCCESS)
            return rc;
        done += count;
    }
    return GC_ERR_SUCCESS;
}

}  // namespace

GC_ERROR StatusToError(uint16_t status) {
    switch (static_cast<GevStatus>(status)) {
        case GevStatus::Success:
        case GevStatus::PacketResend:
            return GC_ERR_SUCCESS;
        case GevStatus::NotImplemented:
            return GC_ERR_NOT_IMPLEMENTED;
        case GevStatus::InvalidParameter:
            return GC_ERR_INVALID_PARAMETER;
        case GevStatus::InvalidAddress:
        case GevStatus::BadAlignment:
            return GC_ERR_INVALID_ADDRESS;
        case GevStatus::WriteProtect:
        case GevStatus::AccessDenied:
            return GC_ERR_ACCESS_DENIED;
        case GevStatus::Busy:
            return GC_ERR_RESOURCE_IN_USE;
        default:
            return GC_ERR_IO;
    }
}

bool ControlChannel::Open(uint32_t localIp, uint32_t deviceIp, uint16_t devicePort,
                          std::string* errorText) {
    deviceIp_ = deviceIp;
    devicePort_ = devicePort;
    // Start somewhere other than 1 so a device that remembers the last request of a
    // previous session does not answer a new one from its cache.
    requestId_ = static_cast<uint16_t>(Clock::now().time_since_epoch().count() | 1);
    unlimitedAborted_.store(false);
    return socket_.Open(localIp, 0, errorText);
}

void ControlChannel::SetBudget(RequestBudget budget) {
    std::lock_guard lock(mutex_);
    budget.attempts = std::max<uint32_t>(budget.attempts, 1);
    budget_ = budget;
}

void ControlChannel::AbortWaits() {
    unlimitedAborted_.store(true);
}

RequestBudget ControlChannel::Budget() const {
    std::lock_guard lock(mutex_);
    return budget_;
}

uint16_t ControlChannel::NextRequestId() {
    requestId_ = next_req_id(requestId_);
    return requestId_;
}

// Caller holds mutex_. The same datagram (same request id) is sent again after each
// per-attempt wait; a PENDING_ACK moves the deadline instead of causing a resend, but a
// device that keeps asking for more time gets no more than the budget's pending allowance.
GC_ERROR ControlChannel::Exchange(GvcpCommand command, std::span<const uint8_t> request,
                                  uint16_t requestId, RequestBudget budget, Payload& answer) {
    Wait wait;
    wait.unlimited = budget.timeoutMs == 0;
    wait.perAttempt = std::chrono::milliseconds(
        wait.unlimited
            ? kUnlimitedResendMs
            : std::max<uint32_t>(budget.timeoutMs / std::max<uint32_t>(budget.attempts, 1), 1));
    wait.latest = wait.unlimited ? Clock::time_point::max()
                                 : Clock::now() + std::chrono::milliseconds(budget.timeoutMs) +
                                       std::chrono::milliseconds(budget.pendingLimitMs);
    wait.requestId = requestId;
    wait.expectedAck = ack_code_for(static_cast<uint16_t>(command));
    socket_.Drain();
    for (uint32_t attempt = 0; wait.unlimited || attempt < budget.attempts; ++attempt) {
        if (wait.unlimited && unlimitedAborted_.load())
            return GC_ERR_ABORT;
        if (Clock::now() >= wait.latest)
            break;
        if (!socket_.SendTo(deviceIp_, devicePort_, request))
            return GC_ERR_IO;
        if (const GC_ERROR rc = AwaitAck(wait, answer); rc != GC_ERR_TIMEOUT)
            return rc;
    }
    return GC_ERR_TIMEOUT;
}

// One attempt's wait: GC_ERR_TIMEOUT when it ends without an answer.
GC_ERROR ControlChannel::AwaitAck(const Wait& wait, Payload& answer) {
    // Only the bytes a datagram filled are read.
    std::array<uint8_t, kGvcpMaxDatagram + 64> buffer;
    auto deadline = std::min(Clock::now() + wait.perAttempt, wait.latest);
    while (Clock::now() < deadline) {
        if (wait.unlimited && unlimitedAborted_.load())
            return GC_ERR_ABORT;
        // At most one resend period per wait, so an abort is seen while a pending operation
        // runs.
        const auto left =
            std::min(std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()),
                     std::chrono::duration_cast<std::chrono::microseconds>(wait.perAttempt));
        const auto got = socket_.Receive(buffer, left);
        if (!got || got->sourceIp != deviceIp_)
            continue;
        const AckVerdict verdict =
            JudgeAck(ConstBytes(buffer.data(), got->size), wait.requestId, wait.expectedAck);
        switch (verdict.kind) {
            case AckVerdict::Kind::Ignore:
                continue;
            case AckVerdict::Kind::Pending:
                deadline = std::min(
                    Clock::now() + std::chrono::milliseconds(verdict.pendingMs) + wait.perAttempt,
                    wait.latest);
                continue;
            case AckVerdict::Kind::Error:
                return verdict.error;
            case AckVerdict::Kind::Answer:
                answer.assign(verdict.payload.begin(), verdict.payload.end());
                return GC_ERR_SUCCESS;
        }
    }
    return GC_ERR_TIMEOUT;
}

GC_ERROR ControlChannel::ReadRegisters(std::span<const uint32_t> addresses,
                                       std::span<uint32_t> values) {
    if (addresses.size() != values.size() || addresses.empty())
        return GC_ERR_INVALID_PARAMETER;
    for (uint32_t address : addresses)
        if (address % 4 != 0)
            return GC_ERR_INVALID_ADDRESS;
    std::lock_guard lock(mutex_);
    return ForEachPiece(
        addresses.size(), kMaxReadRegCount, [&](size_t done, size_t count) -> GC_ERROR {
            const std::vector<uint32_t> piece(addresses.begin() + done,
                                              addresses.begin() + done + count);
            const uint16_t id = NextRequestId();
            Payload answer;
            const GC_ERROR rc = Exchange(GvcpCommand::ReadReg, *make_readreg_command(id, piece), id,
                                         budget_, answer);
            if (rc != GC_ERR_SUCCESS)
                return rc;
            return TakeRegisterValues(answer, values.subspan(done, count));
        });
}

GC_ERROR ControlChannel::ReadRegister(uint32_t address, uint32_t& value) {
    return ReadRegister(address, value, Budget());
}

GC_ERROR ControlChannel::ReadRegister(uint32_t address, uint32_t& value, RequestBudget budget) {
    if (address % 4 != 0)
        return GC_ERR_INVALID_ADDRESS;
    std::lock_guard lock(mutex_);
    const uint16_t id = NextRequestId();
    Payload answer;
    const GC_ERROR rc =
        Exchange(GvcpCommand::ReadReg, *make_readreg_command(id, {address}), id, budget, answer);
    if (rc != GC_ERR_SUCCESS)
        return rc;
    return TakeRegisterValues(answer, std::span<uint32_t>(&value, 1));
}

GC_ERROR ControlChannel::WriteRegisters(std::span<const RegisterPair> writes) {
    if (writes.empty())
        return GC_ERR_INVALID_PARAMETER;
    for (const RegisterPair& pair : writes)
        if (pair.address % 4 != 0)
            return GC_ERR_INVALID_ADDRESS;
    std::lock_guard lock(mutex_);
    return ForEachPiece(writes.size(), kMaxWriteRegCount,
                        [&](size_t done, size_t count) -> GC_ERROR {
                            std::vector<RegisterWrite> piece;
                            for (size_t i = done; i < done + count; ++i)
                                piece.push_back({writes[i].address, writes[i].value});
                            const uint16_t id = NextRequestId();
                            Payload answer;
                            return Exchange(GvcpCommand::WriteReg,
                                            *make_writereg_command(id, piece), id, budget_, answer);
                        });
}

GC_ERROR ControlChannel::WriteRegister(uint32_t address, uint32_t value) {
    const RegisterPair pair{address, value};
    return WriteRegisters(std::span<const RegisterPair>(&pair, 1));
}

GC_ERROR ControlChannel::ReadAligned(uint32_t address, std::span<uint8_t> data) {
    if (data.size() == 4) {
        uint32_t value = 0;
        const GC_ERROR rc = ReadRegister(address, value);
        if (rc == GC_ERR_SUCCESS)
            store_be32(data.data(), value);
        return rc;
    }
    std::lock_guard lock(mutex_);
    return ForEachPiece(data.size(), kMemoryChunk, [&](size_t done, size_t count) -> GC_ERROR {
        const uint32_t at = address + static_cast<uint32_t>(done);
        const uint16_t id = NextRequestId();
        Payload answer;
        const GC_ERROR rc =
            Exchange(GvcpCommand::ReadMem,
                     make_readmem_command(id, ReadMemRequest{at, static_cast<uint16_t>(count)}), id,
                     budget_, answer);
        if (rc != GC_ERR_SUCCESS)
            return rc;
        return TakeMemoryData(answer, at, data.subspan(done, count));
    });
}

GC_ERROR ControlChannel::WriteAligned(uint32_t address, std::span<const uint8_t> data) {
    if (data.size() == 4)
        return WriteRegister(address, load_be32(data.data()));
    std::lock_guard lock(mutex_);
    return ForEachPiece(data.size(), kMemoryChunk, [&](size_t done, size_t count) -> GC_ERROR {
        const uint32_t at = address + static_cast<uint32_t>(done);
        const uint16_t id = NextRequestId();
        const auto request = make_writemem_command(id, at, data.subspan(done, count));
        if (!request)
            return GC_ERR_INVALID_PARAMETER;
        Payload answer;
        return Exchange(GvcpCommand::WriteMem, *request, id, budget_, answer);
    });
}

// The whole words that hold [address, address + size); nullopt for an empty range or one
// beyond the 32-bit address space.
std::optional<ControlChannel::WordRange> ControlChannel::CoverWords(uint64_t address, size_t size) {
    if (size == 0 || address + size > 0x100000000ull)
        return std::nullopt;
    const uint32_t start = AlignDown(address);
    const uint64_t end = (address + size + 3) & ~3ull;
    return WordRange{start, static_cast<size_t>(end - start), static_cast<size_t>(address - start),
                     start == address && end == address + size};
}

GC_ERROR ControlChannel::ReadMemory(uint64_t address, std::span<uint8_t> data) {
    const auto words = CoverWords(address, data.size());
    if (!words)
        return data.empty() ? GC_ERR_INVALID_PARAMETER : GC_ERR_INVALID_ADDRESS;
    if (words->exact)
        return ReadAligned(words->start, data);
    std::vector<uint8_t> whole(words->size);
    const GC_ERROR rc = ReadAligned(words->start, whole);
    if (rc == GC_ERR_SUCCESS)
        std::memcpy(data.data(), whole.data() + words->skip, data.size());
    return rc;
}

GC_ERROR ControlChannel::WriteMemory(uint64_t address, std::span<const uint8_t> data) {
    const auto words = CoverWords(address, data.size());
    if (!words)
        return data.empty() ? GC_ERR_INVALID_PARAMETER : GC_ERR_INVALID_ADDRESS;
    if (words->exact)
        return WriteAligned(words->start, data);
    // The device only takes whole words: keep the bytes around the caller's range as they are.
    std::vector<uint8_t> whole(words->size);
    const GC_ERROR rc = ReadAligned(words->start, whole);
    if (rc != GC_ERR_SUCCESS)
        return rc;
    std::memcpy(whole.data() + words->skip, data.data(), data.size());
    return WriteAligned(words->start, whole);
}

void ControlChannel::SendPacketResend(uint16_t channel, uint64_t blockId, uint32_t first,
                                      uint32_t last, bool extendedIds) {
    PacketResendRequest request;
    request.stream_channel = channel;
    request.block_id = blockId;
    request.first_packet_id = first;
    request.last_packet_id = last;
    request.extended_ids = extendedIds;
    uint16_t id = resendId_.fetch_add(1);
    if (id == 0)
        id = resendId_.fetch_add(1);
    const auto datagram = make_packetresend_command(id, request);
    // sendto on a UDP socket is thread-safe, so the receiving thread does not wait for an
    // application call that holds the exchange lock.
    socket_.SendTo(deviceIp_, devicePort_, datagram);
}

}  // namespace ry::gev::client
