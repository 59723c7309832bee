/// \file
/// RyCamera: one GigE Vision camera opened through an interface. It owns the camera's
/// transport device and stream, its GenICam node map and register port, its buffer pool and
/// its worker threads.
///
///      RyInterface::OpenCamera
///               │
///               ▼
///        ┌─────────────┐  OpenCamera ok   ┌────────────────────────────┐
///        │ constructed │ ───────────────► │ opened: node map built,    │
///        └─────────────┘                  │ stream started (stream     │
///               │ OpenCamera failed       │ mode), monitor threads run │
///               ▼                         └────────────────────────────┘
///        what the open reached stays          Grab, Snap │  ▲ Abort, the grab thread's end
///        (see OpenCamera); CloseCamera                   ▼  │ (frame count, time-out)
///        releases it                       ┌────────────────────────────┐
///                                          │ acquiring: grab thread     │
///                                          │ (and callback thread) run  │
///                                          └────────────────────────────┘
///                                                         │ CloseCamera (from either state)
///                                                         ▼
///                                          removed from its interface and destroyed
///
/// Threads: a camera is driven from one application thread at a time; OpenCamera and
/// CloseCamera must not run concurrently for one camera. The connection monitor and the
/// general event thread run beside the application and call its callbacks.
///
/// Copies: a copy shares the original's device, stream, node map, buffers and threads (the
/// handles are copied, not reopened). What they share is released when the last of them
/// goes, so destroying a copy never frees what the other still uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "rysdk/RyCameraTypes.h"
#include "rysdk/RyExport.h"
#include "rysdk/RyFeatureTypes.h"
#include "rysdk/RyPixelFormat.h"
#include "rysdk/RyResult.h"
#include "rysdk/RySerial.h"
#include "rysdk/RyTypes.h"

namespace RyGenApi {
class CNodeMapRef;
class INode;
}  // namespace RyGenApi

namespace RYSDK {

class RyInterface;

namespace camera {
struct CameraShared;
struct OpenSteps;
struct CloseSteps;
}  // namespace camera

/// One camera: opened with RyInterface::OpenCamera (or RyGigE::OpenCamera), owned by its
/// interface, closed with CloseCamera. The file's comment draws its states.
class RYSDK_API RyCamera {
  public:
    /// `mode` is kept for the interface's sake; every camera streams.
    RyCamera(RyInterface* adapter, uint32_t mode);
    /// A copy shares the original's device, stream, node map, buffers and threads.
    ///@{
    RyCamera(const RyCamera& other);
    RyCamera& operator=(const RyCamera& other);
    ///@}
    /// Stops what the last holder still runs (50 ms per thread, then it is left to end by
    /// itself) and frees the node map, the port and the buffers.
    ~RyCamera();

    /// Opens the device with this transport identifier, reads its description, starts its
    /// stream into nNumBuffer buffers of nWidth x nHeight (0: the camera's current size) and
    /// sets its packet size (0: left alone). pUserPointer (the application's OBJECT_INFO) is
    /// handed back to every callback and must not be null. pDisconnectCallbackFn, when given,
    /// is called once if the camera stops answering.
    /// A failure leaves what the open reached: after the description failed
    /// (RESULT_ERROR_RYCAMERA_GETXML) the device stays open for raw register access; close
    /// the camera with CloseCamera in every case.
    /// Thread: application; not from a callback of this camera.
    RESULT OpenCamera(const char* name, uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                      uint32_t nPacketSize, void* pUserPointer, pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);

    /// Stops the threads, the stream and the device, and frees the buffers and the node map.
    /// When the camera belongs to an interface it is destroyed before this returns: the
    /// caller must not touch the object again. The last failing step's result is returned.
    /// Thread: application; not from a callback of this camera.
    RESULT CloseCamera();

    /// The interface that opened this camera (not owned by the caller).
    RESULT GetRyInterface(RyInterface** adapter);
    /// The transport device handle (valid while the camera is open).
    RESULT GetDeviceHandle(TransportHandle* device);

    /// The camera's GenICam description as text: unzipped, a UTF-8 byte-order mark dropped
    /// and UTF-16 converted to UTF-8. Empty on any failure. The second argument is unused.
    std::string GetXML(TransportHandle device, int unused);

