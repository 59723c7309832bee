// The serial channel's register protocol: a transmit block out, the waiting bytes polled
// back until the camera's prompt closes the answer.
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "rysdk/RySerial.h"
#include "transport/transport_table.h"

namespace RYSDK {

namespace {

constexpr uint64_t kReceiveCount = 0x80000;
constexpr uint64_t kReceiveData = 0x80004;
constexpr uint64_t kTransmitBlock = 0x80104;
constexpr uint64_t kTriggerWord = 0x20019EB0;
constexpr size_t kStagingCapacity = 512;
constexpr int kPollAttempts = 5;
constexpr auto kPollPause = std::chrono::milliseconds(50);
constexpr auto kAnswerLimit = std::chrono::milliseconds(2000);
constexpr char kPrompt = '>';

uint32_t LoadBigEndian(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

void StoreBigEndian(uint32_t value, uint8_t* bytes) {
    bytes[0] = static_cast<uint8_t>(value >> 24);
    bytes[1] = static_cast<uint8_t>(value >> 16);
    bytes[2] = static_cast<uint8_t>(value >> 8);
    bytes[3] = static_cast<uint8_t>(value);
}

// The answer is the line after the echoed command, up to its carriage return.
bool ExtractAnswer(std::string_view received, std::string_view& answer) {
    const size_t lineFeed = received.find('\n');
    if (lineFeed == std::string_view::npos || lineFeed + 1 >= received.size())
        return false;
    const std::string_view rest = received.substr(lineFeed + 1);
    answer = rest.substr(0, rest.find('\r'));
    return true;
}

}  // namespace

void RySerial::SetCamHandle(void* handle) {
    std::lock_guard lock(mutex_);
    m_hCamera = handle;
}

void* RySerial::GetCamHandle() const {
    std::lock_guard lock(mutex_);
    return m_hCamera;
}

int32_t RySerial::GetStatus() const {
    std::lock_guard lock(mutex_);
    return m_Status;
}

unsigned int RySerial::Align32(unsigned int value, unsigned int unit, bool up) {
    if (unit == 0)
        return 0;
    const unsigned int down = value - value % unit;
    return up && down != value ? down + unit : down;
}

int32_t RySerial::WriteData(const char* command) {
    std::lock_guard lock(mutex_);
    if (m_hCamera == nullptr || command == nullptr)
        return 1;
    return WriteDataInner(command);
}

int32_t RySerial::ReadData(char* reply, int size) {
    std::lock_guard lock(mutex_);
    return ReadDataInner(reply, size);
}

int32_t RySerial::WriteDataInner(const char* command) {
    if (m_hCamera == nullptr || command == nullptr)
        return GC_ERR_ERROR;
    // The line goes out with a carriage return in place of its terminating zero.
    std::string line(command);
    line.push_back('\r');
    size_t length = line.size();
    return clSerialWrite(line.data(), &length);
}

int32_t RySerial::clSerialWrite(const char* data, size_t* length) {
    if (m_hCamera == nullptr || data == nullptr || length == nullptr)
        return GC_ERR_ERROR;
    const auto payload = static_cast<uint32_t>(*length);
    std::vector<uint8_t> block(Align32(payload + 4, 4, true), 0);
    // The length word is in the host's order, unlike the big-endian receive count: that is
    // how the camera reads it.
    std::memcpy(block.data(), &payload, sizeof(payload));
    std::memcpy(block.data() + 4, data, payload);
    size_t size = block.size();
    return transport::Transport().GCWritePort(m_hCamera, kTransmitBlock, block.data(), &size);
}

int32_t RySerial::clSerialRead(char* data, size_t* length, size_t capacity) {
    if (m_hCamera == nullptr || data == nullptr || length == nullptr)
        return GC_ERR_ERROR;
    const transport::TransportTable& tl = transport::Transport();
    const size_t wanted = *length;
    size_t total = 0;
    GC_ERROR status = GC_ERR_SUCCESS;
    for (int attempt = 0; attempt < kPollAttempts; ++attempt) {
        uint8_t countBytes[4] = {};
        size_t size = sizeof(countBytes);
        status = tl.GCReadPort(m_hCamera, kReceiveCount, countBytes, &size);
        const uint32_t count = status == GC_ERR_SUCCESS ? LoadBigEndian(countBytes) : 0;
        if (count > 0) {
            size = Align32(count, 4, true);
            // More than the staging buffer holds is a device gone wrong, not an answer.
            if (total + size > capacity) {
                status = GC_ERR_ERROR;
                break;
            }
            status = tl.GCReadPort(m_hCamera, kReceiveData, data + total, &size);
            if (status == GC_ERR_SUCCESS)
                total += count;
        } else {
            std::this_thread::sleep_for(kPollPause);
        }
        if (total >= wanted)
            break;
    }
    *length = total;
    return status;
}

int32_t RySerial::ReadDataInner(char* reply, int size) {
    if (reply == nullptr || size <= 0)
        return GC_ERR_ERROR;
    std::memset(reply, 0, static_cast<size_t>(size));
    std::string received;
    char staging[kStagingCapacity];
    const auto began = std::chrono::steady_clock::now();
    size_t wanted = 0;
    while (std::chrono::steady_clock::now() - began < kAnswerLimit) {
        size_t length = wanted;
        const int32_t status = clSerialRead(staging, &length, sizeof(staging));
        if (status == GC_ERR_ERROR)
            return GC_ERR_ERROR;
        if (received.size() + length > kStagingCapacity)
            return GC_ERR_ERROR;
        received.append(staging, length);
        if (!received.empty() && received.back() == kPrompt) {
            std::string_view answer;
            if (!ExtractAnswer(received, answer) || answer.size() >= static_cast<size_t>(size))
                return GC_ERR_ERROR;
            std::memcpy(reply, answer.data(), answer.size());
            return GC_ERR_SUCCESS;
        }
        // While bytes keep coming the rest of the answer is asked for at once; a quiet poll
        // goes back to the time limit.
        wanted = length > 0 ? 1 : 0;
    }
    return GC_ERR_ERROR;
}

int RySerial::Send_GTrigger(int value) {
    std::lock_guard lock(mutex_);
    int32_t word = value / 100 * 256;
    if (word < 1)
        word = 1;
    word += 0x11;
    uint8_t bytes[4];
    StoreBigEndian(static_cast<uint32_t>(word), bytes);
    size_t size = sizeof(bytes);
    m_Status = m_hCamera == nullptr
                   ? GC_ERR_ERROR
                   : transport::Transport().GCWritePort(m_hCamera, kTriggerWord, bytes, &size);
    return m_Status == GC_ERR_SUCCESS ? 1 : 0;
}

}  // namespace RYSDK
