// Settings of one emulated camera and of the faults it injects.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace ry::emulator {

// How the GenICam description is stored in device memory.
enum class XmlForm { Zip, Plain, Utf8Bom, Utf16Bom };

std::optional<XmlForm> xml_form_from_name(const std::string& name);  // zip|plain|utf8-bom|utf16-bom

// How the description presents one feature, for tests of cameras that differ from this one.
enum class FeatureVariant {
    Missing,       // the description has no node of that name
    ReadOnly,      // the node is read-only whatever its register allows
    NotAvailable,  // the node is there but not available
    AsInteger,     // a Float feature is described as an Integer over the same register
};

// Faults a test can switch on at any time (Camera::set_faults).
struct FaultConfig {
    double drop_fraction = 0.0;               // of stream packets on their first send
    std::set<std::uint32_t> drop_packet_ids;  // packet ids dropped on their first send
    bool ignore_resend = false;               // PACKETRESEND requests are ignored
    std::uint32_t ack_delay_ms = 0;           // every acknowledge is delayed this long
    bool unplugged = false;                   // neither answers nor streams (a pulled cable)
    bool malformed_packets = false;           // acknowledges and stream packets are cut short
};

struct CameraConfig {
    std::string address = "127.0.0.1";  // IPv4 the camera serves on
    bool bind_any = false;              // bind 0.0.0.0:3956 (one camera in its own namespace)
    std::string model = "RyEmulator";
    std::string vendor = "RyVision";
    std::string serial = "EMU0001";
    std::string device_version = "1.0.0";
    std::string pixel_format = "Mono8";
    std::uint32_t width = 640;
    std::uint32_t height = 480;
    double fps = 30.0;  // 0: as fast as possible
    XmlForm xml_form = XmlForm::Zip;
    bool trigger_entry_ext = false;  // name the external trigger entry "Ext" instead of "External"
    std::map<std::string, FeatureVariant> feature_variants;  // by feature name
    std::uint16_t gvcp_port = 3956;           // tests may move the control port (0: any free port)
    bool answer_broadcasts = true;            // also listen on 255.255.255.255:port for discovery
    std::uint32_t resend_window_blocks = 64;  // blocks kept for packet resend
    std::uint32_t pending_operation_ms = 0;   // time AcquisitionStart and file writes take
    // Hand the kernel trains of payload packets (UDP segmentation offload) instead of one
    // datagram per packet. Faster, but whatever reads the link itself (a packet socket, a
    // capture) sees each train as one oversized datagram, which no camera sends: for
    // benchmarks of receivers that take trains whole, never the default.
    bool segmentation_trains = false;
    FaultConfig faults;
};

}  // namespace ry::emulator