    /// Buffer pool. ChangeBufferFormat stops the stream, rebuilds the pool for the new
    /// geometry, writes Width, Height and PixelFormat to the camera and restarts the stream.
    RESULT ChangeBufferFormat(unsigned int count, unsigned int width, unsigned int height,
                              PIXEL_FORMAT format);
    /// The pool's buffer count, then the camera's live width, height and pixel format.
    RESULT GetBufferInfo(unsigned int& count, unsigned int& width, unsigned int& height,
                         PIXEL_FORMAT& format);
    /// On: buffers are zeroed when queued, so the gaps of an incomplete frame read 0.
    RESULT SetClearBuffer(int on);

    /// Image geometry. Width is clamped into the camera's range and must then be a multiple
    /// of 4 (values below 4 exempt); height likewise with 2.
    ///@{
    RESULT SetWidth(unsigned int width);
    RESULT GetWidth(unsigned int* width);
    RESULT SetHeight(unsigned int height);
    RESULT GetHeight(unsigned int* height);
    ///@}
    /// The camera's "PixelFormat". A format outside the SDK's catalogue is refused with
    /// RESULT_ERROR before any write.
    ///@{
    RESULT SetPixelFormat(PIXEL_FORMAT format);
    RESULT GetPixelFormat(PIXEL_FORMAT* format);
    ///@}
    /// The formats the camera offers, by position among its available entries, and their
    /// number; a position past the end leaves *format as it was and succeeds.
    ///@{
    RESULT GetPixelFormatLineup(unsigned int index, PIXEL_FORMAT* format);
    RESULT GetPixelFormatLineupNum(unsigned int* count);
    ///@}
    /// The camera's "PixelSize" feature (bits per pixel): its value, its available entries
    /// by position and their number, and whether a size is one of them.
    ///@{
    RESULT SetPixelSize(unsigned int bits);
    RESULT GetPixelSize(unsigned int* bits);
    RESULT GetPixelSizeType(unsigned int index, unsigned int* bits);
    RESULT GetPixelSizeTypeNum(unsigned int* count);
    RESULT IsValidPixelSize(unsigned int bits, int* valid);
    ///@}

