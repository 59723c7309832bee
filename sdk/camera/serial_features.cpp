// What the camera offers through its serial channel: any command line, the colour gains,
// the sensor temperature and the serial number.
#include <cstdlib>
#include <cstring>
#include <string>

#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using core::kLogErr;

namespace {

constexpr size_t kAnswerCapacity = 64;
constexpr int kRedChannel = 0;
constexpr int kBlueChannel = 2;

bool IsMono(PIXEL_FORMAT format) {
    switch (format) {
        case PIXEL_FORMAT_MONO8:
        case PIXEL_FORMAT_MONO8SIGNED:
        case PIXEL_FORMAT_MONO10PACKED:
        case PIXEL_FORMAT_MONO12PACKED:
        case PIXEL_FORMAT_MONO10:
        case PIXEL_FORMAT_MONO12:
        case PIXEL_FORMAT_MONO16:
        case PIXEL_FORMAT_MONO14:
            return true;
        default:
            return false;
    }
}

// Green has no gain command: its line goes out empty, as the camera's firmware expects.
std::string GainCommand(const char* verb, int channel) {
    std::string command;
    if (channel == kRedChannel || channel == kBlueChannel) {
        command = verb;
        command += channel == kRedChannel ? " r" : " b";
    }
    return command;
}

// One exchange whose transport status is not reported: the answer is what arrived.
std::string Ask(RySerial& serial, const std::string& command) {
    char answer[kAnswerCapacity] = {};
    serial.WriteData(command.c_str());
    serial.ReadData(answer, sizeof(answer));
    return answer;
}

// Whether the camera can take a colour gain on this channel in its current format.
RESULT CheckColourChannel(RyCamera& camera, int channel) {
    if (channel > kBlueChannel || channel < 0)
        return RESULT_ERROR_INVALID_PARAMETER;
    PIXEL_FORMAT format{};
    if (camera.GetPixelFormat(&format) == RESULT_ERROR)
        return RESULT_ERROR;
    return IsMono(format) ? RESULT_ERROR_INVALID_PARAMETER : RESULT_SUCCESS;
}

RESULT ReadStatusOf(int32_t status, const core::LogSite& site, const wchar_t* invalidText,
                    const wchar_t* failureFormat) {
    if (status == GC_ERR_SUCCESS)
        return RESULT_SUCCESS;
    if (status == GC_ERR_INVALID_PARAMETER) {
        RY_LOG_EVENT(site, kLogErr, L"%ls", invalidText);
        return RESULT_ERROR_INVALID_PARAMETER;
    }
    RY_LOG_EVENT(site, kLogErr, failureFormat, status);
    return RESULT_ERROR;
}

}  // namespace

RySerial* RyCamera::GetSerial() {
    return &m_Shared->serial;
}

RESULT RyCamera::GetUARTCustomCommand(const char* cpCommand, char* cpArg, size_t* cbpArgSize) {
    RY_CAMERA_SITE(GetUARTCustomCommand);
    return RY_GUARDED(kSite, [&] {
        if (cpCommand == nullptr || cpCommand[0] == '\0' || cpArg == nullptr ||
            cbpArgSize == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr,
                         cpCommand == nullptr   ? L"cpCommand is invalide"
                         : cpCommand[0] == '\0' ? L"cpCommand is empty"
                                                : L"cpArg is invalid");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        RySerial& serial = m_Shared->serial;
        const std::wstring command = core::Widen(cpCommand);
        const int32_t written = serial.WriteData(cpCommand);
        if (written == GC_ERR_INVALID_PARAMETER) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"m_Serial.WriteData(%ls) returned GC_ERR_INVALID_PARAMETER",
                         command.c_str());
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        if (written != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"m_Serial.WriteData(%ls) returned %d", command.c_str(),
                         written);
            return RESULT_ERROR;
        }
        char answer[kAnswerCapacity] = {};
        const int32_t read = serial.ReadData(answer, sizeof(answer));
        const size_t length = std::strlen(answer);
        if (*cbpArgSize < length) {
            RY_LOG_EVENT(kSite, kLogErr, L"*cbpArgSize(%d) >= (int)strlen(pchRecv)(%d)",
                         static_cast<int>(*cbpArgSize), static_cast<int>(length));
            return RESULT_ERROR_INSUFFICIENT_RESOURCES;
        }
        // The answer's zero goes along when there is room for it.
        std::memcpy(cpArg, answer, length < *cbpArgSize ? length + 1 : length);
        *cbpArgSize = length;
        RY_LOG_EVENT(kSite, core::kLogInfo, L"cpArg(%ls) *cbpArgSize(%d)",
                     core::Widen(answer).c_str(), static_cast<int>(length));
        return ReadStatusOf(read, kSite,
                            L"m_Serial.ReadData returned RESULT_ERROR_INVALID_PARAMETER",
                            L"m_Serial.ReadData returned not success Ret(%d)");
    });
}

