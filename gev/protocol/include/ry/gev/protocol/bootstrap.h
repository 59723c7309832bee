// Bootstrap register map of a GigE Vision device and the bit fields of its registers.
// Registers are 32-bit, big-endian and 4-byte aligned; masks are given instead of bit
// numbers so that the MSB-first numbering of the standard never matters.
#pragma once

#include <cstdint>

namespace ry::gev::bootstrap {

// Addresses.
inline constexpr std::uint32_t kVersion = 0x0000;
inline constexpr std::uint32_t kDeviceMode = 0x0004;
inline constexpr std::uint32_t kMacHigh = 0x0008;
inline constexpr std::uint32_t kMacLow = 0x000C;
inline constexpr std::uint32_t kIpConfigCapability = 0x0010;
inline constexpr std::uint32_t kIpConfigCurrent = 0x0014;
inline constexpr std::uint32_t kCurrentIp = 0x0024;
inline constexpr std::uint32_t kCurrentSubnetMask = 0x0034;
inline constexpr std::uint32_t kCurrentGateway = 0x0044;
inline constexpr std::uint32_t kManufacturerName = 0x0048;  // 32 bytes
inline constexpr std::uint32_t kModelName = 0x0068;         // 32 bytes
inline constexpr std::uint32_t kDeviceVersion = 0x0088;     // 32 bytes
inline constexpr std::uint32_t kManufacturerInfo = 0x00A8;  // 48 bytes
inline constexpr std::uint32_t kSerialNumber = 0x00D8;      // 16 bytes
inline constexpr std::uint32_t kUserDefinedName = 0x00E8;   // 16 bytes
inline constexpr std::uint32_t kFirstUrl = 0x0200;          // 512 bytes
inline constexpr std::uint32_t kSecondUrl = 0x0400;         // 512 bytes
inline constexpr std::uint32_t kNetworkInterfaceCount = 0x0600;
inline constexpr std::uint32_t kPersistentIp = 0x064C;
inline constexpr std::uint32_t kPersistentSubnetMask = 0x065C;
inline constexpr std::uint32_t kPersistentGateway = 0x066C;
inline constexpr std::uint32_t kLinkSpeed = 0x0670;
inline constexpr std::uint32_t kMessageChannelCount = 0x0900;
inline constexpr std::uint32_t kStreamChannelCount = 0x0904;
inline constexpr std::uint32_t kActionSignalCount = 0x0908;
inline constexpr std::uint32_t kActiveLinkCount = 0x0910;
inline constexpr std::uint32_t kGvspCapability = 0x092C;
inline constexpr std::uint32_t kMessageChannelCapability = 0x0930;
inline constexpr std::uint32_t kGvcpCapability = 0x0934;
inline constexpr std::uint32_t kHeartbeatTimeout = 0x0938;
inline constexpr std::uint32_t kTimestampFrequencyHigh = 0x093C;
inline constexpr std::uint32_t kTimestampFrequencyLow = 0x0940;
inline constexpr std::uint32_t kTimestampControl = 0x0944;
inline constexpr std::uint32_t kTimestampValueHigh = 0x0948;
inline constexpr std::uint32_t kTimestampValueLow = 0x094C;
inline constexpr std::uint32_t kDiscoveryAckDelay = 0x0950;
inline constexpr std::uint32_t kGvcpConfiguration = 0x0954;
inline constexpr std::uint32_t kPendingTimeout = 0x0958;
inline constexpr std::uint32_t kControlSwitchoverKey = 0x095C;
inline constexpr std::uint32_t kGvspConfiguration = 0x0960;
inline constexpr std::uint32_t kPhysicalLinkCapability = 0x0964;
inline constexpr std::uint32_t kPhysicalLinkConfiguration = 0x0968;
inline constexpr std::uint32_t kControlChannelPrivilege = 0x0A00;  // CCP
inline constexpr std::uint32_t kPrimaryApplicationPort = 0x0A04;
inline constexpr std::uint32_t kPrimaryApplicationIp = 0x0A14;
inline constexpr std::uint32_t kMessageChannelPort = 0x0B00;                 // MCP
inline constexpr std::uint32_t kMessageChannelDestination = 0x0B10;          // MCDA
inline constexpr std::uint32_t kMessageChannelTransmissionTimeout = 0x0B14;  // MCTT
inline constexpr std::uint32_t kMessageChannelRetryCount = 0x0B18;           // MCRC
inline constexpr std::uint32_t kMessageChannelSourcePort = 0x0B1C;           // MCSP

// Stream channel n registers live at base + kStreamChannelStride * n.
inline constexpr std::uint32_t kStreamChannelStride = 0x40;
inline constexpr std::uint32_t kStreamChannelPort = 0x0D00;           // SCP
inline constexpr std::uint32_t kStreamChannelPacketSize = 0x0D04;     // SCPS
inline constexpr std::uint32_t kStreamChannelPacketDelay = 0x0D08;    // SCPD
inline constexpr std::uint32_t kStreamChannelDestination = 0x0D18;    // SCDA
inline constexpr std::uint32_t kStreamChannelSourcePort = 0x0D1C;     // SCSP
inline constexpr std::uint32_t kStreamChannelCapability = 0x0D20;     // SCC
inline constexpr std::uint32_t kStreamChannelConfiguration = 0x0D24;  // SCCFG

inline constexpr std::uint32_t stream_channel_register(std::uint32_t base, std::uint32_t channel) {
    return base + kStreamChannelStride * channel;
}

// Sizes of the string and URL areas.
inline constexpr std::uint32_t kNameFieldSize = 32;
inline constexpr std::uint32_t kManufacturerInfoSize = 48;
inline constexpr std::uint32_t kSerialNumberSize = 16;
inline constexpr std::uint32_t kUserDefinedNameSize = 16;
inline constexpr std::uint32_t kUrlSize = 512;

// Version register.
inline constexpr std::uint32_t kVersionMajorMask = 0xFFFF0000;
inline constexpr std::uint32_t kVersionMinorMask = 0x0000FFFF;

// Device mode.
inline constexpr std::uint32_t kDeviceModeBigEndian = 0x80000000;
inline constexpr std::uint32_t kDeviceModeClassMask = 0x70000000;
inline constexpr std::uint32_t kDeviceModeCharacterSetMask = 0x000000FF;
inline constexpr std::uint32_t kCharacterSetUtf8 = 1;
inline constexpr std::uint32_t kCharacterSetAscii = 2;

// Network interface capability / configuration.
inline constexpr std::uint32_t kIpConfigPauseReception = 0x80000000;
inline constexpr std::uint32_t kIpConfigPauseGeneration = 0x40000000;
inline constexpr std::uint32_t kIpConfigLla = 0x00000004;
inline constexpr std::uint32_t kIpConfigDhcp = 0x00000002;
inline constexpr std::uint32_t kIpConfigPersistent = 0x00000001;

// GVCP capability.
inline constexpr std::uint32_t kCapUserDefinedName = 0x80000000;
inline constexpr std::uint32_t kCapSerialNumber = 0x40000000;
inline constexpr std::uint32_t kCapHeartbeatDisable = 0x20000000;
inline constexpr std::uint32_t kCapLinkSpeed = 0x10000000;
inline constexpr std::uint32_t kCapPrimaryApplicationRegisters = 0x08000000;
inline constexpr std::uint32_t kCapManifestTable = 0x04000000;
inline constexpr std::uint32_t kCapTestDataLfsr = 0x02000000;
inline constexpr std::uint32_t kCapDiscoveryAckDelay = 0x01000000;
inline constexpr std::uint32_t kCapDiscoveryAckDelayWritable = 0x00800000;
inline constexpr std::uint32_t kCapExtendedStatus11 = 0x00400000;
inline constexpr std::uint32_t kCapPrimarySwitchover = 0x00200000;
inline constexpr std::uint32_t kCapUnconditionalAction = 0x00100000;
inline constexpr std::uint32_t kCapPtp = 0x00080000;
inline constexpr std::uint32_t kCapExtendedStatus20 = 0x00040000;
inline constexpr std::uint32_t kCapScheduledAction = 0x00020000;
inline constexpr std::uint32_t kCapAction = 0x00000040;
inline constexpr std::uint32_t kCapPendingAck = 0x00000020;
inline constexpr std::uint32_t kCapEventData = 0x00000010;
inline constexpr std::uint32_t kCapEvent = 0x00000008;
inline constexpr std::uint32_t kCapPacketResend = 0x00000004;
inline constexpr std::uint32_t kCapWriteMem = 0x00000002;
inline constexpr std::uint32_t kCapConcatenation = 0x00000001;

// GVCP configuration.
inline constexpr std::uint32_t kConfigPtpEnable = 0x00080000;
inline constexpr std::uint32_t kConfigExtendedStatus20 = 0x00040000;
inline constexpr std::uint32_t kConfigUnconditionalAction = 0x00000008;
inline constexpr std::uint32_t kConfigExtendedStatus11 = 0x00000004;
inline constexpr std::uint32_t kConfigPendingAck = 0x00000002;
inline constexpr std::uint32_t kConfigHeartbeatDisable = 0x00000001;

// GVSP capability and configuration.
inline constexpr std::uint32_t kGvspCapSourcePort = 0x80000000;
inline constexpr std::uint32_t kGvspCapLegacyBlockId = 0x40000000;
inline constexpr std::uint32_t kGvspConfigExtendedIds = 0x40000000;

// Message channel capability.
inline constexpr std::uint32_t kMessageCapSourcePort = 0x80000000;

// Control channel privilege (CCP).
inline constexpr std::uint32_t kCcpSwitchoverKeyMask = 0xFFFF0000;
inline constexpr std::uint32_t kCcpSwitchoverEnable = 0x00000004;
inline constexpr std::uint32_t kCcpControl = 0x00000002;
inline constexpr std::uint32_t kCcpExclusive = 0x00000001;

// MCP and SCP.
inline constexpr std::uint32_t kPortHostPortMask = 0x0000FFFF;
inline constexpr std::uint32_t kPortInterfaceMask = 0x000F0000;
inline constexpr std::uint32_t kScpDirectionReceiver = 0x80000000;

// SCPS.
inline constexpr std::uint32_t kScpsFireTestPacket = 0x80000000;
inline constexpr std::uint32_t kScpsDoNotFragment = 0x40000000;
inline constexpr std::uint32_t kScpsBigEndianPixels = 0x20000000;
inline constexpr std::uint32_t kScpsPacketSizeMask = 0x0000FFFF;

// Heartbeat timeout limits in milliseconds.
inline constexpr std::uint32_t kHeartbeatDefaultMs = 3000;
inline constexpr std::uint32_t kHeartbeatMinimumMs = 500;

}  // namespace ry::gev::bootstrap