    /// Standard features. Every accessor returns RESULT_ERROR_XML_NODE_ACCESS_FAILED while
    /// the camera is not open, RESULT_ERROR_XML_NOT_EXIST_NODE for a feature the camera lacks
    /// and RESULT_ERROR_RYCAMERA_READ_ONLY for a read-only one; a value the camera refuses
    /// ends in RESULT_ERROR_EXCEPTION. Lineups list the available entries by position (a
    /// position past the end leaves the output as it was and succeeds).
    /// Thread: application; a callback may call the getters.
    /// "TriggerMode": its value, its available entries by position and their number.
    ///@{
    RESULT SetTriggerMode(int mode);
    RESULT GetTriggerMode(int* mode);
    RESULT GetTriggerModeLineup(unsigned int nIndex, unsigned int* pnValue);
    RESULT GetTriggerModeLineupNum(unsigned int* pnIndex);
    ///@}
    /// "TriggerSource" (see TRIGGER_SOURCE): its value, its entries and their number.
    ///@{
    RESULT SetTriggerSource(TRIGGER_SOURCE source);
    RESULT GetTriggerSource(TRIGGER_SOURCE* source);
    RESULT GetTriggerSourceLineup(unsigned int nIndex, TRIGGER_SOURCE* source);
    RESULT GetTriggerSourceLineupNum(unsigned int* pnIndex);
    ///@}
    /// Writes "TriggerActivation".
    RESULT SetTriggerActivation(TRIGGER_ACTIVATION activation);
    /// Executes "TriggerSoftware": one frame in software trigger mode.
    RESULT SetTriggerSoftware();
    /// "GevSCPSPacketSize", the stream's packet size in bytes; the setter clamps it into the
    /// camera's range before it is written.
    ///@{
    RESULT SetSCPSPacketSize(unsigned int size);
    RESULT GetSCPSPacketSize(unsigned int* size);
    ///@}
    /// "BinningHorizontal": its value, its entries and their number.
    ///@{
    RESULT SetBinningHorizontal(unsigned int binning);
    RESULT GetBinningHorizontal(unsigned int* binning);
    RESULT GetBinningHorizontalLineup(unsigned int nIndex, unsigned int* pnValue);
    RESULT GetBinningHorizontalLineupNum(unsigned int* pnIndex);
    ///@}
    /// "BinningVertical": its value, its entries and their number.
    ///@{
    RESULT SetBinningVertical(unsigned int binning);
    RESULT GetBinningVertical(unsigned int* binning);
    RESULT GetBinningVerticalLineup(unsigned int nIndex, unsigned int* pnValue);
    RESULT GetBinningVerticalLineupNum(unsigned int* pnIndex);
    ///@}
    /// "BinningFactor".
    ///@{
    RESULT SetBinningFactor(unsigned int factor);
    RESULT GetBinningFactor(unsigned int* factor);
    ///@}
    /// "StreamHold": only 1 holds the stream; any other value releases it.
    ///@{
    RESULT SetStreamHold(unsigned int hold);
    RESULT GetStreamHold(unsigned int* hold);
    ///@}
    /// The readout window: "HorizontalStart", "HorizontalEnd", "VerticalStart" and
    /// "VerticalEnd".
    ///@{
    RESULT SetHorizontalStart(unsigned int value);
    RESULT GetHorizontalStart(unsigned int* value);
    RESULT SetHorizontalEnd(unsigned int value);
    RESULT GetHorizontalEnd(unsigned int* value);
    RESULT SetVerticalStart(unsigned int value);
    RESULT GetVerticalStart(unsigned int* value);
    RESULT SetVerticalEnd(unsigned int value);
    RESULT GetVerticalEnd(unsigned int* value);
    ///@}
    /// "TestImageSelector" (see TESTIMAGE): its value, its entries and their number.
    ///@{
    RESULT SetTestImage(TESTIMAGE image);
    RESULT GetTestImage(TESTIMAGE* image);
    RESULT GetTestImageLineup(unsigned int nIndex, TESTIMAGE* image);
    RESULT GetTestImageLineupNum(unsigned int* pnIndex);
    ///@}
    /// "ReadoutMode".
    ///@{
    RESULT SetReadoutMode(READOUT mode);
    RESULT GetReadoutMode(READOUT* mode);
    ///@}
    /// "ExposureMode".
    ///@{
    RESULT SetExposureMode(EXPOSURE_MODE mode);
    RESULT GetExposureMode(EXPOSURE_MODE* mode);
    ///@}
    /// "ExposureTime", in the camera's unit (microseconds on most cameras).
    ///@{
    RESULT SetExposureTime(unsigned int time);
    RESULT GetExposureTime(unsigned int* time);
    ///@}
    /// "GainSelector" and "Gain". The selector is written first, then the value (refused
    /// outside the gain's range, 0.0 to 9999.0 when the camera gives none).
    ///@{
    RESULT SetGain(GAIN_SEL selector, float gain);
    RESULT GetGain(GAIN_SEL* selector, float* gain);
    ///@}
    /// "BlackLevelSelector", then "BlackLevel".
    RESULT SetBlackLevel(BLACKLEVEL_SEL selector, unsigned int level);
    /// "ReverseX": non-zero mirrors the image left to right.
    RESULT SetReverseX(int reverse);
    /// "StrobeOffset" and "StrobePolarity" of the strobe output.
    ///@{
    RESULT SetStrobeOffset(unsigned int offset);
    RESULT SetStrobePolarity(STROBE_POLARITY polarity);
    ///@}

    /// Any feature by its GenICam name, the value as text. flag2 of the setter clamps an
    /// integer into the feature's range (and asks the camera to verify the write).
    RESULT SetCustomCommand(const char* cpCommand, const char* cpArg, uint64_t size, int flag1 = 0,
                            int flag2 = 0);
    /// Writes the answer with its terminating zero when *cbpArgSize holds it and sets
    /// *cbpArgSize to the answer's length plus one; with a null cpArg (or a buffer too small)
    /// only the size is given back, with RESULT_ERROR_INVALID_PARAMETER.
    RESULT GetCustomCommand(const char* cpCommand, char* cpArg, uint64_t* cbpArgSize,
                            int32_t selector = GET_CUSTOM_COMMAND_VALUE);
    /// Drops every cached feature value, so the next reads ask the camera.
    RESULT InvalidateNodes();

