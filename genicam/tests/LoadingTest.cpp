#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "TestSupport.h"
#include "loader/ZipReader.h"

namespace RyGenApi::testing {
namespace {

const char* const kSmallMap = R"(
  <Category Name="Root"><pFeature>Width</pFeature><pFeature>Mode</pFeature></Category>
  <Integer Name="Width"><pValue>WidthReg</pValue></Integer>
  <Group Comment="registers"><Group Comment="nested">
    <IntReg Name="WidthReg">
      <Extension><Integer Name="Hidden"><Value>1</Value></Integer></Extension>
      <Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Endianess>BigEndian</Endianess>
    </IntReg>
  </Group></Group>
  <Enumeration Name="Mode">
    <EnumEntry Name="Width"><Value>1</Value></EnumEntry>
    <EnumEntry Name="Off"><Value>0</Value></EnumEntry>
    <Value>0</Value>
  </Enumeration>
  <Enumeration Name="Other"><EnumEntry Name="Off"><Value>5</Value></EnumEntry><Value>5</Value></Enumeration>
  <FutureElement Name="Ignored"><Value>1</Value></FutureElement>)";

TEST(Loading, ForwardReferencesGroupsAndScopedEntries) {
    Fixture fixture(kSmallMap);
    fixture.port.Poke32BigEndian(0x100, 640);
    EXPECT_EQ(fixture.Get<IInteger>("Width")->GetValue(), 640);
    EXPECT_EQ(fixture.map._GetNode("Hidden"), nullptr);   // Extension content is not a node
    EXPECT_EQ(fixture.map._GetNode("Ignored"), nullptr);  // unknown elements are skipped
    // An entry named like a feature does not shadow the feature.
    EXPECT_EQ(fixture.map._GetNode("Width")->GetPrincipalInterfaceType(), intfIInteger);
    EXPECT_EQ(fixture.Get<IEnumeration>("Mode")->GetEntryByName("Width")->GetValue(), 1);
    EXPECT_EQ(fixture.Get<IEnumeration>("Other")->GetEntryByName("Off")->GetValue(), 5);
    EXPECT_NE(fixture.map._GetNode("EnumEntry_Mode_Off"), nullptr);
    EXPECT_TRUE(fixture.map._GetNode("Width")->IsFeature());
    EXPECT_FALSE(fixture.map._GetNode("WidthReg")->IsFeature());
    FeatureList_t features;
    fixture.Get<ICategory>("Root")->GetFeatures(features);
    EXPECT_EQ(features.size(), 2u);
}

TEST(Loading, BothSchemaVersionsAndZipData) {
    CNodeMapRef v10;
    v10._LoadXMLFromString(Describe(kSmallMap, "0"));
    EXPECT_NE(v10._GetNode("Width"), nullptr);

    const std::string zip = ZipOf("camera.xml", Describe(kSmallMap));
    CNodeMapRef zipped;
    zipped._LoadXMLFromZIPData(zip.data(), zip.size());
    EXPECT_NE(zipped._GetNode("Mode"), nullptr);
    EXPECT_THROW(zipped._LoadXMLFromString(Describe(kSmallMap)), LogicalErrorException);
}

TEST(Loading, BrokenZipDataFailsCleanly) {
    CNodeMapRef map;
    const std::string notZip(400, 'x');
    EXPECT_THROW(map._LoadXMLFromZIPData(notZip.data(), notZip.size()), RuntimeException);
    EXPECT_THROW(map._LoadXMLFromZIPData(nullptr, 0), RuntimeException);
    std::string zip = ZipOf("camera.xml", Describe(kSmallMap));
    for (size_t cut : {zip.size() / 2, zip.size() - 10}) {
        const std::string truncated = zip.substr(0, cut);
        EXPECT_THROW(map._LoadXMLFromZIPData(truncated.data(), truncated.size()), RuntimeException);
    }
    std::string corrupt = zip;
    corrupt[40] ^= 0x5A;  // inside the compressed data
    EXPECT_THROW(map._LoadXMLFromZIPData(corrupt.data(), corrupt.size()), RuntimeException);
    EXPECT_FALSE(map._IsLoaded());
}

TEST(Loading, InflationIsCapped) {
    const std::string bomb = ZipOf("bomb.xml", std::string(4 << 20, '\0'));
    ASSERT_LT(bomb.size(), 64u * 1024u);
    EXPECT_THROW(detail::ExtractFirstZipMember(bomb.data(), bomb.size(), 1 << 20),
                 RuntimeException);
    EXPECT_EQ(detail::ExtractFirstZipMember(bomb.data(), bomb.size(), 8 << 20).size(), 4u << 20);
}

TEST(Loading, FatalFaultsNameTheNode) {
    const std::pair<std::string, std::string> cases[] = {
        {R"(<Integer Name="A"><pValue>Missing</pValue></Integer>)", "Missing"},
        {R"(<Integer Name="A"><pValue>B</pValue></Integer><Integer Name="B"><pValue>A</pValue></Integer>)",
         "cycle"},
        {R"(<IntSwissKnife Name="S"><pVariable Name="X">S</pVariable><Formula>X</Formula></IntSwissKnife>)",
         "cycle"},
        {R"(<Integer Name="A"><Value>1</Value></Integer><Integer Name="A"><Value>2</Value></Integer>)",
         "twice"},
        {R"(<Integer Name="A"><Value>12abc</Value></Integer>)", "not an integer"},
        {R"(<IntReg Name="R"><Address>0</Address><Length>0</Length><pPort>Device</pPort></IntReg>)",
         "length"},
        {R"(<IntReg Name="R"><Address>0</Address><Length>4</Length><pPort>A</pPort></IntReg><Integer Name="A"><Value>1</Value></Integer>)",
         "not a Port"},
        {R"(<Integer><Value>1</Value></Integer>)", "Name"},
    };
    for (const auto& [nodes, expected] : cases) {
        CNodeMapRef map;
        try {
            map._LoadXMLFromString(Describe(nodes));
            ADD_FAILURE() << "loaded: " << nodes;
        } catch (const RuntimeException& error) {
            EXPECT_NE(std::string(error.what()).find(expected), std::string::npos) << error.what();
        }
        EXPECT_FALSE(map._IsLoaded());
    }
    CNodeMapRef wrongRoot;
    EXPECT_THROW(wrongRoot._LoadXMLFromString("<html><body/></html>"), RuntimeException);
}

TEST(Loading, HostileChainsFailWithoutExhaustingTheStack) {
    std::string chain;
    for (int i = 0; i < 5000; ++i) {
        chain += "<Integer Name=\"V" + std::to_string(i) + "\"><pValue>V" + std::to_string(i + 1) +
                 "</pValue></Integer>";
    }
    chain += "<Integer Name=\"V5000\"><Value>1</Value></Integer>";
    CNodeMapRef values;
    EXPECT_THROW(values._LoadXMLFromString(Describe(chain)), RuntimeException);

    std::string locks;
    for (int i = 0; i < 5000; ++i) {
        locks += "<Integer Name=\"A" + std::to_string(i) + "\"><pIsAvailable>A" +
                 std::to_string(i + 1) + "</pIsAvailable><Value>1</Value></Integer>";
    }
    locks += "<Integer Name=\"A5000\"><Value>1</Value></Integer>";
    CNodeMapRef access;
    access._LoadXMLFromString(Describe(locks));
    auto* first = dynamic_cast<IInteger*>(access._GetNode("A0"));
    EXPECT_NO_FATAL_FAILURE(first->GetAccessMode());
    EXPECT_EQ(access._GetNode("A4990")->GetAccessMode(), RW);
}

TEST(Loading, KeepsUtf8Text) {
    Fixture f(R"(<Float Name="Exposure"><ToolTip>Belichtung in µs</ToolTip><Value>1</Value>
                 <Unit>µs</Unit></Float>)");
    EXPECT_EQ(f.Get<IFloat>("Exposure")->GetUnit(), "\xC2\xB5s");
    EXPECT_EQ(f.map._GetNode("Exposure")->GetToolTip(), "Belichtung in \xC2\xB5s");
}

TEST(Loading, ConnectsDeviceOrCameraPort) {
    CNodeMapRef map;
    map._LoadXMLFromString(
        "<RegisterDescription><Port Name=\"CameraPort\"/>"
        "<IntReg Name=\"R\"><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode>"
        "<pPort>CameraPort</pPort></IntReg></RegisterDescription>");
    auto* reg = dynamic_cast<IInteger*>(map._GetNode("R"));
    EXPECT_EQ(reg->GetAccessMode(), NA);  // not connected yet
    MemoryPort port;
    EXPECT_FALSE(map._Connect(&port, "Device"));
    EXPECT_TRUE(map._Connect(&port));
    EXPECT_EQ(reg->GetAccessMode(), RO);
}

TEST(Loading, PropertiesByItemName) {
    Fixture fixture(R"(
      <Integer Name="Gain"><ToolTip>tip</ToolTip><Description>long text</Description>
        <DisplayName>Gain (raw)</DisplayName><Visibility>Expert</Visibility>
        <pValue>GainReg</pValue></Integer>
      <IntReg Name="GainReg"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>
        <pPort>Device</pPort><PollingTime>250</PollingTime></IntReg>)");
    INode* gain = fixture.map._GetNode("Gain");
    std::string value, attribute;
    ASSERT_TRUE(gain->GetProperty("pValue", value, attribute));
    EXPECT_EQ(value, "GainReg");
    EXPECT_FALSE(gain->GetProperty("PollingTime", value, attribute));
    EXPECT_EQ(gain->GetPollingTime(), -1);
    INode* reg = fixture.map._GetNode("GainReg");
    ASSERT_TRUE(reg->GetProperty("PollingTime", value, attribute));
    EXPECT_EQ(value, "250");
    EXPECT_EQ(reg->GetPollingTime(), 250);
    EXPECT_EQ(gain->GetToolTip(), "tip");
    EXPECT_EQ(gain->GetDescription(), "long text");
    EXPECT_EQ(gain->GetDisplayName(), "Gain (raw)");
    EXPECT_EQ(gain->GetVisibility(), Expert);
    EXPECT_EQ(reg->GetDisplayName(), "GainReg");
    StringList_t names;
    gain->GetPropertyNames(names);
    EXPECT_EQ(names.size(), 5u);
}

}  // namespace
}  // namespace RyGenApi::testing
