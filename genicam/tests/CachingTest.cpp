#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "TestSupport.h"

namespace RyGenApi::testing {
namespace {

const char* const kCachingMap = R"(
  <IntReg Name="Through"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Cachable>WriteThrough</Cachable></IntReg>
  <IntReg Name="Around"><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Cachable>WriteAround</Cachable></IntReg>
  <IntReg Name="Never"><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <Integer Name="OverNever"><pValue>Never</pValue></Integer>
  <IntReg Name="Status"><Address>12</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><pInvalidator>Load</pInvalidator></IntReg>
  <Command Name="Load"><pValue>LoadReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="LoadReg"><Address>16</Address><Length>4</Length><AccessMode>WO</AccessMode>
    <pPort>Device</pPort></IntReg>
  <Enumeration Name="GainSelector"><EnumEntry Name="Red"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Blue"><Value>1</Value></EnumEntry><pValue>SelReg</pValue>
    <pSelected>Gain</pSelected></Enumeration>
  <IntReg Name="SelReg"><Address>20</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <Enumeration Name="TapSelector"><EnumEntry Name="Tap1"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Tap2"><Value>1</Value></EnumEntry><pValue>TapReg</pValue>
    <pSelected>BlackLevel</pSelected></Enumeration>
  <IntReg Name="TapReg"><Address>36</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <Integer Name="BlackLevel"><pValue>BlackLevelRaw</pValue></Integer>
  <IntReg Name="BlackLevelRaw"><Address>40</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <IntReg Name="Gain"><Address>24</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <IntReg Name="Temperature"><Address>28</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><PollingTime>100</PollingTime></IntReg>
  <IntSwissKnife Name="TwiceGain"><pVariable Name="G">Gain</pVariable><Formula>G * 2</Formula></IntSwissKnife>
  <IntReg Name="Locked"><Address>32</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort></IntReg>
  <Integer Name="Guarded"><pIsLocked>Locked</pIsLocked><pValue>Gain</pValue></Integer>)";

TEST(Caching, ModesDecideWhenTheDeviceIsRead) {
    Fixture f(kCachingMap);
    auto* through = f.Get<IInteger>("Through");
    through->GetValue();
    const int reads = f.port.reads;
    through->GetValue();
    EXPECT_EQ(f.port.reads, reads);  // served from the cache
    through->SetValue(5);
    EXPECT_EQ(through->GetValue(), 5);
    EXPECT_EQ(f.port.reads, reads);  // write-through: the write refreshed the cache
    through->GetValue(false, true);
    EXPECT_EQ(f.port.reads, reads + 1);  // ignore-cache bypass

    auto* around = f.Get<IInteger>("Around");
    around->GetValue();
    around->SetValue(6);
    const int beforeRead = f.port.reads;
    EXPECT_EQ(around->GetValue(), 6);
    EXPECT_EQ(f.port.reads, beforeRead + 1);  // write-around: next read goes to the device

    auto* never = f.Get<IInteger>("OverNever");
    f.port.Poke32LittleEndian(8, 1);
    EXPECT_EQ(never->GetValue(), 1);
    f.port.Poke32LittleEndian(8, 2);
    EXPECT_EQ(never->GetValue(), 2);
    EXPECT_EQ(f.map._GetNode("OverNever")->GetCachingMode(), NoCache);
    EXPECT_EQ(f.map._GetNode("Through")->GetCachingMode(), WriteThrough);
}

TEST(Caching, InvalidatorsSelectorsAndDependencies) {
    Fixture f(kCachingMap);
    auto* status = f.Get<IInteger>("Status");
    EXPECT_EQ(status->GetValue(), 0);
    f.port.Poke32LittleEndian(12, 9);  // the device changes behind our back
    EXPECT_EQ(status->GetValue(), 0);
    f.Get<ICommand>("Load")->Execute();
    EXPECT_EQ(status->GetValue(), 9);  // the listed invalidator dropped the cache

    auto* gain = f.Get<IInteger>("Gain");
    EXPECT_EQ(gain->GetValue(), 0);
    EXPECT_EQ(f.Get<IInteger>("TwiceGain")->GetValue(), 0);
    // The device maps the gain register per selected channel.
    f.port.onWrite = [&](int64_t address, int64_t) {
        if (address == 20) {
            f.port.Poke32LittleEndian(24, f.port.Peek32LittleEndian(20) == 1 ? 77 : 0);
        }
    };
    f.Get<IEnumeration>("GainSelector")->FromString("Blue");
    EXPECT_EQ(gain->GetValue(), 77);
    EXPECT_EQ(f.Get<IInteger>("TwiceGain")->GetValue(), 154);

    // The selected feature is a plain Integer; its register behind pValue must be re-read.
    auto* blackLevel = f.Get<IInteger>("BlackLevel");
    EXPECT_EQ(blackLevel->GetValue(), 0);
    f.port.onWrite = [&](int64_t address, int64_t) {
        if (address == 36) {
            f.port.Poke32LittleEndian(40, f.port.Peek32LittleEndian(36) == 1 ? 11 : 0);
        }
    };
    f.Get<IEnumeration>("TapSelector")->FromString("Tap2");
    EXPECT_EQ(blackLevel->GetValue(), 11);

    int calls = 0;
    INode* guardedNode = f.map._GetNode("Guarded");
    guardedNode->RegisterCallback([&](INode*) { ++calls; });
    auto* guarded = f.Get<IInteger>("Guarded");
    EXPECT_EQ(guarded->GetAccessMode(), RW);
    f.Get<IInteger>("Locked")->SetValue(1);
    EXPECT_EQ(guarded->GetAccessMode(), RO);  // access cache dropped through pIsLocked
    EXPECT_GE(calls, 1);
    gain->SetValue(3);
    EXPECT_EQ(guarded->GetValue(), 3);
}

TEST(Caching, PollingAndExplicitInvalidation) {
    Fixture f(kCachingMap);
    auto* temperature = f.Get<IInteger>("Temperature");
    EXPECT_EQ(temperature->GetValue(), 0);
    f.port.Poke32LittleEndian(28, 41);
    EXPECT_EQ(temperature->GetValue(), 41);  // polled nodes are never served from a cache
    int calls = 0;
    f.map._GetNode("Temperature")->RegisterCallback([&](INode*) { ++calls; });
    f.map._Poll(60);
    EXPECT_EQ(calls, 0);
    f.map._Poll(60);
    EXPECT_EQ(calls, 1);

    auto* through = f.Get<IInteger>("Through");
    through->GetValue();
    f.port.Poke32LittleEndian(0, 12);
    EXPECT_EQ(through->GetValue(), 0);
    f.map._GetNode("Through")->InvalidateNode();
    EXPECT_EQ(through->GetValue(), 12);
    f.port.Poke32LittleEndian(0, 13);
    f.map._InvalidateNodes();
    EXPECT_EQ(through->GetValue(), 13);
    const int reads = f.port.reads;
    EXPECT_EQ(through->GetValue(), 13);
    EXPECT_EQ(f.port.reads, reads) << "refilled after the invalidation, served from the cache";

    // The access mode is cached with the value and dropped with it.
    auto* guarded = f.Get<IInteger>("Guarded");
    EXPECT_EQ(guarded->GetAccessMode(), RW);
    f.port.Poke32LittleEndian(32, 1);
    EXPECT_EQ(guarded->GetAccessMode(), RW);
    f.map._InvalidateNodes();
    EXPECT_EQ(guarded->GetAccessMode(), RO);
}

}  // namespace
}  // namespace RyGenApi::testing

namespace RyGenApi::testing {
namespace {

// The port below is not thread-safe on its own; the node map must serialise callers.
TEST(Concurrency, CallsFromSeveralThreadsAreSerialised) {
    Fixture f(kCachingMap);
    auto* around = f.Get<IInteger>("Around");
    auto* status = f.Get<IInteger>("OverNever");
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                around->SetValue(t * 10000 + i);
                const int64_t value = around->GetValue();
                if (value < 0 || value >= 40000) {
                    ++failures;
                }
                status->GetValue();
                f.map._InvalidateNodes();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(f.port.writes, 8000);
}

}  // namespace
}  // namespace RyGenApi::testing
