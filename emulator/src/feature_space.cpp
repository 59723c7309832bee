#include <cstring>

#include "camera_device.h"
#include "feature_registers.h"
#include "ry/gev/protocol/pixel_formats.h"

namespace ry::emulator {

using gev::GevStatus;

namespace {

constexpr CommandOutcome kInvalid{GevStatus::InvalidParameter, 0};
constexpr CommandOutcome kLocked{GevStatus::AccessDenied, 0};  // not while acquiring
constexpr CommandOutcome kReadOnly{GevStatus::WriteProtect, 0};

std::uint32_t high_word(std::uint64_t bits) {
    return static_cast<std::uint32_t>(bits >> 32);
}
std::uint32_t low_word(std::uint64_t bits) {
    return static_cast<std::uint32_t>(bits);
}
void set_high(std::uint64_t& bits, std::uint32_t v) {
    bits = (std::uint64_t{v} << 32) | (bits & 0xFFFFFFFFu);
}
void set_low(std::uint64_t& bits, std::uint32_t v) {
    bits = (bits & ~0xFFFFFFFFull) | v;
}
double as_double(std::uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

bool is_binning(std::uint32_t v) {
    return v == 1 || v == 2 || v == 4;
}

// ResultAll per source: bit 31 marks valid results, clear low bits report conditions.
constexpr std::uint32_t kResultAll[] = {0xFFFFFFFF, 0xFFFFFFF0};

}  // namespace

std::uint32_t CameraDevice::payload_size() const {
    return static_cast<std::uint32_t>(
        gev::image_size(features_.pixel_format, features_.width, features_.height));
}

std::optional<std::uint32_t> CameraDevice::read_feature(std::uint32_t address) const {
    const FeatureValues& f = features_;
    switch (address) {
        case reg::kWidth:
            return f.width;
        case reg::kHeight:
            return f.height;
        case reg::kOffsetX:
            return f.offset_x;
        case reg::kOffsetY:
            return f.offset_y;
        case reg::kPixelFormat:
            return f.pixel_format;
        case reg::kPixelSize:
            return f.pixel_size;
        case reg::kPayloadSize:
            return payload_size();
        case reg::kAcquisitionMode:
            return f.acquisition_mode;
        case reg::kAcquisitionFrameCount:
            return f.frame_count;
        case reg::kAcquisitionStart:
        case reg::kAcquisitionStop:
        case reg::kTriggerSoftware:
        case reg::kFileOperationExecute:
            return 0;  // commands read back as done
        case reg::kAcquisitionFrameRate:
            return high_word(f.frame_rate_bits);
        case reg::kAcquisitionFrameRate + 4:
            return low_word(f.frame_rate_bits);
        case reg::kTriggerMode:
            return f.trigger_mode;
        case reg::kTriggerSource:
            return f.trigger_source;
        case reg::kTriggerActivation:
            return f.trigger_activation;
        case reg::kExposureMode:
            return f.exposure_mode;
        case reg::kExposureTime:
            return f.exposure_time;
        case reg::kGainSelector:
            return f.gain_selector;
        case reg::kGain:
            return high_word(f.gain_bits[f.gain_selector]);
        case reg::kGain + 4:
            return low_word(f.gain_bits[f.gain_selector]);
        case reg::kBlackLevelSelector:
            return f.black_level_selector;
        case reg::kBlackLevel:
            return f.black_level[f.black_level_selector];
        case reg::kTestImageSelector:
            return f.test_image;
        case reg::kBinningHorizontal:
            return f.binning_horizontal;
        case reg::kBinningVertical:
            return f.binning_vertical;
        case reg::kBinningFactor:
            return f.binning_factor;
        case reg::kReverseX:
            return f.reverse_x;
        case reg::kStreamHold:
            return f.stream_hold;
        case reg::kFrameCapacity:
            return reg::kFrameCapacityFrames;
        case reg::kReadoutMode:
            return f.readout_mode;
        case reg::kHorizontalStart:
            return f.horizontal_start;
        case reg::kHorizontalEnd:
            return f.horizontal_end;
        case reg::kVerticalStart:
            return f.vertical_start;
        case reg::kVerticalEnd:
            return f.vertical_end;
        case reg::kStrobeOffset:
            return f.strobe_offset;
        case reg::kStrobePolarity:
            return f.strobe_polarity;
        case reg::kEventSelector:
            return f.event_selector;
        case reg::kEventNotification:
            return messages_->enabled(static_cast<std::uint16_t>(f.event_selector)) ? 1 : 0;
        case reg::kSourceSelector:
            return f.source_selector;
        case reg::kResultAll:
            return kResultAll[f.source_selector];
        case reg::kSensorWidth:
            return reg::kSensorMaxWidth;
        case reg::kSensorHeight:
            return reg::kSensorMaxHeight;
        case reg::kTLParamsLocked:
            return f.tl_params_locked;
        case reg::kFileSelector:
            return files_.selector();
        case reg::kFileOperationSelector:
            return files_.operation();
        case reg::kFileOpenMode:
            return files_.open_mode();
        case reg::kFileAccessOffset:
            return files_.offset();
        case reg::kFileAccessLength:
            return files_.length();
        case reg::kFileOperationStatus:
            return files_.last_failed() ? 1 : 0;
        case reg::kFileOperationResult:
            return files_.result();
        case reg::kFileSize:
            return files_.size();
        case reg::kLegacyAcquisitionMode:
            return f.legacy_mode;
        case reg::kLegacyStart:
            return streamer_->acquiring() ? 1 : 0;
        case reg::kLegacyStop:
            return streamer_->acquiring() ? 1 : 0;
        case reg::kLegacyFrameCount:
            return f.legacy_frame_count;
        default:
            return std::nullopt;
    }
}

CommandOutcome CameraDevice::write_feature(std::uint32_t address, std::uint32_t value) {
    if (address >= reg::kFileSelector && address <= reg::kFileSize) {
        return write_file_feature(address, value);
    }
    if (address >= reg::kLegacyAcquisitionMode && address <= reg::kLegacyFrameCount) {
        return write_legacy(address, value);
    }
    if (address <= reg::kPayloadSize || address == reg::kTestImageSelector ||
        (address >= reg::kBinningHorizontal && address <= reg::kReverseX)) {
        return write_image_feature(address, value);
    }
    return write_acquisition_feature(address, value);
}

CommandOutcome CameraDevice::write_image_feature(std::uint32_t address, std::uint32_t value) {
    FeatureValues& f = features_;
    if (streamer_->acquiring() && address != reg::kBinningFactor) {
        return kLocked;
    }
    switch (address) {
        case reg::kWidth:
            if (value < 16 || value > reg::kSensorMaxWidth || value % 4 != 0)
                return kInvalid;
            f.width = value;
            return {};
        case reg::kHeight:
            if (value < 2 || value > reg::kSensorMaxHeight || value % 2 != 0)
                return kInvalid;
            f.height = value;
            return {};
        case reg::kOffsetX:
            if (value > reg::kSensorMaxWidth - 16 || value % 4 != 0)
                return kInvalid;
            f.offset_x = value;
            return {};
        case reg::kOffsetY:
            if (value > reg::kSensorMaxHeight - 2 || value % 2 != 0)
                return kInvalid;
            f.offset_y = value;
            return {};
        case reg::kPixelFormat:
            if (!gev::pixel_format_name(value) || value == gev::pixel_format::kBayerBG8 ||
                value == gev::pixel_format::kBayerBG10 || value == gev::pixel_format::kBayerBG12) {
                return kInvalid;
            }
            f.pixel_format = value;
            f.pixel_size = gev::pixel_format_bits(value);
            return {};
        case reg::kPixelSize: {
            if (value != 8 && value != 10 && value != 12 && value != 16 && value != 24) {
                return kInvalid;
            }
            // Mono cameras follow the depth with the matching unpacked format.
            const std::uint32_t mono[] = {
                8,  gev::pixel_format::kMono8,  10, gev::pixel_format::kMono10,
                12, gev::pixel_format::kMono12, 16, gev::pixel_format::kMono16};
            for (int i = 0; i < 8; i += 2) {
                if (mono[i] == value && (f.pixel_format >> 24) == 0x01 &&
                    (f.pixel_format & 0xFFFF) <= 0x0007) {
                    f.pixel_format = mono[i + 1];
                }
            }
            f.pixel_size = value;
            return {};
        }
        case reg::kPayloadSize:
            return kReadOnly;
        case reg::kTestImageSelector:
            if (value > 3)
                return kInvalid;
            f.test_image = value;
            return {};
        case reg::kBinningHorizontal:
        case reg::kBinningVertical:
            if (!is_binning(value))
                return kInvalid;
            (address == reg::kBinningHorizontal ? f.binning_horizontal : f.binning_vertical) =
                value;
            return {};
        case reg::kBinningFactor:
            if (value < 1 || value > 4)
                return kInvalid;
            f.binning_factor = value;
            return {};
        case reg::kReverseX:
            if (value > 1)
                return kInvalid;
            f.reverse_x = value;
            return {};
        default:
            return {GevStatus::InvalidAddress, 0};
    }
}

CommandOutcome CameraDevice::write_acquisition_feature(std::uint32_t address, std::uint32_t value) {
    FeatureValues& f = features_;
    auto set_enum = [&](std::uint32_t& field, std::uint32_t max) -> CommandOutcome {
        if (value > max)
            return kInvalid;
        field = value;
        return {};
    };
    switch (address) {
        case reg::kAcquisitionMode:
            return set_enum(f.acquisition_mode, 2);
        case reg::kAcquisitionFrameCount:
            if (value < 1 || value > 65535)
                return kInvalid;
            f.frame_count = value;
            return {};
        case reg::kAcquisitionStart:
            if (value != 1)
                return {};
            return start_acquisition(static_cast<AcquisitionMode>(f.acquisition_mode),
                                     f.frame_count);
        case reg::kAcquisitionStop:
            if (value == 1)
                streamer_->stop();
            return {};
        case reg::kTriggerSoftware:
            if (value == 1 && f.trigger_mode == 1 && f.trigger_source == 0)
                streamer_->trigger();
            return {};
        case reg::kAcquisitionFrameRate:
            set_high(f.frame_rate_bits, value);
            return {};
        case reg::kAcquisitionFrameRate + 4:
            set_low(f.frame_rate_bits, value);
            return {};
        case reg::kTriggerMode:
            return set_enum(f.trigger_mode, 1);
        case reg::kTriggerSource:
            return set_enum(f.trigger_source, 1);
        case reg::kTriggerActivation:
            return set_enum(f.trigger_activation, 1);
        case reg::kExposureMode:
            return set_enum(f.exposure_mode, 1);
        case reg::kExposureTime:
            if (value < 10 || value > 10000000)
                return kInvalid;
            f.exposure_time = value;
            return {};
        case reg::kGainSelector:
            return set_enum(f.gain_selector, 3);
        case reg::kGain:
            set_high(f.gain_bits[f.gain_selector], value);
            return {};
        case reg::kGain + 4:
            set_low(f.gain_bits[f.gain_selector], value);
            return {};
        case reg::kBlackLevelSelector:
            return set_enum(f.black_level_selector, 3);
        case reg::kBlackLevel:
            return set_enum(f.black_level[f.black_level_selector], 4095);
        case reg::kStreamHold:
            if (value > 1)
                return kInvalid;
            f.stream_hold = value;
            streamer_->set_hold(value == 1);
            return {};
        case reg::kReadoutMode:
            return set_enum(f.readout_mode, 2);
        case reg::kHorizontalStart:
            return set_enum(f.horizontal_start, 8191);
        case reg::kHorizontalEnd:
            return set_enum(f.horizontal_end, 8191);
        case reg::kVerticalStart:
            return set_enum(f.vertical_start, 8191);
        case reg::kVerticalEnd:
            return set_enum(f.vertical_end, 8191);
        case reg::kStrobeOffset:
            return set_enum(f.strobe_offset, 1000000);
        case reg::kStrobePolarity:
            return set_enum(f.strobe_polarity, 1);
        case reg::kEventSelector:
            if (value < 0x9000 || value > 0x9003)
                return kInvalid;
            f.event_selector = value;
            return {};
        case reg::kEventNotification:
            if (value > 1)
                return kInvalid;
            messages_->enable(static_cast<std::uint16_t>(f.event_selector), value == 1);
            return {};
        case reg::kSourceSelector:
            return set_enum(f.source_selector, 1);
        case reg::kTLParamsLocked:
            return set_enum(f.tl_params_locked, 1);
        case reg::kFrameCapacity:
        case reg::kResultAll:
        case reg::kSensorWidth:
        case reg::kSensorHeight:
            return kReadOnly;
        default:
            return {GevStatus::InvalidAddress, 0};
    }
}

CommandOutcome CameraDevice::write_file_feature(std::uint32_t address, std::uint32_t value) {
    switch (address) {
        case reg::kFileSelector:
            return files_.select(value) ? CommandOutcome{} : kInvalid;
        case reg::kFileOperationSelector:
            if (value > 4)
                return kInvalid;
            files_.set_operation(value);
            return {};
        case reg::kFileOpenMode:
            if (value > 2)
                return kInvalid;
            files_.set_open_mode(value);
            return {};
        case reg::kFileAccessOffset:
            files_.set_offset(value);
            return {};
        case reg::kFileAccessLength:
            if (value > kFileBufferSize)
                return kInvalid;
            files_.set_length(value);
            return {};
        case reg::kFileOperationExecute:
            if (value != 1)
                return {};
            files_.execute();
            // Writing to the file store is the camera's slow operation (flash).
            return {GevStatus::Success,
                    files_.operation() == static_cast<std::uint32_t>(FileOperation::Write)
                        ? config_.pending_operation_ms
                        : 0};
        case reg::kFileOperationStatus:
        case reg::kFileOperationResult:
        case reg::kFileSize:
            return kReadOnly;
        default:
            return {GevStatus::InvalidAddress, 0};
    }
}

CommandOutcome CameraDevice::write_legacy(std::uint32_t address, std::uint32_t value) {
    switch (address) {
        case reg::kLegacyAcquisitionMode:
            if (value != 1 && value != 2)
                return kInvalid;
            features_.legacy_mode = value;
            return {};
        case reg::kLegacyFrameCount:
            if (value < 1)
                return kInvalid;
            features_.legacy_frame_count = value;
            return {};
        case reg::kLegacyStart:
            if (value != 1)
                return kInvalid;
            return start_acquisition(features_.legacy_mode == 2 ? AcquisitionMode::MultiFrame
                                                                : AcquisitionMode::Continuous,
                                     features_.legacy_frame_count);
        case reg::kLegacyStop:
            if (value != 0)
                return kInvalid;
            legacy_stop_writes_.fetch_add(1);
            streamer_->stop();
            return {};
        default:
            return {GevStatus::InvalidAddress, 0};
    }
}

CommandOutcome CameraDevice::start_acquisition(AcquisitionMode mode, std::uint32_t frames) {
    AcquisitionPlan plan;
    plan.mode = mode;
    plan.frame_count = frames;
    plan.fps = std::max(0.0, as_double(features_.frame_rate_bits));
    plan.triggered = features_.trigger_mode == 1;
    plan.image = ImageSettings{
        features_.pixel_format,  features_.width,    features_.height,
        features_.offset_x,      features_.offset_y, static_cast<TestPattern>(features_.test_image),
        features_.reverse_x == 1};
    streamer_->set_hold(features_.stream_hold == 1);
    streamer_->start(plan);
    return {GevStatus::Success, config_.pending_operation_ms};
}

}  // namespace ry::emulator
