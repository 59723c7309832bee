#include "bad_answers.h"

#include <algorithm>

#include "ry/gev/protocol/gvcp_payloads.h"

namespace ry::emulator::hostile {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kReadRegAck = static_cast<std::uint16_t>(gev::GvcpAck::ReadReg);
constexpr std::uint16_t kReadMemAck = static_cast<std::uint16_t>(gev::GvcpAck::ReadMem);
constexpr std::size_t kOverlongDatagram = 1400;
constexpr std::uint32_t kPendingEveryMs = 400;
constexpr std::uint32_t kPendingForMs = 30000;

std::uint16_t field(const Bytes& ack, std::size_t at) {
    return gev::load_be16(ack.data() + at);
}

Bytes with_field(Bytes ack, std::size_t at, std::uint16_t value) {
    gev::store_be16(ack.data() + at, value);
    return ack;
}

std::vector<Send> truncated(const Bytes& ack) {
    std::vector<Send> sends{{0, Bytes(ack.begin(), ack.begin() + 6)}};
    if (ack.size() > gev::kGvcpHeaderSize) {
        const std::size_t half = gev::kGvcpHeaderSize + (ack.size() - gev::kGvcpHeaderSize) / 2;
        sends.push_back({0, Bytes(ack.begin(), ack.begin() + half)});
    }
    return sends;
}

std::vector<Send> oversized(const Bytes& ack) {
    Bytes padded = ack;
    padded.resize(kOverlongDatagram, 0xA5);
    const auto claimed = static_cast<std::uint16_t>(kOverlongDatagram - gev::kGvcpHeaderSize);
    return {{0, with_field(ack, 4, 0xFFFF)}, {0, with_field(std::move(padded), 4, claimed)}};
}

// What looks right to a careless reader but is not: an empty register answer, a memory
// answer for another address, or an error status that still carries a payload.
Bytes wrong_content(const Bytes& ack) {
    const std::uint16_t code = field(ack, 2);
    if (code == kReadRegAck)
        return with_field(Bytes(ack.begin(), ack.begin() + gev::kGvcpHeaderSize), 4, 0);
    if (code == kReadMemAck && ack.size() >= gev::kGvcpHeaderSize + 4) {
        Bytes moved = ack;
        gev::store_be32(moved.data() + 8, gev::load_be32(ack.data() + 8) + 4);
        return moved;
    }
    return with_field(ack, 0, static_cast<std::uint16_t>(gev::GevStatus::NotImplemented));
}

std::vector<Send> mislabelled(const Bytes& ack) {
    return {{0, with_field(ack, 2, static_cast<std::uint16_t>(field(ack, 2) + 2))},
            {0, with_field(ack, 6, static_cast<std::uint16_t>(field(ack, 6) + 1))},
            {0, wrong_content(ack)}};
}

std::vector<Send> duplicated(const Bytes& ack) {
    Bytes stale = with_field(ack, 6, static_cast<std::uint16_t>(field(ack, 6) - 1));
    std::for_each(stale.begin() + gev::kGvcpHeaderSize, stale.end(), [](auto& b) { b ^= 0xFF; });
    return {{0, std::move(stale)}, {0, ack}, {0, ack}, {0, ack}};
}

std::vector<Send> pending_forever(const Bytes& ack) {
    std::vector<Send> sends;
    for (std::uint32_t at = 0; at < kPendingForMs; at += kPendingEveryMs)
        sends.push_back({at, gev::make_pending_ack(field(ack, 6), 0xFFFF)});
    return sends;
}

}  // namespace

std::vector<Send> spoil(Answer answer, const Bytes& ack, std::uint32_t late_ms) {
    switch (answer) {
        case Answer::Honest:
            return {{0, ack}};
        case Answer::Truncated:
            return truncated(ack);
        case Answer::Oversized:
            return oversized(ack);
        case Answer::Mislabelled:
            return mislabelled(ack);
        case Answer::Duplicated:
            return duplicated(ack);
        case Answer::Late:
            return {{late_ms, ack}};
        case Answer::PendingForever:
            return pending_forever(ack);
        case Answer::Silent:
            break;
    }
    return {};
}

}  // namespace ry::emulator::hostile
