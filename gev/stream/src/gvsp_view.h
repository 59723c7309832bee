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

// Payload types whose leader carries the image layout (image, extended chunk, multi-zone
// after its zone word) or an explicit payload size.
constexpr uint16_t kPayloadTypeMask = ry::gev::kPayloadTypeBaseMask;
constexpr uint16_t kPayloadImage = static_cast<uint16_t>(ry::gev::GvspPayloadType::Image);
constexpr uint16_t kPayloadRawData = static_cast<uint16_t>(ry::gev::GvspPayloadType::RawData);
constexpr uint16_t kPayloadFile = static_cast<uint16_t>(ry::gev::GvspPayloadType::File);
constexpr uint16_t kPayloadExtendedChunk =
    static_cast<uint16_t>(ry::gev::GvspPayloadType::ExtendedChunk);
constexpr uint16_t kPayloadJpeg = static_cast<uint16_t>(ry::gev::GvspPayloadType::Jpeg);
constexpr uint16_t kPayloadJpeg2000 = static_cast<uint16_t>(ry::gev::GvspPayloadType::Jpeg2000);
constexpr size_t kImageLeaderBytes = ry::gev::kImageLeaderSize;
constexpr size_t kSizedLeaderBytes = 20;
constexpr size_t kMinimumLeaderBytes = 12;

struct LeaderFields {
    uint32_t payloadType = 0;
    uint64_t timestamp = 0;
    uint32_t pixelFormat = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t offsetX = 0;
    uint32_t offsetY = 0;
    uint32_t paddingX = 0;
    uint32_t paddingY = 0;
    uint64_t payloadBytes = 0;  // expected block size; 0 when the leader does not say
};

// Bits per pixel sit in bits 16..23 of a GigE Vision pixel format code.
inline uint64_t ImageBytes(const LeaderFields& f) {
    const uint64_t bitsPerPixel = (f.pixelFormat >> 16) & 0xFF;
    const uint64_t lineBytes = (uint64_t{f.width} * bitsPerPixel + 7) / 8 + f.paddingX;
    return lineBytes * f.height + f.paddingY;
}

inline bool DecodeLeader(const uint8_t* data, size_t size, LeaderFields& out) {
    if (size < kMinimumLeaderBytes) {
        return false;
    }
    out = LeaderFields{};
    out.payloadType = load_be16(data + 2);
    const uint16_t baseType = out.payloadType & kPayloadTypeMask;
    out.timestamp = load_be64(data + 4);
    const bool imageLayout = baseType == kPayloadImage || baseType == kPayloadExtendedChunk;
    if (imageLayout && size >= kImageLeaderBytes) {
        out.pixelFormat = load_be32(data + 12);
        out.width = load_be32(data + 16);
        out.height = load_be32(data + 20);
        out.offsetX = load_be32(data + 24);
        out.offsetY = load_be32(data + 28);
        out.paddingX = load_be16(data + 32);
        out.paddingY = load_be16(data + 34);
        // Chunk-carrying images are longer than the image itself; leave the size open.
        const bool plainImage = out.payloadType == kPayloadImage;
        out.payloadBytes = plainImage ? ImageBytes(out) : 0;
        return true;
    }
    const bool sizedLeader = baseType == kPayloadRawData || baseType == kPayloadFile ||
                             baseType == kPayloadJpeg || baseType == kPayloadJpeg2000;
    if (sizedLeader && size >= kSizedLeaderBytes) {
        out.payloadBytes = load_be64(data + 12);
    }
    return true;
}

}  // namespace ry::gev::stream::detail