    /// The camera's network configuration: "GevCurrentIPConfigurationDHCP",
    /// "GevCurrentIPConfigurationPersistentIP" and "GevPersistentSubnetMask".
    ///@{
    RESULT GigEGetCurrentIpConfigurationDHCP(bool* enabled);
    RESULT GigESetCurrentIpConfigurationDHCP(bool enabled);
    RESULT GigEGetCurrentIpConfigurationPersistentIP(bool* enabled);
    RESULT GigESetCurrentIpConfigurationPersistentIP(bool enabled);
    RESULT GigEGetPersistentSubnetMask(unsigned int* mask);
    ///@}
    /// "00:11:22:33:44:55"; *size in: the buffer's capacity, out: the text's length with its
    /// zero (18).
    RESULT GigEGetCurrentMACAddress(char* mac, size_t* size);

    /// Files stored on the camera, read and written whole by name (an entry of its
    /// "FileSelector"). Reading more than the file holds gives
    /// RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE.
    ///@{
    RESULT ReadFileStream(const char* fileName, uint8_t* buffer, uint64_t& size);
    RESULT WriteFileStream(const char* fileName, const uint8_t* data, uint64_t size);
    ///@}
    /// Appends "<feature> : <value>\n" for each file access feature to the terminated text
    /// in `text`. The one-argument form takes the buffer to hold FILE_ACCESS_STATUS_SIZE
    /// bytes; neither form writes past its size, and the text stays terminated.
    ///@{
    RESULT GetFileAccessControlStatus(char* text);
    RESULT GetFileAccessControlStatus(char* text, size_t capacity);
    ///@}

    /// Device events: the camera's "EventSelector" entries are routed to the callbacks
    /// registered by event identifier (the first registration of an identifier wins).
    /// Register before enabling the events on the camera: callbacks run on the transport
    /// layer's event thread. InitEventControl hands every available "EventSelector" entry
    /// to the transport layer's routing; SetEventControlCallback registers a callback and
    /// its context for an identifier.
    ///@{
    RESULT InitEventControl();
    RESULT SetEventControlCallback(uint32_t eventId, const char* eventName,
                                   uint64_t eventNameLength, pEventCallbackFn callback,
                                   void* context);
    ///@}
    /// Milliseconds between refreshes of a feature's value (its own or its value node's),
    /// -1 when it is not polled, 0 when the camera is not open or has no such feature.
    int GetPollingTime(const char* nodeName);

    /// The serial command channel of cameras that carry one (see RySerial). The channel
    /// follows the camera: it reaches the device while the camera is open.
    RySerial* GetSerial();
    /// Any command line through the serial channel; the answer line goes to cpArg and its
    /// length to *cbpArgSize (RESULT_ERROR_INSUFFICIENT_RESOURCES when it does not fit).
    RESULT GetUARTCustomCommand(const char* cpCommand, char* cpArg, size_t* cbpArgSize);
    /// Any command line through the serial channel, its answer discarded.
    RESULT SetUARTCustomCommand(const char* cpCommand);
    /// Colour gains (channel 0 red, 2 blue; green has no command), the sensor temperature
    /// and the serial number, through the serial channel. A mono pixel format has no colour
    /// gain (RESULT_ERROR_INVALID_PARAMETER). A camera that does not answer leaves the value
    /// parsed from nothing (0).
    ///@{
    RESULT GigEGetColorRGBGain(int channel, double* gain);
    RESULT GigESetColorRGBGain(int channel, double gain);
    RESULT GigEGetTemperature(double* temperature);
    RESULT GigEGetSerialNumber(char* serial, size_t* size);
    RESULT GigEGetSerialNumber(char* serial, size_t& size);
    ///@}

    /// Raw register access: `size` in, the bytes asked; out, the bytes done.
    ///@{
    RESULT ReadData(void* buffer, int64_t address, int64_t* size);
    RESULT WriteData(void* buffer, int64_t address, uint64_t* size);
    ///@}

    /// The property list: the camera's visible features, depth first from "Root", built at
    /// open. Texts longer than their fields are cut (and always terminated). The count,
    /// then one record by feature name or by position.
    ///@{
    RESULT GetPropertyCount(int32_t* count);
    RESULT GetPropertyInfo(const char* name, _PROPERTY* property);
    RESULT GetPropertyInfo(int32_t index, _PROPERTY* property);
    ///@}

