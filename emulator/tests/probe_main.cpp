// ry-emulator-probe ADDRESS [FRAMES]: a scripted host session against a running camera
// (control, stream set-up, frames checked byte by byte, one resend, orderly close). The
// interop script runs it under a packet capture so that a dissector can judge the traffic.
#include <cstdio>
#include <string>

#include "feature_registers.h"
#include "ry/gev/protocol/pixel_formats.h"
#include "test_client.h"

using namespace ry::emulator;
using namespace ry::emulator::testing;

namespace {

int fail(const char* what) {
    std::fprintf(stderr, "probe: %s\n", what);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !parse_ipv4(argv[1])) {
        std::fprintf(stderr, "usage: ry-emulator-probe ADDRESS [FRAMES]\n");
        return 2;
    }
    const int frames = argc > 2 ? std::stoi(argv[2]) : 3;
    TestClient client(argv[1], 3956);
    StreamReceiver receiver;
    std::printf("stream port %u\n", receiver.port());
    std::fflush(stdout);
    if (client.take_control() != 0)
        return fail("control refused");
    // SCP first: dissectors learn the stream port from the first pair of this write.
    if (client.write_regs(
            {{0x0D00, receiver.port()}, {0x0D18, *parse_ipv4("127.0.0.1")}, {0x0D04, 1500}}) != 0) {
        return fail("stream set-up refused");
    }
    const std::uint32_t width = client.read_reg(reg::kWidth);
    const std::uint32_t height = client.read_reg(reg::kHeight);
    const std::uint32_t format = client.read_reg(reg::kPixelFormat);
    if (client.write_regs({{reg::kAcquisitionMode, 2},
                           {reg::kAcquisitionFrameCount, static_cast<std::uint32_t>(frames)},
                           {reg::kAcquisitionStart, 1}}) != 0) {
        return fail("acquisition start refused");
    }
    std::uint64_t block = 0;
    const std::size_t size = ry::gev::image_size(format, width, height);
    for (int i = 0; i < frames; ++i) {
        const auto packets = receiver.next_block(3000);
        if (packets.empty() || packets.back().header.format != ry::gev::GvspFormat::Trailer) {
            return fail("incomplete block");
        }
        block = packets.front().header.block_id;
        if (assemble(packets, size, 1464) != expected_image(format, width, height, block)) {
            return fail("image bytes differ");
        }
    }
    client.send_raw(ry::gev::make_packetresend_command(client.next_id(), {0, block, 1, 1, false}));
    if (!receiver.next(1000))
        return fail("no resent packet");
    if (client.write_regs({{0x0D00, 0}, {0x0A00, 0}}) != 0)
        return fail("close refused");
    std::printf("ok %d frames of %ux%u\n", frames, width, height);
    return 0;
}
