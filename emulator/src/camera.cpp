#include "ry/emulator/camera.h"

#include "camera_device.h"

namespace ry::emulator {

std::optional<XmlForm> xml_form_from_name(const std::string& name) {
    if (name == "zip")
        return XmlForm::Zip;
    if (name == "plain")
        return XmlForm::Plain;
    if (name == "utf8-bom")
        return XmlForm::Utf8Bom;
    if (name == "utf16-bom")
        return XmlForm::Utf16Bom;
    return std::nullopt;
}

Camera::Camera(CameraConfig config) : device_(std::make_unique<CameraDevice>(std::move(config))) {}
Camera::~Camera() = default;

const CameraConfig& Camera::config() const {
    return device_->config();
}
std::string Camera::address() const {
    return format_ipv4(device_->current_ip());
}
std::uint16_t Camera::control_port() const {
    return device_->control_port();
}
std::uint16_t Camera::stream_source_port() const {
    return device_->stream_source_port();
}
void Camera::set_faults(const FaultConfig& faults) {
    device_->set_faults(faults);
}
FaultConfig Camera::faults() const {
    return device_->faults();
}
void Camera::fire_external_trigger() {
    device_->fire_external_trigger();
}
void Camera::set_trailer_observer(TrailerObserver observer) {
    device_->set_trailer_observer(std::move(observer));
}
std::uint64_t Camera::frames_sent() const {
    return device_->counters().frames;
}
std::uint64_t Camera::packets_sent() const {
    return device_->counters().packets;
}
std::uint64_t Camera::bytes_sent() const {
    return device_->counters().bytes;
}
std::uint64_t Camera::packets_resent() const {
    return device_->counters().resent;
}
std::uint64_t Camera::legacy_stop_writes() const {
    return device_->legacy_stop_writes();
}

}  // namespace ry::emulator
