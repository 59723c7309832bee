#include "leader_info.h"

#include "ry/gev/protocol/byte_order.h"

namespace ry::gev::stream::detail {

namespace {

constexpr size_t kTimestampedLeaderBytes = 12;  // reserved, type, 64-bit timestamp
constexpr size_t kSizedLeaderBytes = 20;        // ... then a 64-bit payload size

uint16_t TypeCode(ry::gev::GvspPayloadType type) {
    return static_cast<uint16_t>(type);
}

// Bits per pixel sit in bits 16..23 of a GigE Vision pixel format code.
uint64_t ImageBytes(const ry::gev::ImageLeader& image) {
    const uint64_t bitsPerPixel = (image.pixel_format >> 16) & 0xFF;
    const uint64_t lineBytes = (uint64_t{image.size_x} * bitsPerPixel + 7) / 8 + image.padding_x;
    return lineBytes * image.size_y + image.padding_y;
}

bool CarriesPayloadSize(uint16_t baseType) {
    using ry::gev::GvspPayloadType;
    return baseType == TypeCode(GvspPayloadType::RawData) ||
           baseType == TypeCode(GvspPayloadType::File) ||
           baseType == TypeCode(GvspPayloadType::Jpeg) ||
           baseType == TypeCode(GvspPayloadType::Jpeg2000);
}

}  // namespace

bool DecodeLeader(const uint8_t* data, size_t size, LeaderFields& out) {
    out = LeaderFields{};
    if (size < kTimestampedLeaderBytes) {
        return false;
    }
    const ry::gev::ConstBytes bytes(data, size);
    if (const auto image = ry::gev::decode_image_leader(bytes)) {
        out.image = *image;
        // Chunk-carrying images are longer than the image itself; leave their size open.
        const bool plainImage = image->payload_type == TypeCode(ry::gev::GvspPayloadType::Image);
        out.payloadBytes = plainImage ? ImageBytes(*image) : 0;
        return true;
    }
    out.image.payload_type = ry::gev::load_be16(data + 2);
    out.image.timestamp = ry::gev::load_be64(data + 4);
    const uint16_t baseType = out.image.payload_type & ry::gev::kPayloadTypeBaseMask;
    if (CarriesPayloadSize(baseType) && size >= kSizedLeaderBytes) {
        out.payloadBytes = ry::gev::load_be64(data + 12);
    }
    return true;
}

}  // namespace ry::gev::stream::detail
