#include "serial_port.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

namespace ry::emulator {
namespace {

constexpr std::size_t kReceiveLimit = 4096;  // the UART FIFO; later bytes are lost
constexpr std::size_t kLineLimit = 256;

// Commands "gXX"/"sXX" sharing one stored integer, keyed by the two letters after g/s.
constexpr const char* kSingleValueKeys[] = {"rm", "bf", "ec", "et", "cm", "tm", "ts", "fn",
                                            "es", "tp", "ar", "db", "ti", "dc", "ls", "fi",
                                            "fc", "fo", "hf", "ii", "so", "sp", "ci"};

std::vector<std::string> split_words(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

bool parse_int(const std::string& text, int& value) {
    const char* end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, value);
    return ec == std::errc() && ptr == end;
}

bool is_single_value_key(const std::string& key) {
    for (const char* k : kSingleValueKeys) {
        if (key == k) {
            return true;
        }
    }
    return false;
}

}  // namespace

SerialPort::SerialPort(SerialIdentity identity) : identity_(std::move(identity)) {
    values_ = {{"rm", 0},    {"bf", 1},   {"ec", 0},    {"et", 10000}, {"cm", 1},    {"tm", 0},
               {"ts", 0},    {"fn", 1},   {"es", 0},    {"tp", 1},     {"ar", 0},    {"db", 8},
               {"ti", 0},    {"dc", 1},   {"ls", 0},    {"fi", 8},     {"fc", 0},    {"fo", 0},
               {"hf", 0},    {"ii", 0},   {"so", 0},    {"sp", 1},     {"ci", 0},    {"ha0", 0},
               {"ha1", 639}, {"va0", 0},  {"va1", 479}, {"ag0", 100},  {"ag1", 100}, {"ag2", 100},
               {"ao0", 10},  {"ao1", 10}, {"ao2", 10},  {"te", 0}};
}

void SerialPort::read_received(std::span<std::uint8_t> out) {
    for (auto& byte : out) {
        if (received_.empty()) {
            byte = 0;
            continue;
        }
        byte = received_.front();
        received_.pop_front();
    }
}

gev::GevStatus SerialPort::write_transmit_block(gev::ConstBytes block) {
    if (block.size() < 4) {
        return gev::GevStatus::InvalidParameter;
    }
    // The length word is little-endian, unlike everything else on this channel.
    const std::uint32_t length =
        block[0] | (block[1] << 8) | (block[2] << 16) | (std::uint32_t{block[3]} << 24);
    if (length > block.size() - 4) {
        return gev::GevStatus::InvalidParameter;
    }
    for (std::uint32_t i = 0; i < length; ++i) {
        take_byte(block[4 + i]);
    }
    return gev::GevStatus::Success;
}

void SerialPort::take_byte(std::uint8_t byte) {
    if (byte == '\n') {
        return;
    }
    if (byte != '\r') {
        if (line_.size() < kLineLimit) {
            line_.push_back(static_cast<char>(byte));
        }
        return;
    }
    const std::string reply = line_ + "\r\n" + execute(line_) + "\r\n>";
    line_.clear();
    for (char c : reply) {
        if (received_.size() < kReceiveLimit) {
            received_.push_back(static_cast<std::uint8_t>(c));
        }
    }
}

std::string SerialPort::get_value(const std::string& key) const {
    const auto it = values_.find(key);
    return it == values_.end() ? "0" : std::to_string(it->second);
}

std::string SerialPort::analog_pair(const std::string& prefix, int channel) const {
    if (channel == 0) {
        return get_value(prefix + "0") + " " + get_value(prefix + "1");
    }
    return get_value(prefix + (channel == 1 ? "1" : "2"));
}

std::string SerialPort::execute(const std::string& line) {
    const auto words = split_words(line);
    if (words.empty()) {
        return "";
    }
    const std::string& cmd = words[0];
    std::vector<int> args;
    for (std::size_t i = 1; i < words.size(); ++i) {
        int v = 0;
        if (!parse_int(words[i], v)) {
            args.clear();
            if (cmd == "grg" || cmd == "srg" || cmd == "gsn") {
                break;  // these take a letter or a piece number, handled below
            }
            return "ERR bad argument";
        }
        args.push_back(v);
    }
    if (cmd.size() != 3) {
        return "ERR unknown command";
    }
    const std::string key = cmd.substr(1);
    if (cmd[0] == 'g' && words.size() == 1 && is_single_value_key(key)) {
        return get_value(key);
    }
    if (cmd[0] == 's' && args.size() == 1 && is_single_value_key(key)) {
        values_[key] = args[0];
        return "OK";
    }
    if (cmd == "gha" || cmd == "gva") {
        return get_value(key + "0") + " " + get_value(key + "1");
    }
    if ((cmd == "sha" || cmd == "sva") && args.size() == 2) {
        values_[key + "0"] = args[0];
        values_[key + "1"] = args[1];
        return "OK";
    }
    if ((cmd == "gag" || cmd == "gao") && args.size() == 1) {
        return analog_pair(key, args[0]);
    }
    if ((cmd == "sag" || cmd == "sao") && args.size() == 2) {
        const int channel = args[0] < 0 ? 0 : (args[0] > 2 ? 2 : args[0]);
        values_[key + std::to_string(channel)] = args[1];
        return "OK";
    }
    if (cmd == "ste" && args.size() == 1) {
        values_["te"] = args[0];
        return "OK";
    }
    if ((cmd == "gfd" || cmd == "sfd" || cmd == "lfd") && words.size() == 1) {
        return "OK";
    }
    if ((cmd == "lcf" || cmd == "sct") && args.size() == 1) {
        return args[0] >= 0 && args[0] <= 3 ? "OK" : "ERR bad argument";
    }
    // Colour gains are decimal factors: hosts send them with six decimals.
    if (words.size() == 2 && cmd == "grg" && (words[1] == "r" || words[1] == "b")) {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", colour_gains_[words[1]]);
        return text;
    }
    if (words.size() == 3 && cmd == "srg" && (words[1] == "r" || words[1] == "b")) {
        char* end = nullptr;
        const double gain = std::strtod(words[2].c_str(), &end);
        if (end == words[2].c_str() || *end != '\0' || !(gain >= 0.0)) {
            return "ERR bad argument";
        }
        colour_gains_[words[1]] = gain;
        return "OK";
    }
    if (cmd == "gsn") {
        // The answer buffer of the host is small, so the serial number comes in pieces of 8.
        int piece = 0;
        if (words.size() == 2 && (!parse_int(words[1], piece) || piece < 0)) {
            return "ERR bad argument";
        }
        const std::size_t from = words.size() == 2 ? static_cast<std::size_t>(piece) * 8 : 0;
        if (from >= identity_.serial_number.size()) {
            return "";
        }
        return identity_.serial_number.substr(from, words.size() == 2 ? 8 : std::string::npos);
    }
    if (words.size() == 1) {
        if (cmd == "gct") {
            return "23.5";
        }
        if (cmd == "gmn") {
            return identity_.model_number;
        }
        if (cmd == "gmv") {
            return identity_.mcu_version;
        }
        if (cmd == "gfv") {
            return identity_.fpga_version;
        }
    }
    return "ERR unknown command";
}

}  // namespace ry::emulator
