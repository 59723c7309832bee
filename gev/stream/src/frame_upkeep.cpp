// The time-driven half of the assembler: resend rounds, time-outs and giving frames back.
#include <algorithm>

#include "frame_assembler.h"
#include "streaming_copy.h"

namespace ry::gev::stream::detail {

namespace {

std::chrono::milliseconds Millis(uint32_t value) {
    return std::chrono::milliseconds(value);
}

// Packets overtaken by the trailer may still be on their way; a block that showed a hole is
// acted on once it has been quiet this long.
constexpr auto kReorderGrace = std::chrono::milliseconds(2);

}  // namespace

// A newer block means the older ones have received everything the device sent first time
// round: whatever they still miss is lost and worth asking for (or, without resend, gone).
void FrameAssembler::MarkOlderFramesDue(TimePoint now) {
    for (FrameSlot& slot : slots_) {
        if (!slot.Active()) {
            continue;
        }
        slot.resendDue = true;
        if (!settings_.resendEnabled) {
            Close(slot);
        } else if (slot.resendRounds == 0) {
            StartResendRound(slot, now);
        }
    }
}

void FrameAssembler::Service(TimePoint now) {
    for (FrameSlot& slot : slots_) {
        if (slot.Active()) {
            ServiceSlot(slot, now);
        }
    }
}

void FrameAssembler::ServiceSlot(FrameSlot& slot, TimePoint now) {
    if (now >= After(slot.openedAt, settings_.imageTimeoutMs)) {
        Close(slot);
        return;
    }
    const bool mayAsk = settings_.resendEnabled && !slot.resendRefused;
    const bool settled = slot.resendDue && now - slot.lastPacketAt >= kReorderGrace;
    if (!mayAsk) {
        // Without resend a block showing a hole is finished; a silent one waits for its time-out.
        if (settled) {
            Close(slot);
        }
        return;
    }
    if (slot.resendRounds == 0) {
        const bool silent = now >= After(slot.lastPacketAt, settings_.resendTimeoutMs);
        if (settled || silent) {
            StartResendRound(slot, now);
        }
        return;
    }
    if (now >= slot.nextResendAt) {
        StartResendRound(slot, now);
    }
}

void FrameAssembler::StartResendRound(FrameSlot& slot, TimePoint now) {
    if (slot.resendRounds >= settings_.maxResendRequests) {
        Close(slot);
        return;
    }
    const uint32_t requested = RequestMissing(slot, 0, slot.ExpectedLastPayloadId() + 1);
    if (requested == 0) {
        // Nothing can be asked for (the block's extent is unknown): the block is as good as
        // it gets.
        Close(slot);
        return;
    }
    ++slot.resendRounds;
    slot.nextResendAt = After(now, settings_.resendTimeoutMs);
}

uint32_t FrameAssembler::RequestMissing(FrameSlot& slot, uint32_t first, uint32_t last) {
    if (!callbacks_.requestResend && !callbacks_.requestResendWithIdMode) {
        return 0;
    }
    uint32_t ranges = 0;
    uint32_t rest = 0;  // first id of what is left once the per-round limit is reached
    bool limited = false;
    slot.ForEachMissingRunIn(first, last, [&](uint32_t a, uint32_t b) {
        if (limited) {
            return;
        }
        if (ranges + 1 == kMaxRangesPerRound) {
            limited = true;
            rest = a;
            return;
        }
        AskDevice(slot, a, b);
        slot.MarkRequested(a, b);
        ++ranges;
    });
    if (limited) {
        AskDevice(slot, rest, last);
        slot.MarkRequested(rest, last);
        ++ranges;
    }
    pending_.resendRequests += ranges;
    return ranges;
}

void FrameAssembler::AskDevice(const FrameSlot& slot, uint32_t first, uint32_t last) {
    if (callbacks_.requestResendWithIdMode) {
        callbacks_.requestResendWithIdMode(slot.BlockId(), first, last, slot.ExtendedIds());
    } else {
        callbacks_.requestResend(slot.BlockId(), first, last);
    }
}

void FrameAssembler::Close(FrameSlot& slot) {
    const ReceivedFrame frame = slot.Describe(slot.FinalStatus());
    ++pending_.framesDelivered;
    pending_.framesIncomplete += frame.status == FrameStatus::Complete ? 0 : 1;
    pending_.packetsMissing += frame.missingPackets;
    pending_.packetsResent += frame.resentPackets;
    pending_.packetsRejected += slot.WithdrawnPackets() + slot.StrayPackets();
    if (frame.status == FrameStatus::Complete) {
        usualLastPayloadId_ = slot.DeclaredLastPayloadId();
    }
    if (slot.PacketSizeRefuted()) {
        // The device's packets do not have the size we placed by: learn it again.
        learnedPacketBytes_ = 0;
        packetSizeHintRefuted_ = true;
    }
    slot.Release();
    Publish();
    StreamingCopyFence();  // the frame's bytes are in memory before another thread reads them
    if (callbacks_.deliver) {
        callbacks_.deliver(frame);
    }
}

void FrameAssembler::CloseAll(bool discard,
                              const std::function<void(const LentBuffer&)>& returnBuffer) {
    for (FrameSlot& slot : slots_) {
        if (!slot.Active()) {
            continue;
        }
        if (!discard) {
            Close(slot);
            continue;
        }
        slot.Release();
        if (returnBuffer) {
            returnBuffer(slot.Buffer());
        }
    }
    Publish();
}

// When ServiceSlot will next have something to do for this frame; mirrors its decisions so
// the thread never wakes for nothing (or spins on a deadline it will not act upon).
TimePoint FrameAssembler::NextActionAt(const FrameSlot& slot) const {
    const TimePoint timeout = After(slot.openedAt, settings_.imageTimeoutMs);
    const bool mayAsk = settings_.resendEnabled && !slot.resendRefused;
    TimePoint action = TimePoint::max();
    if (slot.resendDue && (!mayAsk || slot.resendRounds == 0)) {
        action = slot.lastPacketAt + kReorderGrace;
    } else if (mayAsk) {
        action = slot.resendRounds == 0 ? After(slot.lastPacketAt, settings_.resendTimeoutMs)
                                        : slot.nextResendAt;
    }
    return std::min(timeout, action);
}

int FrameAssembler::MillisecondsToNextDeadline(TimePoint now, int idleMs) const {
    TimePoint next = now + Millis(static_cast<uint32_t>(idleMs));
    for (const FrameSlot& slot : slots_) {
        if (slot.Active()) {
            next = std::min(next, NextActionAt(slot));
        }
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - now).count();
    return static_cast<int>(std::clamp<int64_t>(wait, 0, idleMs));
}

}  // namespace ry::gev::stream::detail
