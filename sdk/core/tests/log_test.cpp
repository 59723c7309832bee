#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "core/log/bounded_format.h"
#include "core/log/exception_guard.h"
#include "core/log/log.h"
#include "rysdk/RyEventLog.h"

namespace RYSDK::core {
namespace {

struct CapturedRecord {
    uint16_t type;
    uint32_t id;
    std::wstring text;
};

// Registers the event source and captures what reaches the sink, for one test.
class CapturingLog : public ::testing::Test {
  protected:
    void SetUp() override {
        SetEventLogCallback(&CapturingLog::OnRecord, this);
        SetTraceCallback(&CapturingLog::OnTrace, this);
        RegisterEventSource();
    }
    void TearDown() override {
        DeregisterEventSource();
        SetTraceCallback(nullptr, nullptr);
        UseSyslogEventLog();
    }
    static void OnRecord(void* self, uint16_t type, uint32_t id, const wchar_t* text) {
        static_cast<CapturingLog*>(self)->records.push_back({type, id, text});
    }
    static void OnTrace(void* self, const wchar_t* line) {
        static_cast<CapturingLog*>(self)->traces.emplace_back(line);
    }

    std::vector<CapturedRecord> records;
    std::vector<std::wstring> traces;
};

TEST_F(CapturingLog, TraceLinesFollowTheTemplateOfTheirLevel) {
    EXPECT_STREQ(FormatTrace(L"RyGigE", L"RYSDK::RyGigE::Open", 42, 0, L"n=%d", 7),
                 L"[ORN-Info] n=7 \t[ RYSDK::RyGigE::Open\t(Line:42) ] \tRyGigE \n");
    EXPECT_STREQ(FormatTrace(L"F", L"G", 1, 1, L"x"), L"[ORN-Err] x \t[ G\t(Line:1) ] \tF \n");
    EXPECT_STREQ(FormatTrace(L"F", L"G", 1, 3, L"x"),
                 L"[ORN-Exception] x \t[ G\t(Line:1) ] \tF \n");
    EXPECT_STREQ(FormatTrace(L"F", L"G", 1, 5, L"x"), L"[ORN-Etc] x \t[ G\t(Line:1) ] \tF \n");
    EXPECT_STREQ(FormatTrace(L"F", L"G", -3, 99, L"x"), L"[ORN] x \t[ G\t(Line:-3) ] \tF \n");
    EXPECT_EQ(traces.size(), 5u);
}

TEST_F(CapturingLog, DebugAndEtcTraceRequestsFormatNothing) {
    EXPECT_EQ(FormatTrace(L"F", L"G", 1, 2, L"x"), nullptr);
    EXPECT_EQ(FormatTrace(L"F", L"G", 1, 4, L"x"), nullptr);
    EXPECT_TRUE(traces.empty());
}

TEST_F(CapturingLog, TraceMessageIsCutNotOverflowed) {
    const std::wstring huge(20000, L'a');
    const wchar_t* line = FormatTrace(L"F", L"G", 1, 0, L"%ls", huge.c_str());
    ASSERT_NE(line, nullptr);
    const std::wstring text(line);
    EXPECT_EQ(text.find(std::wstring(kTraceMessageCapacity - 1, L'a')), 11u);
    EXPECT_EQ(text.find(std::wstring(kTraceMessageCapacity, L'a')), std::wstring::npos);
}

TEST_F(CapturingLog, EventRecordsCarryTypeIdentifierAndLayout) {
    WriteEventLog(CurrentEventSource(), L"Label", 0, L"File", L"Func", 12, L"v=%d", 3);
    WriteEventLog(CurrentEventSource(), L"Label", 1, L"File", L"Func", 12, L"e");
    WriteEventLog(CurrentEventSource(), L"Label", 2, L"File", L"Func", 12, L"d");
    WriteEventLog(CurrentEventSource(), L"Label", 4, L"File", L"Func", 12, L"etc");
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].type, EVENT_LOG_SUCCESS);
    EXPECT_EQ(records[0].id, 0x00020000u);
    EXPECT_EQ(records[1].type, EVENT_LOG_ERROR);
    EXPECT_EQ(records[1].id, 0xC0020001u);
    EXPECT_EQ(records[2].type, EVENT_LOG_WARNING);
    EXPECT_EQ(records[2].id, 0x80020002u);
    EXPECT_EQ(records[3].type, EVENT_LOG_INFORMATION);
    EXPECT_EQ(records[3].id, 0x40020004u);

