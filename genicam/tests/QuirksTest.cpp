// Forms found in real description files that a strict reader would refuse.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "TestSupport.h"
#include "nodes/Number.h"

namespace RyGenApi::testing {
namespace {

TEST(Quirks, NumberTexts) {
    int64_t value = 0;
    EXPECT_TRUE(detail::ParseInteger("0x00004", value));
    EXPECT_EQ(value, 4);
    EXPECT_TRUE(detail::ParseInteger("0xffffffffffffffff", value));
    EXPECT_EQ(value, -1);  // unsigned bits reinterpreted
    EXPECT_TRUE(detail::ParseInteger("-42", value));
    EXPECT_EQ(value, -42);
    EXPECT_TRUE(detail::ParseInteger("0XaB", value));
    EXPECT_EQ(value, 0xAB);
    for (const char* bad : {"", "0x", "12a", "1 2", "0x1ffffffffffffffff", "--1", "4.5"}) {
        EXPECT_FALSE(detail::ParseInteger(bad, value)) << bad;
    }
    double real = 0;
    EXPECT_TRUE(detail::ParseReal("1e-3", real));
    EXPECT_DOUBLE_EQ(real, 0.001);
    EXPECT_TRUE(detail::ParseReal("100", real));
    EXPECT_TRUE(detail::ParseReal("-INF", real));
    EXPECT_TRUE(std::isinf(real));
    EXPECT_TRUE(detail::ParseReal("0x10", real));
    EXPECT_DOUBLE_EQ(real, 16.0);
    EXPECT_FALSE(detail::ParseReal("1.5.2", real));
}

TEST(Quirks, PaddedTextDefaultsAndBadKeywords) {
    CNodeMapRef map;
    map._LoadXMLFromString(Describe(R"(
      <IntReg Name="Padded">
        <Address>
          0x10
        </Address>
        <Length>  0x04 </Length>
        <AccessMode>
          RW
        </AccessMode>
        <pPort>
          Device
        </pPort>
      </IntReg>
      <IntReg Name="Defaults"><Address>0x20</Address><pPort>Device</pPort></IntReg>
      <IntReg Name="Odd"><Address>0x30</Address><Length>4</Length><AccessMode>R</AccessMode>
        <pPort>Device</pPort><Unknown>x</Unknown></IntReg>
      <IntReg Name="Portless"><Address>0x40</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>
      <FloatReg Name="SignedFloat"><Address>0x50</Address><Length>4</Length><AccessMode>RO</AccessMode>
        <pPort>Device</pPort><Sign>Signed</Sign></FloatReg>)"));
    MemoryPort port;
    map._Connect(&port);
    port.Poke32LittleEndian(0x10, 77);
    port.Poke32LittleEndian(0x20, 0x01020304);
    EXPECT_EQ(dynamic_cast<IInteger*>(map._GetNode("Padded"))->GetValue(), 77);
    EXPECT_EQ(map._GetNode("Padded")->GetAccessMode(), RW);
    // Missing Length means 4 bytes, missing AccessMode RO, missing Endianess little-endian.
    auto* defaults = dynamic_cast<IInteger*>(map._GetNode("Defaults"));
    EXPECT_EQ(defaults->GetValue(), 0x01020304);
    EXPECT_EQ(map._GetNode("Defaults")->GetAccessMode(), RO);
    EXPECT_EQ(map._GetNode("Odd")->GetAccessMode(), RO);
    EXPECT_EQ(map._GetNode("Portless")->GetAccessMode(), NA);
    EXPECT_EQ(map._GetNode("SignedFloat")->GetAccessMode(), RO);
    const auto& warnings = map._GetLoadWarnings();
    const auto mentions = [&](const std::string& text) {
        return std::any_of(warnings.begin(), warnings.end(), [&](const std::string& warning) {
            return warning.find(text) != std::string::npos;
        });
    };
    EXPECT_TRUE(mentions("Defaults: no Length"));
    EXPECT_TRUE(mentions("unknown access mode 'R'"));
    EXPECT_TRUE(mentions("Portless: no pPort"));
}

TEST(Quirks, TopLevelEntriesLegacyKindsAndChunkPorts) {
    CNodeMapRef map;
    map._LoadXMLFromString(Describe(R"(
      <EnumEntry Name="ModeOff"><Value>0</Value></EnumEntry>
      <EnumEntry Name="ModeOn"><Value>1</Value><Symbolic>On</Symbolic></EnumEntry>
      <Enumeration Name="Mode"><pEnumEntry>ModeOff</pEnumEntry><pEnumEntry>ModeOn</pEnumEntry>
        <Value>1</Value></Enumeration>
      <ConfRom Name="Rom"><Address>0</Address><Length>4</Length><pPort>Device</pPort>
        <TextDesc Name="Vendor"><Key>3</Key></TextDesc></ConfRom>
      <IntKey Name="Key"><p1212Parser>Rom</p1212Parser><Key>0x0C</Key></IntKey>
      <SmartFeature Name="Smart"><FeatureID>0</FeatureID></SmartFeature>
      <AdvFeatureLock Name="Lock"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>
        <pPort>Device</pPort><FeatureID>0</FeatureID><Timeout>10</Timeout></AdvFeatureLock>
      <Port Name="Chunk"><ChunkID>9C40</ChunkID><SwapEndianess>Yes</SwapEndianess></Port>
      <IntReg Name="ChunkValue"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>
        <pPort>Chunk</pPort></IntReg>)"));
    MemoryPort device;
    MemoryPort chunk;
    map._Connect(&device);
    auto* mode = dynamic_cast<IEnumeration*>(map._GetNode("Mode"));
    EXPECT_EQ(mode->ToString(), "On");
    EXPECT_EQ(map._GetNode("Key")->GetAccessMode(), NI);
    EXPECT_EQ(map._GetNode("Smart")->GetAccessMode(), NI);
    EXPECT_EQ(map._GetNode("Rom")->GetPrincipalInterfaceType(), intfIBase);
    EXPECT_EQ(map._GetNode("Lock")->GetAccessMode(), RW);
    auto* chunkValue = dynamic_cast<IInteger*>(map._GetNode("ChunkValue"));
    EXPECT_EQ(chunkValue->GetAccessMode(), NA);  // no chunk data attached yet
    ASSERT_TRUE(map._Connect(&chunk, "Chunk"));
    chunk.Poke32BigEndian(0, 0x11223344);
    // The port reverses the byte order of every access.
    EXPECT_EQ(chunkValue->GetValue(), 0x11223344);
}

TEST(Quirks, NodeDescriptionQueries) {
    Fixture f(R"(
      <Category Name="Root"><pFeature>Gain</pFeature></Category>
      <Integer Name="Gain" NameSpace="Standard"><Visibility>Guru</Visibility><pValue>GainRaw</pValue>
        <pBlockPolling>Block</pBlockPolling></Integer>
      <Integer Name="Block"><Value>1</Value></Integer>
      <IntReg Name="GainRaw"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>
        <pPort>Device</pPort><PollingTime>10</PollingTime><pBlockPolling>Block</pBlockPolling></IntReg>)");
    INode* gain = f.map._GetNode("Gain");
    EXPECT_EQ(gain->GetNameSpace(), Standard);
    EXPECT_EQ(gain->GetName(true), "Device::Gain");
    EXPECT_EQ(gain->GetVisibility(), Guru);
    gain->ImposeVisibility(Invisible);
    EXPECT_EQ(gain->GetVisibility(), Invisible);
    NodeList_t children;
    gain->GetChildren(children);
    EXPECT_NE(std::find(children.begin(), children.end(), f.map._GetNode("GainRaw")),
              children.end());
    NodeList_t parents;
    f.map._GetNode("GainRaw")->GetParents(parents);
    EXPECT_NE(std::find(parents.begin(), parents.end(), gain), parents.end());
    EXPECT_EQ(f.map._GetNodeMap()->GetNumNodes(), 5);

    int calls = 0;
    f.map._GetNode("GainRaw")->RegisterCallback([&](INode*) { ++calls; });
    f.map._Poll(50);
    EXPECT_EQ(calls, 0);                    // polling blocked
    f.Get<IInteger>("Block")->SetValue(0);  // a change of the blocker notifies as well
    calls = 0;
    f.map._Poll(5);
    EXPECT_EQ(calls, 0);
    f.map._Poll(5);
    EXPECT_EQ(calls, 1);
    const auto handle = f.map._GetNode("GainRaw")->RegisterCallback([](INode*) {});
    EXPECT_TRUE(f.map._GetNode("GainRaw")->DeregisterCallback(handle));
    EXPECT_FALSE(f.map._GetNode("GainRaw")->DeregisterCallback(handle));
}

TEST(Quirks, UnloadedMapAnswersSafely) {
    CNodeMapRef map;
    MemoryPort port;
    EXPECT_EQ(map._GetNode("Width"), nullptr);
    EXPECT_EQ(map._GetNodeMap(), nullptr);
    EXPECT_FALSE(map._Connect(&port));
    EXPECT_TRUE(map._GetLoadWarnings().empty());
    map._InvalidateNodes();
    map._Poll(10);
    EXPECT_THROW(map._LoadXMLFromFile("/nonexistent/camera.xml"), RuntimeException);
    map._LoadXMLFromString(Describe("<Integer Name=\"A\"><Value>1</Value></Integer>"));
    map._Destroy();
    EXPECT_FALSE(map._IsLoaded());
    map._LoadXMLFromString(Describe("<Integer Name=\"B\"><Value>1</Value></Integer>"));
    EXPECT_NE(map._GetNode("B"), nullptr);
}

}  // namespace
}  // namespace RyGenApi::testing
