#include <gtest/gtest.h>

#include <string>

#include "RyGenTLErrors.h"
#include "core/results.h"

namespace RYSDK::core {
namespace {

TEST(ResultText, KeepsTheIrregularTexts) {
    EXPECT_STREQ(ResultText(RESULT_SUCCESS), L"SUCCESS");
    EXPECT_STREQ(ResultText(RESULT_ERROR), L"ERROR : Default error code returned");
    EXPECT_STREQ(ResultText(RESULT_ERROR_NO_CAMERAS),
                 L"ERROR : RESULT_ERROR_NO_CAMERAS was returned \\ CHECK : NIC properties");
    EXPECT_STREQ(ResultText(RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE),
                 L"ERROR_RYINTERFACE_CANNOT_FIND_DEVICE,");
    EXPECT_STREQ(ResultText(RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER),
                 L"ERROR : RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER was returned \\ CHECK : "
                 L"Zero-based camera index");
    EXPECT_STREQ(ResultText(RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT),
                 L"RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT");
    EXPECT_STREQ(ResultText(RESULT_ERROR_STREAM_MTU),
                 L"ERROR : RESULT_ERROR_STREAM_MTU was returned \\ CHECK : Check NIC MTU");
    EXPECT_STREQ(ResultText(RESULT_ERROR_EXCEPTION), L"RESULT_ERROR_EXCEPTION");
}

TEST(ResultText, EveryValueHasATextAndNothingOutsideTheRange) {
    for (int32_t value = 0; value < RESULT_COUNT; ++value) {
        const wchar_t* text = ResultText(static_cast<RESULT>(value));
        ASSERT_NE(text, nullptr) << value;
        EXPECT_GT(std::wstring(text).size(), 0u) << value;
    }
    EXPECT_EQ(ResultText(static_cast<RESULT>(55)), nullptr);
    EXPECT_EQ(ResultText(static_cast<RESULT>(-1)), nullptr);
    EXPECT_EQ(GetResultText(static_cast<RESULT>(0x7FFFFFFF)), nullptr);
    EXPECT_STREQ(GetResultText(RESULT_ERROR_TLOPEN), L"ERROR_TLOPEN");
}

TEST(ResultFromTransportCode, MapsTheListedCodesAndFoldsTheRest) {
    struct Case {
        int32_t code;
        RESULT result;
    };
    const Case cases[] = {
        {GC_ERR_SUCCESS, RESULT_SUCCESS},
        {GC_ERR_RESOURCE_IN_USE, RESULT_ERROR_RESOURCE_IN_USE},
        {GC_ERR_ACCESS_DENIED, RESULT_ERROR_ACCESS_DENIED},
        {GC_ERR_INVALID_HANDLE, RESULT_ERROR_INVALID_HANDLE},
        {GC_ERR_INVALID_PARAMETER, RESULT_ERROR_INVALID_PARAMETER},
        {GC_ERR_INVALID_ADDRESS, RESULT_ERROR_INVALID_ADDRESS},
        {GC_ERR_OPEN_STREAM, RESULT_ERROR_DEVCREATESTREAM},
        {GC_ERR_INTERFACE, RESULT_ERROR_IF_HANDLE},
        {GC_ERR_MEMORY_ALLOCATION, RESULT_ERROR_MEMORY_ALLOCATION},
        {GC_ERR_NO_SYSTEM_RESOURCES, RESULT_ERROR_INSUFFICIENT_RESOURCES},
        {GC_ERR_INSUFFICIENT_SIZE, RESULT_ERROR_INSUFFICIENT_RESOURCES},
        {GC_ERR_INVALID_DATA, RESULT_ERROR},
        {GC_ERR_TIMEOUT, RESULT_ERROR},
        {GC_ERR_ABORT, RESULT_ERROR},
        {GC_ERR_IO, RESULT_ERROR},
        {5, RESULT_ERROR},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ResultFromTransportCode(c.code), c.result) << c.code;
    }
}

TEST(ResultFromTLOpenFailure, HasItsOwnMapping) {
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_INVALID_PARAMETER), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_INVALID_HANDLE), RESULT_ERROR_INVALID_HANDLE);
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_RESOURCE_IN_USE), RESULT_ERROR_OPENED_ALREADY);
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_ERROR), RESULT_ERROR);
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_ACCESS_DENIED), RESULT_ERROR_TLOPEN);
    EXPECT_EQ(ResultFromTLOpenFailure(GC_ERR_NOT_INITIALIZED), RESULT_ERROR_TLOPEN);
}

TEST(TransportCodeText, UsesTheTemplateOfEachCode) {
    EXPECT_STREQ(TransportCodeText(0), L"GC_ERR_SUCCESS (0)");
    EXPECT_STREQ(TransportCodeText(GC_ERR_TIMEOUT), L"GC_ERR_TIMEOUT (-1011)");
    EXPECT_STREQ(TransportCodeText(GC_ERR_CUSTOM_ID), L"GC_ERR_CUSTOM_ID (-10000)");
    EXPECT_STREQ(TransportCodeText(GC_ERR_INVALID_DATA), L"GC_ERR_INVALID_DATA (-10009)");
    EXPECT_STREQ(TransportCodeText(-1016), L"Undefined error code. (-1016)");
    EXPECT_STREQ(TransportCodeText(5), L"Undefined error code. (5)");
    EXPECT_STREQ(TransportCodeText(-10010), L"Undefined error code. (-10010)");
    EXPECT_STREQ(TransportCodeText(INT32_MIN), L"Undefined error code. (-2147483648)");
}

}  // namespace
}  // namespace RYSDK::core
