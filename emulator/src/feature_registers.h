// Addresses of the camera-specific registers that the GenICam description (xml/camera.xml)
// maps features onto. Both must change together.
#pragma once

#include <cstdint>

namespace ry::emulator::reg {

inline constexpr std::uint32_t kFeatureBase = 0x30000;
inline constexpr std::uint32_t kFeatureEnd = 0x30200;
inline constexpr std::uint32_t kWidth = 0x30000;
inline constexpr std::uint32_t kHeight = 0x30004;
inline constexpr std::uint32_t kOffsetX = 0x30008;
inline constexpr std::uint32_t kOffsetY = 0x3000C;
inline constexpr std::uint32_t kPixelFormat = 0x30010;
inline constexpr std::uint32_t kPixelSize = 0x30014;
inline constexpr std::uint32_t kPayloadSize = 0x30018;
inline constexpr std::uint32_t kAcquisitionMode = 0x3001C;
inline constexpr std::uint32_t kAcquisitionFrameCount = 0x30020;
inline constexpr std::uint32_t kAcquisitionStart = 0x30024;
inline constexpr std::uint32_t kAcquisitionStop = 0x30028;
inline constexpr std::uint32_t kTriggerSoftware = 0x3002C;
inline constexpr std::uint32_t kAcquisitionFrameRate = 0x30030;  // 8-byte IEEE double
inline constexpr std::uint32_t kTriggerMode = 0x30038;
inline constexpr std::uint32_t kTriggerSource = 0x3003C;
inline constexpr std::uint32_t kTriggerActivation = 0x30040;
inline constexpr std::uint32_t kExposureMode = 0x30044;
inline constexpr std::uint32_t kExposureTime = 0x30048;
inline constexpr std::uint32_t kGainSelector = 0x3004C;
inline constexpr std::uint32_t kGain = 0x30050;  // 8-byte IEEE double of the selected channel
inline constexpr std::uint32_t kBlackLevelSelector = 0x30058;
inline constexpr std::uint32_t kBlackLevel = 0x3005C;
inline constexpr std::uint32_t kTestImageSelector = 0x30060;
inline constexpr std::uint32_t kBinningHorizontal = 0x30064;
inline constexpr std::uint32_t kBinningVertical = 0x30068;
inline constexpr std::uint32_t kBinningFactor = 0x3006C;
inline constexpr std::uint32_t kReverseX = 0x30070;
inline constexpr std::uint32_t kStreamHold = 0x30074;
inline constexpr std::uint32_t kFrameCapacity = 0x30078;
inline constexpr std::uint32_t kReadoutMode = 0x3007C;
inline constexpr std::uint32_t kHorizontalStart = 0x30080;
inline constexpr std::uint32_t kHorizontalEnd = 0x30084;
inline constexpr std::uint32_t kVerticalStart = 0x30088;
inline constexpr std::uint32_t kVerticalEnd = 0x3008C;
inline constexpr std::uint32_t kStrobeOffset = 0x30090;
inline constexpr std::uint32_t kStrobePolarity = 0x30094;
inline constexpr std::uint32_t kEventSelector = 0x30098;
inline constexpr std::uint32_t kEventNotification = 0x3009C;
inline constexpr std::uint32_t kSourceSelector = 0x300A0;
inline constexpr std::uint32_t kResultAll = 0x300A4;
inline constexpr std::uint32_t kSensorWidth = 0x300AC;
inline constexpr std::uint32_t kSensorHeight = 0x300B0;
inline constexpr std::uint32_t kTLParamsLocked = 0x300B4;
inline constexpr std::uint32_t kFileSelector = 0x30100;
inline constexpr std::uint32_t kFileOperationSelector = 0x30104;
inline constexpr std::uint32_t kFileOpenMode = 0x30108;
inline constexpr std::uint32_t kFileAccessOffset = 0x3010C;
inline constexpr std::uint32_t kFileAccessLength = 0x30110;
inline constexpr std::uint32_t kFileOperationExecute = 0x30114;
inline constexpr std::uint32_t kFileOperationStatus = 0x30118;
inline constexpr std::uint32_t kFileOperationResult = 0x3011C;
inline constexpr std::uint32_t kFileSize = 0x30120;
inline constexpr std::uint32_t kFileAccessBuffer = 0x31000;  // 512 bytes

// Registers of the older camera generation, started and stopped without features.
inline constexpr std::uint32_t kLegacyAcquisitionMode = 0x88130;  // 1 continuous, 2 multi-frame
inline constexpr std::uint32_t kLegacyStart = 0x88134;            // write 1 to start
inline constexpr std::uint32_t kLegacyStop = 0x88138;             // write 0 to stop
inline constexpr std::uint32_t kLegacyFrameCount = 0x8815C;

inline constexpr std::uint32_t kXmlAddress = 0x00100000;
inline constexpr std::uint32_t kXmlRegionSize = 0x00100000;  // the description must fit

inline constexpr std::uint32_t kSensorMaxWidth = 8192;
inline constexpr std::uint32_t kSensorMaxHeight = 8192;
inline constexpr std::uint32_t kFrameCapacityFrames = 16;

}  // namespace ry::emulator::reg
