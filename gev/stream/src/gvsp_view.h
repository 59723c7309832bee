// Reads the GVSP fields the receiving loop needs straight from a received datagram. The loop
// decodes every packet of a multi-gigabyte stream, so this decoder is inline and copy-free: it
// checks the length once and hands back pointers into the receive slot instead of building
// the optional-wrapped records of the protocol library's decoders, whose layout constants and
// byte-order helpers it shares.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ry/gev/protocol/byte_order.h"
#include "ry/gev/protocol/gvsp.h"

namespace ry::gev::stream::detail {

using ry::gev::load_be16;
using ry::gev::load_be32;
using ry::gev::load_be64;

// The formats the engine places; the others (all-in, H.264, multi-zone, multi-part, GenDC)
// are counted as ignored.
enum class PacketFormat : uint8_t {
    Leader = static_cast<uint8_t>(ry::gev::GvspFormat::Leader),
    Trailer = static_cast<uint8_t>(ry::gev::GvspFormat::Trailer),
    GenericPayload = static_cast<uint8_t>(ry::gev::GvspFormat::Payload),
};

constexpr size_t kStandardHeaderBytes = ry::gev::kGvspHeaderSize;
constexpr size_t kExtendedHeaderBytes = ry::gev::kGvspExtendedHeaderSize;
constexpr uint8_t kExtendedIdBit = 0x80;
constexpr uint8_t kFormatMask = 0x0F;
constexpr uint16_t kErrorStatusBit = 0x8000;
constexpr uint16_t kStatusPacketUnavailable = 0x800C;
constexpr uint16_t kStatusPacketAndPreviousRemoved = 0x8011;
constexpr uint16_t kStatusPacketRemoved = 0x8012;

struct GvspPacket {
    uint16_t status = 0;
    uint8_t format = 0;
    bool extendedId = false;
    uint64_t blockId = 0;
    uint32_t packetId = 0;
    const uint8_t* data = nullptr;
    size_t dataSize = 0;
};

// False when the datagram is too short for the header it announces.
inline bool DecodeGvspHeader(const uint8_t* bytes, size_t size, GvspPacket& out) {
    if (size < kStandardHeaderBytes) {
        return false;
    }
    out.status = load_be16(bytes);
    out.extendedId = (bytes[4] & kExtendedIdBit) != 0;
    out.format = bytes[4] & kFormatMask;
    if (!out.extendedId) {
        out.blockId = load_be16(bytes + 2);
        out.packetId = load_be32(bytes + 4) & 0x00FFFFFFu;
        out.data = bytes + kStandardHeaderBytes;
        out.dataSize = size - kStandardHeaderBytes;
        return true;
    }
    if (size < kExtendedHeaderBytes) {
        return false;
    }
    out.blockId = load_be64(bytes + 8);
    out.packetId = load_be32(bytes + 16);
    out.data = bytes + kExtendedHeaderBytes;
    out.dataSize = size - kExtendedHeaderBytes;
    return true;
}

}  // namespace ry::gev::stream::detail
