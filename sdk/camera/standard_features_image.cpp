// RyCamera's typed accessors of the image: size, packet size, binning, region, stream
// hold, test image and readout.
#include "camera/standard_features_accessors.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::kPlainErrorOnKind;
using camera::ReadEnumeration;
using core::kLogErr;
using RyGenApi::IEnumeration;

RY_INTEGER_FEATURE(Width, "Width", kWidthWrite, kCommonRules, kPlainErrorOnKind)
RY_INTEGER_FEATURE(Height, "Height", kHeightWrite, kCommonRules, kPlainErrorOnKind)
RY_INTEGER_FEATURE(SCPSPacketSize, "GevSCPSPacketSize", kClampedWrite, kCommonRules, kCommonRules)
RY_INTEGER_FEATURE(BinningFactor, "BinningFactor", kPlainWrite, kCommonRules, kCommonRules)
RY_INTEGER_FEATURE(HorizontalStart, "HorizontalStart", kPlainWrite, kCommonRules, kPlainErrorOnKind)
RY_INTEGER_FEATURE(HorizontalEnd, "HorizontalEnd", kPlainWrite, kCommonRules, kCommonRules)
RY_INTEGER_FEATURE(VerticalStart, "VerticalStart", kPlainWrite, kCommonRules, kPlainErrorOnKind)
RY_INTEGER_FEATURE(VerticalEnd, "VerticalEnd", kPlainWrite, kCommonRules, kCommonRules)

RY_ENUMERATION_FEATURE(BinningHorizontal, "BinningHorizontal", unsigned int)
RY_LINEUP_FEATURE(BinningHorizontal, "BinningHorizontal", unsigned int)
RY_ENUMERATION_FEATURE(BinningVertical, "BinningVertical", unsigned int)
RY_LINEUP_FEATURE(BinningVertical, "BinningVertical", unsigned int)
RY_ENUMERATION_FEATURE(ReadoutMode, "ReadoutMode", READOUT)

RESULT RyCamera::SetStreamHold(unsigned int hold) {
    RY_FEATURE(SetStreamHold, "StreamHold", kPlainErrorOnKind);
    // Only 1 holds: any other value, 2 included, releases.
    return RY_GUARDED(kSite, [&] { return feature.SetBoolean(hold == 1); });
}

RESULT RyCamera::GetStreamHold(unsigned int* hold) {
    RY_FEATURE(GetStreamHold, "StreamHold", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] {
        bool value = false;
        const RESULT result = feature.GetBoolean(hold == nullptr ? nullptr : &value);
        if (result == RESULT_SUCCESS)
            *hold = value ? 1 : 0;
        return result;
    });
}

RESULT RyCamera::SetTestImage(TESTIMAGE image) {
    RY_FEATURE(SetTestImage, "TestImageSelector", camera::kAvailableToWrite);
    return RY_GUARDED(kSite, [&] {
        IEnumeration* node = nullptr;
        RESULT result = feature.ForWriting(node);
        if (result != RESULT_SUCCESS)
            return result;
        int64_t selector = 0;
        switch (image) {
            case TESTIMAGE_OFF:
                selector = 0;
                break;
            case TESTIMAGE_HORIZONTAL_RAMP:
                selector = 1;
                break;
            case TESTIMAGE_VERTICAL_RAMP:
                selector = 2;
                break;
            case TESTIMAGE_DIAGONAL_RAMP:
                selector = 3;
                break;
            default:
                RY_LOG_EVENT(kSite, kLogErr, L"TESTIMAGE(%d) is invalid", static_cast<int>(image));
                return RESULT_ERROR;
        }
        result = feature.SetEnumeration(selector);
        // The vertical ramp is written as 2 and at once as 3: the camera ends on 3, as the
        // applications built on it expect.
        if (result == RESULT_SUCCESS && image == TESTIMAGE_VERTICAL_RAMP)
            result = feature.SetEnumeration(3);
        return result;
    });
}

RESULT RyCamera::GetTestImage(TESTIMAGE* image) {
    RY_FEATURE(GetTestImage, "TestImageSelector", kPlainErrorOnKind);
    return RY_GUARDED(kSite, [&] { return ReadEnumeration(feature, image); });
}

RY_LINEUP_FEATURE(TestImage, "TestImageSelector", TESTIMAGE)

}  // namespace RYSDK