    const std::wstring prefix = L"\n\rv=3\n\rLabel\n\rFile\n\rFunc\n\r12\n\r";
    ASSERT_EQ(records[0].text.compare(0, prefix.size(), prefix), 0) << records[0].text.size();
    EXPECT_EQ(records[0].text.substr(records[0].text.size() - 2), L" \n");
}

TEST_F(CapturingLog, ExceptionLevelAndUnknownLevelsWriteNothing) {
    WriteEventLog(CurrentEventSource(), L"L", 3, L"F", L"G", 1, L"x");
    WriteEventLog(CurrentEventSource(), L"L", 5, L"F", L"G", 1, L"x");
    WriteEventLog(CurrentEventSource(), L"L", 0xFFFFFFFF, L"F", L"G", 1, L"x");
    EXPECT_TRUE(records.empty());
}

TEST_F(CapturingLog, NothingIsWrittenWithoutAnEventSource) {
    DeregisterEventSource();
    LogEvent({L"F", L"G"}, 1, kLogErr, L"dropped");
    EXPECT_TRUE(records.empty());
}

TEST_F(CapturingLog, LongRecordsAreCutAt1024Characters) {
    const std::wstring huge(3000, L'm');
    WriteEventLog(CurrentEventSource(), L"L", 0, L"F", L"G", 1, L"%ls", huge.c_str());
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].text.size(), kEventRecordLength);
}

TEST_F(CapturingLog, GuardTurnsExceptionsIntoTheExceptionResult) {
    const LogSite site{L"RyCamera", L"RYSDK::RyCamera::GetWidth"};
    EXPECT_EQ(
        RunGuarded(site, 7, []() -> RESULT { throw std::runtime_error("node \xC3\xA9 bad"); }),
        RESULT_ERROR_EXCEPTION);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].type, EVENT_LOG_ERROR);
    EXPECT_EQ(records[0].text.rfind(L"\n\rnode \u00e9 bad\n\r", 0), 0u);
    ASSERT_EQ(traces.size(), 1u);
    EXPECT_EQ(traces[0].rfind(L"[ORN-Exception] node \u00e9 bad", 0), 0u);

    EXPECT_EQ(RunGuarded(site, 8, []() -> RESULT { throw 42; }), RESULT_ERROR_EXCEPTION);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[1].text.rfind(L"\n\r[Lumacor SDK Exception] : Unknown Exception.\n\n\r", 0),
              0u);
    EXPECT_EQ(traces[1].rfind(L"[ORN-Exception] Unknown Exception \t", 0), 0u);

    EXPECT_EQ(RunGuarded(site, 9, [] { return RESULT_ERROR_INVALID_WIDTH; }),
              RESULT_ERROR_INVALID_WIDTH);
}

TEST(FormatWithoutArguments, ConsumesConversionsSafely) {
    wchar_t out[64];
    FormatWithoutArguments(out, std::size(out), L"100%% done %d/%5s|%.2f|%lu|%ls|%*d");
    EXPECT_STREQ(out, L"100% done 0/     |0.00|0||0");
    FormatWithoutArguments(out, std::size(out), L"trailing %");
    EXPECT_STREQ(out, L"trailing %");
    FormatWithoutArguments(out, 4, L"abcdef");
    EXPECT_STREQ(out, L"abc");
    FormatWithoutArguments(out, std::size(out), nullptr);
    EXPECT_STREQ(out, L"");
}

}  // namespace
}  // namespace RYSDK::core
