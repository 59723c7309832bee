// The camera's UART command set: three-letter mnemonics, 'g' to get and 's' to set, with
// decimal arguments.
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "RyGenTLErrors.h"
#include "core/platform/text.h"
#include "rysdk/RySerial.h"

namespace RYSDK {

namespace {

std::string Format(const char* mnemonic, int value) {
    return std::string(mnemonic) + " " + std::to_string(value);
}

std::string Format(const char* mnemonic, int first, int second) {
    return Format(mnemonic, first) + " " + std::to_string(second);
}

// The camera's model number needs a moment before its answer is complete.
constexpr auto kModelNumberPause = std::chrono::milliseconds(100);

}  // namespace

int RySerial::Exchange(const std::string& command, char* answer, bool pauseBeforeReading) {
    std::lock_guard lock(mutex_);
    char discarded[kAnswerCapacity];
    char* reply = answer != nullptr ? answer : discarded;
    int32_t status = WriteDataInner(command.c_str());
    if (status == GC_ERR_SUCCESS) {
        if (pauseBeforeReading)
            std::this_thread::sleep_for(kModelNumberPause);
        status = ReadDataInner(reply, static_cast<int>(kAnswerCapacity));
    }
    m_Status = status;
    return status == GC_ERR_SUCCESS ? 1 : 0;
}

int RySerial::Set(const std::string& command) {
    return Exchange(command, nullptr);
}

int RySerial::GetInteger(const char* command, int* value) {
    char answer[kAnswerCapacity] = {};
    const int done = Exchange(command, answer);
    if (done == 1 && value != nullptr)
        *value = std::atoi(answer);
    return done;
}

// Two values separated by single spaces; a missing one leaves its output as it was.
int RySerial::GetPair(const std::string& command, int* first, int* second) {
    char answer[kAnswerCapacity] = {};
    const int done = Exchange(command, answer);
    if (done != 1)
        return done;
    char* space = std::strchr(answer, ' ');
    if (first != nullptr && answer[0] != '\0' && answer[0] != ' ')
        *first = std::atoi(answer);
    if (second != nullptr && space != nullptr && space[1] != '\0')
        *second = std::atoi(space + 1);
    return done;
}

const wchar_t* RySerial::GetText(const char* command, wchar_t (&text)[kTextCapacity],
                                 bool pauseBeforeReading) {
    char answer[kAnswerCapacity] = {};
    if (Exchange(command, answer, pauseBeforeReading) != 1)
        return nullptr;
    core::WidenInto(answer, text, kTextCapacity);
    return text;
}

#define RY_SERIAL_INTEGER(Name, get, set) \
    int RySerial::Get##Name(int* value) { \
        return GetInteger(get, value);    \
    }                                     \
    int RySerial::Set##Name(int value) {  \
        return Set(Format(set, value));   \
    }

RY_SERIAL_INTEGER(ReadoutMode, "grm", "srm")
RY_SERIAL_INTEGER(BinningFactor, "gbf", "sbf")
RY_SERIAL_INTEGER(ExposureControl, "gec", "sec")
RY_SERIAL_INTEGER(ExposureTime, "get", "set")
RY_SERIAL_INTEGER(ChannelMode, "gcm", "scm")
RY_SERIAL_INTEGER(TriggerMode, "gtm", "stm")
RY_SERIAL_INTEGER(TriggerSource, "gts", "sts")
RY_SERIAL_INTEGER(FrameNumber, "gfn", "sfn")
RY_SERIAL_INTEGER(ExposureSource, "ges", "ses")
RY_SERIAL_INTEGER(TriggerPolarity, "gtp", "stp")
RY_SERIAL_INTEGER(AsyncReset, "gar", "sar")
RY_SERIAL_INTEGER(DataBits, "gdb", "sdb")
RY_SERIAL_INTEGER(TestImage, "gti", "sti")
RY_SERIAL_INTEGER(DefectCorrection, "gdc", "sdc")
RY_SERIAL_INTEGER(LUTSelect, "gls", "sls")
RY_SERIAL_INTEGER(FlatFieldIteration, "gfi", "sfi")
RY_SERIAL_INTEGER(FlatFieldOffset, "gfo", "sfo")
RY_SERIAL_INTEGER(HorizontalFlip, "ghf", "shf")
RY_SERIAL_INTEGER(ImageInvert, "gii", "sii")
RY_SERIAL_INTEGER(StrobeOffset, "gso", "sso")
RY_SERIAL_INTEGER(StrobePolarity, "gsp", "ssp")
RY_SERIAL_INTEGER(ConfigInitialization, "gci", "sci")

#undef RY_SERIAL_INTEGER

// The getter keeps the spelling applications were built against.
int RySerial::GetFlatFieldCorrecton(int* correction) {
    return GetInteger("gfc", correction);
}

int RySerial::SetFlatFieldCorrection(int correction) {
    return Set(Format("sfc", correction));
}

int RySerial::SetTriggerExposure(int exposure) {
    return Set(Format("ste", exposure));
}

int RySerial::GetHorizontalArea(int* start, int* end) {
    return GetPair("gha", start, end);
}

int RySerial::SetHorizontalArea(int start, int end) {
    return Set(Format("sha", start, end));
}

int RySerial::GetVerticalArea(int* start, int* end) {
    return GetPair("gva", start, end);
}

int RySerial::SetVerticalArea(int start, int end) {
    return Set(Format("sha", start, end));
}

int RySerial::GetAnalogGain(int channel, int* first, int* second) {
    if (channel == 0)
        return GetPair(Format("gag", channel), first, second);
    return GetInteger(Format("gag", channel).c_str(), channel == 1 ? first : second);
}

int RySerial::SetAnalogGain(int channel, int gain) {
    return Set(Format("sag", channel, gain));
}

int RySerial::GetAnalogOffset(int channel, int* first, int* second) {
    if (channel == 0)
        return GetPair(Format("gao", channel), first, second);
    return GetInteger(Format("gao", channel).c_str(), channel == 1 ? first : second);
}

int RySerial::SetAnalogOffset(int channel, int offset) {
    return Set(Format("sao", channel, offset));
}

int RySerial::GenerateFlatFieldData() {
    return Set("gfd");
}

int RySerial::SaveFlatFieldData() {
    return Set("sfd");
}

int RySerial::LoadFlatFieldData() {
    return Set("lfd");
}

int RySerial::LoadConfigFrom(int slot) {
    return Set(Format("lcf", slot));
}

int RySerial::SaveConfigTo(int slot) {
    return Set(Format("sct", slot));
}

const wchar_t* RySerial::GetCameraTemperature() {
    return GetText("gct", temperature_);
}

const wchar_t* RySerial::GetCamModelNumber() {
    return GetText("gmn", modelNumber_, true);
}

const wchar_t* RySerial::GetMCUVersion() {
    return GetText("gmv", mcuVersion_);
}

const wchar_t* RySerial::GetFPGAVersion() {
    return GetText("gfv", fpgaVersion_);
}

}  // namespace RYSDK
