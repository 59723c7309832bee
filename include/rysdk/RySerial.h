/// \file
/// RySerial: the text command channel of cameras that carry a UART command interpreter,
/// reached through three device registers. One command line goes out, the camera echoes
/// it, answers and ends with its prompt '>'.
///
/// Thread: any; one exchange at a time per object (an exchange holds the object's lock).
/// Transport-level calls return a GC_ERROR status; the command methods return 1 on success
/// and 0 on failure and keep the status (GetStatus).
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "rysdk/RyExport.h"

namespace RYSDK {

/// The serial command channel of one camera (RyCamera::GetSerial hands out the camera's own).
class RYSDK_API RySerial {
  public:
    RySerial() = default;  ///< A channel without a device port (see SetCamHandle).
    RySerial(const RySerial&) = delete;
    RySerial& operator=(const RySerial&) = delete;

    /// The camera's device port; null until a camera is opened.
    ///@{
    void SetCamHandle(void* handle);
    void* GetCamHandle() const;
    ///@}
    /// The transport status of the last command (0 on success).
    int32_t GetStatus() const;

    /// Sends one command line (CR is added). 0 on success, 1 for a null handle or command,
    /// else the port's status.
    int32_t WriteData(const char* command);
    /// Waits up to 2,000 ms for the prompt and copies the answer line, with its zero, into
    /// `reply` of `size` bytes. 0, or GC_ERR_ERROR (-1001) for no prompt, no answer line or an
    /// answer that does not fit.
    int32_t ReadData(char* reply, int size);

    /// `value` rounded down (or up) to a multiple of `unit`; 0 for a unit of 0.
    static unsigned int Align32(unsigned int value, unsigned int unit, bool up);
    /// Writes the trigger word: (value / 100) * 256 (at least 1) plus 0x11. 1 on success.
    int Send_GTrigger(int value);

    // Commands. Each getter sends its query and parses the answer (a value the answer
    // lacks leaves its output as it was); each setter sends its mnemonic with the value in
    // decimal. 1 on success, 0 on failure (see GetStatus).

