// RySerial: the text command channel of cameras that carry a UART command interpreter,
// reached through three device registers. One command line goes out, the camera echoes
// it, answers and ends with its prompt '>'.
//
// Thread: any; one exchange at a time per object (an exchange holds the object's lock).
// Transport-level calls return a GC_ERROR status; the command methods return 1 on success
// and 0 on failure and keep the status (GetStatus).
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "rysdk/RyExport.h"

namespace RYSDK {

class RYSDK_API RySerial {
  public:
    RySerial() = default;
    RySerial(const RySerial&) = delete;
    RySerial& operator=(const RySerial&) = delete;

    // The camera's device port; null until a camera is opened.
    void SetCamHandle(void* handle);
    void* GetCamHandle() const;
    // The transport status of the last command (0 on success).
    int32_t GetStatus() const;

    // Sends one command line (CR is added). 0 on success, 1 for a null handle or command,
    // else the port's status.
    int32_t WriteData(const char* command);
    // Waits up to 2,000 ms for the prompt and copies the answer line, with its zero, into
    // `reply` of `size` bytes. 0, or GC_ERR_ERROR (-1001) for no prompt, no answer line or an
    // answer that does not fit.
    int32_t ReadData(char* reply, int size);

    // `value` rounded down (or up) to a multiple of `unit`; 0 for a unit of 0.
    static unsigned int Align32(unsigned int value, unsigned int unit, bool up);
    // Writes the trigger word: (value / 100) * 256 (at least 1) plus 0x11. 1 on success.
    int Send_GTrigger(int value);

    int GetReadoutMode(int* mode);
    int SetReadoutMode(int mode);
    int GetHorizontalArea(int* start, int* end);
    int SetHorizontalArea(int start, int end);
    int GetVerticalArea(int* start, int* end);
    // Sends the horizontal area command, as the camera's firmware expects of both setters.
    int SetVerticalArea(int start, int end);
    int GetBinningFactor(int* factor);
    int SetBinningFactor(int factor);
    int GetExposureControl(int* control);
    int SetExposureControl(int control);
    int GetExposureTime(int* time);
    int SetExposureTime(int time);
    int GetChannelMode(int* mode);
    int SetChannelMode(int mode);
    int GetTriggerMode(int* mode);
    int SetTriggerMode(int mode);
    int GetTriggerSource(int* source);
    int SetTriggerSource(int source);
    int GetFrameNumber(int* number);
    int SetFrameNumber(int number);
    int GetExposureSource(int* source);
    int SetExposureSource(int source);
    int SetTriggerExposure(int exposure);
    int GetTriggerPolarity(int* polarity);
    int SetTriggerPolarity(int polarity);
    int GetAsyncReset(int* reset);
    int SetAsyncReset(int reset);
    // Channel 0 answers two values; channel 1 fills `first`, any other channel `second`.
    int GetAnalogGain(int channel, int* first, int* second);
    int SetAnalogGain(int channel, int gain);
    int GetAnalogOffset(int channel, int* first, int* second);
    int SetAnalogOffset(int channel, int offset);
    int GetDataBits(int* bits);
    int SetDataBits(int bits);
    int GetTestImage(int* image);
    int SetTestImage(int image);
    int GetDefectCorrection(int* correction);
    int SetDefectCorrection(int correction);
    int GetLUTSelect(int* lut);
    int SetLUTSelect(int lut);
    int GenerateFlatFieldData();
    int SaveFlatFieldData();
    int LoadFlatFieldData();
    int GetFlatFieldIteration(int* iteration);
    int SetFlatFieldIteration(int iteration);
    int GetFlatFieldCorrecton(int* correction);
    int SetFlatFieldCorrection(int correction);
    int GetFlatFieldOffset(int* offset);
    int SetFlatFieldOffset(int offset);
    int GetHorizontalFlip(int* flip);
    int SetHorizontalFlip(int flip);
    int GetImageInvert(int* invert);
    int SetImageInvert(int invert);
    int GetStrobeOffset(int* offset);
    int SetStrobeOffset(int offset);
    int GetStrobePolarity(int* polarity);
    int SetStrobePolarity(int polarity);
    int GetConfigInitialization(int* initialization);
    int SetConfigInitialization(int initialization);
    int LoadConfigFrom(int slot);
    int SaveConfigTo(int slot);

    // Texts of the camera; null on failure. The text stays valid until the same method is
    // called again on this object.
    const wchar_t* GetCameraTemperature();
    const wchar_t* GetCamModelNumber();
    const wchar_t* GetMCUVersion();
    const wchar_t* GetFPGAVersion();

  protected:
    int32_t WriteDataInner(const char* command);
    int32_t ReadDataInner(char* reply, int size);
    int32_t clSerialWrite(const char* data, size_t* length);
    // Polls the receive count (up to 5 tries, 50 ms apart while nothing waits) until
    // `*length` bytes came (one try for 0); `*length` receives how many did.
    int32_t clSerialRead(char* data, size_t* length, size_t capacity);

  private:
    static constexpr size_t kAnswerCapacity = 24;
    static constexpr size_t kTextCapacity = 48;

    // One exchange: the command out, the answer (when asked for) back.
    int Exchange(const std::string& command, char* answer, bool pauseBeforeReading = false);
    int GetInteger(const char* command, int* value);
    int GetPair(const std::string& command, int* first, int* second);
    int Set(const std::string& command);
    const wchar_t* GetText(const char* command, wchar_t (&text)[kTextCapacity],
                           bool pauseBeforeReading = false);

    mutable std::mutex mutex_;
    void* m_hCamera = nullptr;
    int32_t m_Status = 0;
    wchar_t temperature_[kTextCapacity] = {};
    wchar_t modelNumber_[kTextCapacity] = {};
    wchar_t mcuVersion_[kTextCapacity] = {};
    wchar_t fpgaVersion_[kTextCapacity] = {};
};

}  // namespace RYSDK
