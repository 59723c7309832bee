// Locating feature registers in a description and unpacking it.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "device_description.h"

namespace ry::gev::tools {
namespace {

const char* kXml = R"(<RegisterDescription>
  <Command Name="AcquisitionStart" NameSpace="Standard">
    <pValue>AcquisitionStartReg</pValue>
    <CommandValue>0x2</CommandValue>
  </Command>
  <IntReg Name="AcquisitionStartReg">
    <Address>0x30024</Address>
    <Length>4</Length>
  </IntReg>
  <Integer Name="PayloadSize"><pValue>PayloadSizeReg</pValue></Integer>
  <IntReg Name="PayloadSizeReg"><Address>196632</Address><Length>8</Length></IntReg>
  <Integer Name="Loop"><pValue>Loop</pValue></Integer>
  <Command Name="Broken"><pValue>Nowhere</pValue></Command>
</RegisterDescription>)";

TEST(DeviceDescriptionTest, FollowsValueLinksToTheRegister) {
    const auto start = FindFeatureRegister(kXml, "AcquisitionStart");
    ASSERT_TRUE(start);
    EXPECT_EQ(start->address, 0x30024u);
    EXPECT_EQ(start->length, 4u);
    EXPECT_EQ(start->commandValue, 2u);
    const auto payload = FindFeatureRegister(kXml, "PayloadSize");
    ASSERT_TRUE(payload);
    EXPECT_EQ(payload->address, 196632u);
    EXPECT_EQ(payload->length, 8u);
}

TEST(DeviceDescriptionTest, MissingOrCircularFeaturesAreNotFound) {
    EXPECT_FALSE(FindFeatureRegister(kXml, "Gain"));
    EXPECT_FALSE(FindFeatureRegister(kXml, "Broken"));
    EXPECT_FALSE(FindFeatureRegister(kXml, "Loop"));
    EXPECT_FALSE(FindFeatureRegister("", "AcquisitionStart"));
}

TEST(DeviceDescriptionTest, LocalUrlsAreReadAsTheSdkReadsThem) {
    const auto url = ParseLocalUrl("Local:camera.zip;10000;1F40");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->address, 0x10000u);
    EXPECT_EQ(url->length, 0x1F40u);
    EXPECT_TRUE(url->zipped);
    const auto plain = ParseLocalUrl("local:x.xml;0;10?SchemaVersion=1.1.0");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->length, 0x10u);
    EXPECT_FALSE(plain->zipped);
    EXPECT_FALSE(ParseLocalUrl("http://example/camera.xml"));
    EXPECT_FALSE(ParseLocalUrl("Local:x.xml;10"));
}

TEST(DeviceDescriptionTest, OnlyWholeZipArchivesAreUnpacked) {
    EXPECT_FALSE(UnzipFirstFile({}));
    EXPECT_FALSE(UnzipFirstFile({'<', 'x', '>', 0}));
    EXPECT_FALSE(UnzipFirstFile({'P', 'K', 3, 4, 0, 0}));  // truncated archive
    const std::string zip = RyGenApi::testing::ZipOf("camera.xml", "<RegisterDescription/>");
    const std::vector<uint8_t> bytes(zip.begin(), zip.end());
    EXPECT_EQ(UnzipFirstFile(bytes), "<RegisterDescription/>");
    EXPECT_FALSE(UnzipFirstFile({bytes.begin(), bytes.begin() + bytes.size() / 2}));
}

}  // namespace
}  // namespace ry::gev::tools
