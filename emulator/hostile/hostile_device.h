// A device that answers like an attacker or a broken camera: the hostile counterpart of the
// emulator for tests of everything that reads from the network. It answers discovery and
// register and memory reads in a chosen bad way, reports a chosen description URL, and can
// spray forged stream packets at a host's stream port. It builds its datagrams with the
// same protocol code as the emulator and the client, then breaks them on purpose.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ry::emulator::hostile {

// How the device answers one kind of request.
enum class Answer {
    Honest,          // what a camera would send
    Truncated,       // cut inside the header, and a payload shorter than its length says
    Oversized,       // a length past the datagram, and a datagram past the protocol's limit
    Mislabelled,     // another acknowledge code, another request's id, a bad address echo
    Duplicated,      // the honest answer several times, after a stale one of another id
    Late,            // the honest answer, late_ms after the request
    PendingForever,  // PENDING_ACK after PENDING_ACK, never the answer
    Silent,          // nothing at all
};

// Every way of answering that leaves nothing usable: a reader must drop these.
inline constexpr Answer kUnusableAnswers[] = {Answer::Truncated,      Answer::Oversized,
                                              Answer::Mislabelled,    Answer::Late,
                                              Answer::PendingForever, Answer::Silent};

struct HostileConfig {
    std::string address = "127.0.0.2";
    bool answer_broadcasts = true;  // also listen on 255.255.255.255:3956 for discovery
    Answer discovery = Answer::Honest;
    Answer reads = Answer::Honest;  // READREG and READMEM; writes are always answered
    // Discovery texts fill their whole field, without a terminator, with control bytes
    // (terminal escapes, carriage returns, bytes that are not UTF-8).
    bool hostile_texts = false;
    // The first description URL, as stored at 0x0200 (a text of 512 bytes has no zero).
    std::string url = "Local:hostile.xml;10000;40";
    std::uint32_t late_ms = 1500;
};

// The text of hostile_texts mode for a field of `width` bytes: exactly `width` bytes, none
// of them zero.
std::string hostile_text(std::size_t width);

class HostileDevice {
  public:
    // Binds <address>:3956 (and the broadcast socket) and starts serving. Throws
    // std::runtime_error when a socket cannot be set up.
    explicit HostileDevice(HostileConfig config);
    ~HostileDevice();
    HostileDevice(const HostileDevice&) = delete;
    HostileDevice& operator=(const HostileDevice&) = delete;

    std::uint64_t commands_received() const { return commands_.load(); }

  private:
    struct Inside;
    void serve();

    std::unique_ptr<Inside> inside_;
    std::atomic<bool> quit_{false};
    std::atomic<std::uint64_t> commands_{0};
    std::thread server_;
};

// Forged GVSP aimed at a host's stream port, from the given source addresses (each on a
// port of its own): leaders, payload and trailers of block ids a real stream is likely to
// use, in both id formats, with sizes and packet ids that do not fit, cut and overlong
// packets and unknown formats. Runs on its own thread until destroyed.
class ForgedStream {
  public:
    ForgedStream(const std::vector<std::string>& source_addresses, std::uint32_t target_ip,
                 std::uint16_t target_port);
    ~ForgedStream();
    ForgedStream(const ForgedStream&) = delete;
    ForgedStream& operator=(const ForgedStream&) = delete;

    std::uint64_t packets_sent() const { return sent_.load(); }

  private:
    struct Sources;
    void run(std::uint32_t target_ip, std::uint16_t target_port);

    std::unique_ptr<Sources> sources_;
    std::atomic<bool> quit_{false};
    std::atomic<std::uint64_t> sent_{0};
    std::thread sender_;
};

// One forged packet: the n-th of the sequence ForgedStream sends.
std::vector<std::uint8_t> forge_stream_packet(std::uint64_t n);

}  // namespace ry::emulator::hostile