    /// The camera's readout mode: asked with "grm", set with "srm".
    ///@{
    int GetReadoutMode(int* mode);
    int SetReadoutMode(int mode);
    ///@}
    /// The first and last column read out: asked with "gha", set with "sha".
    ///@{
    int GetHorizontalArea(int* start, int* end);
    int SetHorizontalArea(int start, int end);
    ///@}
    /// The first and last line read out, asked with "gva".
    int GetVerticalArea(int* start, int* end);
    /// Sends the horizontal area command, as the camera's firmware expects of both setters.
    int SetVerticalArea(int start, int end);
    /// The camera's binning factor: asked with "gbf", set with "sbf".
    ///@{
    int GetBinningFactor(int* factor);
    int SetBinningFactor(int factor);
    ///@}
    /// The camera's exposure control: asked with "gec", set with "sec".
    ///@{
    int GetExposureControl(int* control);
    int SetExposureControl(int control);
    ///@}
    /// The camera's exposure time: asked with "get", set with "set".
    ///@{
    int GetExposureTime(int* time);
    int SetExposureTime(int time);
    ///@}
    /// The camera's channel mode: asked with "gcm", set with "scm".
    ///@{
    int GetChannelMode(int* mode);
    int SetChannelMode(int mode);
    ///@}
    /// The camera's trigger mode: asked with "gtm", set with "stm".
    ///@{
    int GetTriggerMode(int* mode);
    int SetTriggerMode(int mode);
    ///@}
    /// The camera's trigger source: asked with "gts", set with "sts".
    ///@{
    int GetTriggerSource(int* source);
    int SetTriggerSource(int source);
    ///@}
    /// The camera's frame number: asked with "gfn", set with "sfn".
    ///@{
    int GetFrameNumber(int* number);
    int SetFrameNumber(int number);
    ///@}
    /// The camera's exposure source: asked with "ges", set with "ses".
    ///@{
    int GetExposureSource(int* source);
    int SetExposureSource(int source);
    ///@}
    /// Sends "ste" with the exposure of a triggered frame.
    int SetTriggerExposure(int exposure);
    /// The camera's trigger polarity: asked with "gtp", set with "stp".
    ///@{
    int GetTriggerPolarity(int* polarity);
    int SetTriggerPolarity(int polarity);
    ///@}
    /// The camera's async reset: asked with "gar", set with "sar".
    ///@{
    int GetAsyncReset(int* reset);
    int SetAsyncReset(int reset);
    ///@}
    /// Channel 0 answers two values; channel 1 fills `first`, any other channel `second`.
    /// The analog gain ("gag", "sag") and offset ("gao", "sao") of a channel.
    ///@{
    int GetAnalogGain(int channel, int* first, int* second);
    int SetAnalogGain(int channel, int gain);
    int GetAnalogOffset(int channel, int* first, int* second);
    int SetAnalogOffset(int channel, int offset);
    ///@}
    /// The camera's data bits: asked with "gdb", set with "sdb".
    ///@{
    int GetDataBits(int* bits);
    int SetDataBits(int bits);
    ///@}
    /// The camera's test image: asked with "gti", set with "sti".
    ///@{
    int GetTestImage(int* image);
    int SetTestImage(int image);
    ///@}
    /// The camera's defect correction: asked with "gdc", set with "sdc".
    ///@{
    int GetDefectCorrection(int* correction);
    int SetDefectCorrection(int correction);
    ///@}
    /// The camera's lutselect: asked with "gls", set with "sls".
    ///@{
    int GetLUTSelect(int* lut);
    int SetLUTSelect(int lut);
    ///@}
    /// Flat-field data: generated ("gfd"), saved ("sfd") and loaded ("lfd") by the camera.
    ///@{
    int GenerateFlatFieldData();
    int SaveFlatFieldData();
    int LoadFlatFieldData();
    ///@}
    /// The camera's flat field iteration: asked with "gfi", set with "sfi".
    ///@{
    int GetFlatFieldIteration(int* iteration);
    int SetFlatFieldIteration(int iteration);
    ///@}
    /// Flat-field correction on or off: asked with "gfc", set with "sfc". The getter keeps
    /// the spelling applications were built against.
    ///@{
    int GetFlatFieldCorrecton(int* correction);
    int SetFlatFieldCorrection(int correction);
    ///@}
    /// The camera's flat field offset: asked with "gfo", set with "sfo".
    ///@{
    int GetFlatFieldOffset(int* offset);
    int SetFlatFieldOffset(int offset);
    ///@}
    /// The camera's horizontal flip: asked with "ghf", set with "shf".
    ///@{
    int GetHorizontalFlip(int* flip);
    int SetHorizontalFlip(int flip);
    ///@}
    /// The camera's image invert: asked with "gii", set with "sii".
    ///@{
    int GetImageInvert(int* invert);
    int SetImageInvert(int invert);
    ///@}
    /// The camera's strobe offset: asked with "gso", set with "sso".
    ///@{
    int GetStrobeOffset(int* offset);
    int SetStrobeOffset(int offset);
    ///@}
    /// The camera's strobe polarity: asked with "gsp", set with "ssp".
    ///@{
    int GetStrobePolarity(int* polarity);
    int SetStrobePolarity(int polarity);
    ///@}
    /// The camera's config initialization: asked with "gci", set with "sci".
    ///@{
    int GetConfigInitialization(int* initialization);
    int SetConfigInitialization(int initialization);
    ///@}
    /// Loads the configuration from a slot ("lcf") or saves it to one ("sct").
    ///@{
    int LoadConfigFrom(int slot);
    int SaveConfigTo(int slot);
    ///@}

    /// Texts of the camera: its temperature ("gct"), model number ("gmn"), MCU and FPGA
    /// versions ("gmv", "gfv"); null on failure. The text stays valid until the same method
    /// is called again on this object.
    ///@{
    const wchar_t* GetCameraTemperature();
    const wchar_t* GetCamModelNumber();
    const wchar_t* GetMCUVersion();
    const wchar_t* GetFPGAVersion();
    ///@}

  protected:
    /// \cond INTERNAL
    int32_t WriteDataInner(const char* command);
    int32_t ReadDataInner(char* reply, int size);
    int32_t clSerialWrite(const char* data, size_t* length);
    /// Polls the receive count (up to 5 tries, 50 ms apart while nothing waits) until
    /// `*length` bytes came (one try for 0); `*length` receives how many did.
    int32_t clSerialRead(char* data, size_t* length, size_t capacity);
    /// \endcond

  private:
    static constexpr size_t kAnswerCapacity = 24;
    static constexpr size_t kTextCapacity = 48;

    /// One exchange: the command out, the answer (when asked for) back.
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
