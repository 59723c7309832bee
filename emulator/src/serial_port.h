// The camera's UART command interpreter behind the serial registers.
//
// The host writes a transmit block (little-endian length word, then the command bytes) and
// polls a big-endian count of waiting bytes; each command line ends with CR. The camera
// echoes the line, then answers, then sends the prompt: "<line>\r\n<answer>\r\n>".
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>

#include "ry/gev/protocol/gvcp.h"

namespace ry::emulator {

inline constexpr std::uint32_t kSerialReceiveCount = 0x80000;
inline constexpr std::uint32_t kSerialReceiveData = 0x80004;
inline constexpr std::uint32_t kSerialReceiveWindow = 0x100;  // bytes readable per access
inline constexpr std::uint32_t kSerialTransmitBlock = 0x80104;
inline constexpr std::uint32_t kSerialTransmitWindow = 0x200;
inline constexpr std::uint32_t kSerialTriggerWord = 0x20019EB0;

struct SerialIdentity {
    std::string model_number;
    std::string serial_number;
    std::string mcu_version = "MCU 1.04";
    std::string fpga_version = "FPGA 2.11";
};

class SerialPort {
  public:
    explicit SerialPort(SerialIdentity identity);

    std::uint32_t waiting_bytes() const { return static_cast<std::uint32_t>(received_.size()); }
    // Fills `out` with waiting bytes (zero padding after them) and consumes what it gave.
    void read_received(std::span<std::uint8_t> out);
    // A transmit block; InvalidParameter when its length word does not fit the block.
    gev::GevStatus write_transmit_block(gev::ConstBytes block);

    // Runs one command line (without CR) and returns the answer line.
    std::string execute(const std::string& line);

    std::uint32_t trigger_word() const { return trigger_word_; }
    void set_trigger_word(std::uint32_t word) { trigger_word_ = word; }

  private:
    void take_byte(std::uint8_t byte);
    std::string get_value(const std::string& key) const;
    std::string analog_pair(const std::string& prefix, int channel) const;

    SerialIdentity identity_;
    std::string line_;
    std::deque<std::uint8_t> received_;
    std::map<std::string, int> values_;
    std::map<std::string, double> colour_gains_{{"r", 1.0}, {"b", 1.0}};
    std::uint32_t trigger_word_ = 0;
};

}  // namespace ry::emulator