    /// Texts of the camera at `index` on this camera's interface as discovery found them.
    /// `size`: in, the buffer's capacity; out, the text's length with its terminating zero.
    ///@{
    RESULT GetDeviceID(unsigned int index, char* id, size_t* size);
    RESULT GetDeviceModelName(unsigned int index, char* name, size_t* size);
    RESULT GetDeviceVersion(unsigned int index, char* version, size_t* size);
    RESULT GetDeviceVendorName(unsigned int index, char* vendor, size_t* size);
    RESULT GetDeviceIP(unsigned int index, char* address, size_t* size);
    RESULT GetDeviceMAC(unsigned int index, char* mac, size_t* size);
    ///@}

    /// General events: every 4 s the camera's "ResultAll" is read; each clear status bit
    /// (while bit 31 is set) calls the callback with its code, on the general event thread.
    RESULT SetGeneralEventCallback(pGeneralEventCallbackFn callback);
    /// 1 when bit 0 or bit 2 of `type` is set.
    int IsValidEventType(uint32_t type);

    /// The control-channel privilege the next OpenCamera asks for (CONTROL by default);
    /// MONITOR opens read-only and never configures the camera's stream.
    RESULT SetCCPPrivilege(CCP_PRIVILEGE privilege);

    /// Acquisition. Grab starts a continuous acquisition, Snap one of `frames` frames; both
    /// start the grab thread, which hands each frame to the image callback (on the grab
    /// thread, or on the callback thread with UseIndependentCallback) or to GetGrabData, and
    /// queues its buffer again unless UseQueueManager is on. The grab thread stops the
    /// acquisition itself when its frame count is reached or a wait times out.
    /// Abort stops the camera and the threads; no frame is delivered after it returns.
    /// Thread: application; a callback may call GetGrabCondition and the feature getters,
    /// never Grab, Snap, Abort or CloseCamera.
    ///@{
    RESULT Grab();
    RESULT Snap(unsigned int frames);
    RESULT Abort();
    ///@}
    /// Executes the camera's "AcquisitionStop"; the threads are left alone.
    RESULT AcquisitionStop();
    /// 1 while an acquisition runs. Thread: any.
    RESULT GetGrabCondition(int& grabbing);
    /// These three take effect at the next Grab or Snap. The copy buffer of the independent
    /// callback is allocated with the pool, so turn it on before OpenCamera.
    /// UseIndependentCallback: frames reach the image callback on a callback thread of
    /// their own. UseQueueManager: the grab thread leaves each buffer to the application
    /// instead of queuing it again.
    ///@{
    RESULT UseIndependentCallback(int on);
    RESULT UseQueueManager(int on);
    ///@}
    /// On: "Continuous" honours "AcquisitionFrameCount" like "MultiFrame".
    RESULT AcquisitionModeOpt(int on);
    /// Milliseconds the grab thread and GetGrabData wait for a frame; 0 waits without limit,
    /// 1 to 999 are refused with RESULT_ERROR_INVALID_PARAMETER.
    ///@{
    RESULT SetAcquisitionTimeOut(unsigned int ms);
    RESULT GetAcquisitionTimeOut(unsigned int* ms);
    ///@}
    /// The grab thread's end: 0 when it has ended, 0x102 (time-out) while it runs,
    /// 0xFFFFFFFF when no grab thread was started.
    uint32_t WaitGrabThread(unsigned int ms);
    /// Set before Grab or Snap; a null callback hands frames to GetGrabData instead.
    RESULT SetImageCallback(pImageCallbackFn callback);
    /// The next frame when no image callback is set (RESULT_ERROR_RYCAMERA_CALLBACK_NOT_NULL
    /// otherwise); RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT when none comes within the acquisition
    /// time-out. pImage stays valid until the next GetGrabData call or the end of the
    /// acquisition.
    RESULT GetGrabData(IMAGE_INFO* info);

