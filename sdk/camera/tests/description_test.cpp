// Finding and decoding a camera's description: the URL rules, the text encodings and the
// hostile archives a device could hand over.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TestSupport.h"
#include "camera/device_description.h"
#include "rysdk/RyEventLog.h"

namespace RYSDK::camera {
namespace {

constexpr core::LogSite kSite{L"RyCamera", L"RYSDK::RyCamera::GetXML"};

RawDescription Raw(const std::string& bytes, bool zipped) {
    RawDescription raw;
    raw.data = std::make_unique<char[]>(bytes.size() + 1);
    std::memcpy(raw.data.get(), bytes.data(), bytes.size());
    raw.length = static_cast<uint32_t>(bytes.size());
    raw.zipped = zipped;
    return raw;
}

class Description : public ::testing::Test {
  protected:
    void SetUp() override { SetEventLogCallback(nullptr, nullptr); }
    void TearDown() override { UseSyslogEventLog(); }
};

TEST_F(Description, UrlFieldsAreReadAfterLowerCasing) {
    DescriptionLocation location;
    ASSERT_EQ(ParseDescriptionUrl("Local:Camera_XML.ZIP;8000000;1A2B", location),
              UrlVerdict::Local);
    EXPECT_EQ(location.address, 0x08000000u);
    EXPECT_EQ(location.length, 0x1A2Bu);
    EXPECT_TRUE(location.zipped);

    ASSERT_EQ(ParseDescriptionUrl("local:camera.xml;100000;4000?SchemaVersion=1.1.0", location),
              UrlVerdict::Local);
    EXPECT_FALSE(location.zipped);
    EXPECT_EQ(location.length, 0x4000u) << "the length stops at the first non-hex character";

    EXPECT_EQ(ParseDescriptionUrl("Local:camera.xml;100000", location), UrlVerdict::MissingField);
    EXPECT_EQ(ParseDescriptionUrl("File:///tmp/camera.xml", location), UrlVerdict::NotLocal);
    EXPECT_EQ(ParseDescriptionUrl("http://camera/xml.zip;0;10", location), UrlVerdict::NotLocal);
    EXPECT_EQ(ParseDescriptionUrl("", location), UrlVerdict::NotLocal);
}

TEST_F(Description, Utf16IsConvertedWithItsMarkAndEndsAtTheFirstZeroUnit) {
    const std::string bytes("\xFF\xFE<\0x\0\xAC\x20=\0\x3D\xD8\x00\xDE\0\0junk", 18);
    EXPECT_EQ(Utf16LeToUtf8(bytes), "\xEF\xBB\xBF<x\xE2\x82\xAC=\xF0\x9F\x98\x80");
    // A lone surrogate and an odd trailing byte cannot write past anything.
    EXPECT_EQ(Utf16LeToUtf8(std::string("\x00\xD8", 2)), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf16LeToUtf8(std::string("a\0b", 3)), "a");
}

TEST_F(Description, MarksAreDroppedOrConvertedAndPlainTextEndsAtItsZero) {
    std::string text;
    ASSERT_TRUE(DecodeDescription(Raw("\xEF\xBB\xBF<a/>", false), kSite, text));
    EXPECT_EQ(text, "<a/>");
    ASSERT_TRUE(DecodeDescription(Raw(std::string("<a/>\0tail", 9), false), kSite, text));
    EXPECT_EQ(text, "<a/>");
    ASSERT_TRUE(
        DecodeDescription(Raw(std::string("\xFF\xFE<\0a\0/\0>\0", 10), false), kSite, text));
    EXPECT_EQ(text, "\xEF\xBB\xBF<a/>");
    EXPECT_EQ(PlainDescriptionText(Raw(std::string("\xFF\xFE<\0a\0", 6), false)), "\xEF\xBB\xBF<a");
}

TEST_F(Description, ZippedDescriptionsAreUnzippedAndDamagedOnesRefused) {
    const std::string zip =
        RyGenApi::testing::ZipOf("camera.xml", "\xEF\xBB\xBF<RegisterDescription/>");
    std::string text;
    ASSERT_TRUE(DecodeDescription(Raw(zip, true), kSite, text));
    EXPECT_EQ(text, "<RegisterDescription/>");

    EXPECT_FALSE(DecodeDescription(Raw(zip.substr(0, zip.size() / 2), true), kSite, text));
    EXPECT_FALSE(
        DecodeDescription(Raw("not an archive at all, but long enough", true), kSite, text));
    std::string corrupted = zip;
    corrupted[40] ^= 0x55;
    EXPECT_FALSE(DecodeDescription(Raw(corrupted, true), kSite, text));
}

TEST_F(Description, AnArchiveThatInflatesBeyondTheLimitIsRefused) {
    const std::string bomb =
        RyGenApi::testing::ZipOf("camera.xml", std::string(kMaxDescriptionBytes + 4096, '\0'));
    ASSERT_LT(bomb.size(), 1u << 20);
    std::string text = "untouched";
    EXPECT_FALSE(DecodeDescription(Raw(bomb, true), kSite, text));
    EXPECT_TRUE(text.empty() || text == "untouched");
}

}  // namespace
}  // namespace RYSDK::camera