RESULT RyCamera::SetUARTCustomCommand(const char* cpCommand) {
    RY_CAMERA_SITE(SetUARTCustomCommand);
    return RY_GUARDED(kSite, [&] {
        if (cpCommand == nullptr || cpCommand[0] == '\0') {
            RY_LOG_EVENT(kSite, kLogErr,
                         cpCommand == nullptr ? L"cpCommand is invalid" : L"cpCommand is empty");
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        RySerial& serial = m_Shared->serial;
        const RESULT written =
            ReadStatusOf(serial.WriteData(cpCommand), kSite,
                         L"m_Serial.WriteData returned RESULT_ERROR_INVALID_PARAMETER",
                         L"m_Serial.WriteData returned not success. Ret(%d)");
        if (written != RESULT_SUCCESS)
            return written;
        char answer[kAnswerCapacity] = {};
        return ReadStatusOf(serial.ReadData(answer, sizeof(answer)), kSite,
                            L"m_Serial.ReadData returned GC_ERR_INVALID_PARAMETER",
                            L"m_Serial.ReadData returned not success. Ret(%d)");
    });
}

RESULT RyCamera::GigEGetColorRGBGain(int channel, double* gain) {
    RY_CAMERA_SITE(GigEGetColorRGBGain);
    return RY_GUARDED(kSite, [&] {
        if (gain == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const RESULT usable = CheckColourChannel(*this, channel);
        if (usable != RESULT_SUCCESS)
            return usable;
        *gain = std::atof(Ask(m_Shared->serial, GainCommand("grg", channel)).c_str());
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GigESetColorRGBGain(int channel, double gain) {
    RY_CAMERA_SITE(GigESetColorRGBGain);
    return RY_GUARDED(kSite, [&] {
        const RESULT usable = CheckColourChannel(*this, channel);
        if (usable != RESULT_SUCCESS)
            return usable;
        std::string command = GainCommand("srg", channel);
        if (!command.empty()) {
            command += ' ';
            command += std::to_string(gain);
        }
        Ask(m_Shared->serial, command);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::GigEGetTemperature(double* temperature) {
    if (temperature == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *temperature = std::atof(Ask(m_Shared->serial, "gct").c_str());
    return RESULT_SUCCESS;
}

RESULT RyCamera::GigEGetSerialNumber(char* serial, size_t* size) {
    if (size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    return GigEGetSerialNumber(serial, *size);
}

RESULT RyCamera::GigEGetSerialNumber(char* serial, size_t& size) {
    const std::string answer = Ask(m_Shared->serial, "gsn piece");
    const bool fits = serial != nullptr && size > answer.size();
    size = answer.size();
    if (!fits)
        return RESULT_ERROR_INVALID_PARAMETER;
    std::memcpy(serial, answer.c_str(), answer.size() + 1);
    return RESULT_SUCCESS;
}

}  // namespace RYSDK