    /// Stream statistics, counted by the transport layer since the camera was opened.
    /// RESULT_ERROR_INVALID_HANDLE without a stream.
    /// Frames handed to the SDK.
    RESULT GetNumDeliveredFrame(uint64_t& frames);
    RESULT GetNumLostImage(uint64_t& frames);                 ///< no free buffer when a frame began
    RESULT GetNumAnnouncedBuffer(uint64_t& buffers);          ///< buffers of the pool
    RESULT GetNumQueuedBuffer(uint64_t& buffers);             ///< buffers waiting for a frame
    RESULT GetNumCorruptedImage(uint64_t& frames);            ///< delivered incomplete
    RESULT GetNumResendSuccessfulPackets(uint64_t& packets);  ///< arrived after a resend request
    /// One counter by STREAM_INFO item, as 32 bits.
    RESULT GetStreamInfo(STREAM_INFO item, unsigned int& value);
    /// Frames the camera can hold in its own memory ("FrameCapacity").
    RESULT GetFrameCapacity(unsigned int* frames);

    /// Heartbeats that must fail in a row before the camera is reported lost.
    ///@{
    RESULT SetHeartBeatTimeoutTryCount(int count);
    RESULT GetHeartBeatTimeoutTryCount(int& count);
    ///@}

  protected:
    /// \cond INTERNAL
    RyCamera();
    void Initialize();

    /// Buffer pool steps of the open and close.
    RESULT CreateBuffer(unsigned int width, unsigned int height, unsigned int bitsPerPixel,
                        unsigned int count, std::list<void*>& handles, void* const stream,
                        void*** bufferArrayOut);
    static RESULT RearrangeQueue(std::list<void*>& handles, void* const stream);
    static RESULT StartAcquisition(void* const stream);
    static RESULT StopAcquisition(void* const stream);
    /// Registers the stream's new-buffer event; `eventOut` is only checked, never written.
    static RESULT SetRegisterEvent(void* const stream, void** eventOut, void* arg);
    RESULT DeleteBuffer();

    /// Reads the description out of device memory: `data` receives a buffer the caller frees
    /// with delete[], `size` the file's length, `zipped` 1 for a zip archive. 1 on success.
    int GetXML(TransportHandle device, char** data, uint32_t* size, int* zipped);

    void LoadPropertyList();
    /// The polling time of a node of a node map (its own, or its value node's "PollingTime"
    /// item), and of one node (-1 when it is not polled); the text of an item of a node's
    /// description.
    static int GetPollingTime(RyGenApi::CNodeMapRef* nodeMap, const char* nodeName);
    static RESULT GetPollingTime(RyGenApi::INode* node, int64_t* pollingTime);
    static std::string GetNodeItemValue(RyGenApi::CNodeMapRef* nodeMap, const char* nodeName,
                                        const char* itemName);
    /// Hands a camera event to the callback registered for its identifier.
    static void EventControlCallback(char* eventName, RyGenICam::EVENT_DATA* eventData);

    /// The catalogue's code of a pixel format name (exact match): RESULT_ERROR when none.
    static RESULT GetPixelFormatFromString(std::string name, PIXEL_FORMAT* format);
    /// The catalogue's name of a code: RESULT_ERROR_EXCEPTION when none.
    static RESULT GetPixelFormatName(PIXEL_FORMAT format, std::string* name);

    /// The plain-device flag: 1 unless the camera is of the older register-driven model.
    void SetVxDevice(int32_t plain) noexcept { m_PlainDevice = plain; }
    /// \endcond

  private:
    friend struct camera::OpenSteps;
    friend struct camera::CloseSteps;

    RyInterface* m_pRyInterface = nullptr;
    /// Everything the camera's threads may still touch after a bounded wait ran out lives
    /// here; each thread holds its own reference until it leaves.
    std::shared_ptr<camera::CameraShared> m_Shared;
    std::list<void*> m_BufferHandleList;
    uint32_t m_NumBuffer = 0;
    int32_t m_PlainDevice = 0;
    uint32_t m_AcquisitionTimeout = 5000;
    int32_t m_StreamMode = 1;
    uint32_t m_LastFrameNumber = 0xFFFFFFFF;
    std::vector<_PROPERTY> m_PropertyList;
    int32_t m_MonitorMode = 0;
    int32_t m_Opened = 0;
    int32_t m_EventControlInitialized = 0;
    CCP_PRIVILEGE m_Privilege = CCP_PRIVILEGE_CONTROL;
};

}  // namespace RYSDK
