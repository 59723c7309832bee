#include <gtest/gtest.h>

#include <iterator>

#include "TestSupport.h"
#include "ry/genicam/DevFileStream.h"
#include "ry/genicam/FileProtocolAdapter.h"

namespace RyGenApi::testing {
namespace {

constexpr int64_t kSelector = 0x100, kOperation = 0x104, kOffset = 0x10C, kLength = 0x110,
                  kExecute = 0x114, kStatus = 0x118, kResult = 0x11C, kSize = 0x120,
                  kBuffer = 0x1000, kBufferLength = 512;

std::string FileFeatures(bool deviceManagedOffset) {
    const std::string offsetAccess = deviceManagedOffset ? "RO" : "RW";
    return R"(
  <Integer Name="Zero"><Value>0</Value></Integer>
  <Enumeration Name="FileSelector">
    <EnumEntry Name="UserSet1"><Value>0</Value></EnumEntry>
    <EnumEntry Name="UserData"><Value>1</Value></EnumEntry>
    <EnumEntry Name="Firmware"><pIsImplemented>Zero</pIsImplemented><Value>2</Value></EnumEntry>
    <pValue>SelectorReg</pValue><pSelected>FileOperationSelector</pSelected></Enumeration>
  <Enumeration Name="FileOperationSelector">
    <EnumEntry Name="Open"><Value>0</Value></EnumEntry><EnumEntry Name="Close"><Value>1</Value></EnumEntry>
    <EnumEntry Name="Read"><Value>2</Value></EnumEntry><EnumEntry Name="Write"><Value>3</Value></EnumEntry>
    <EnumEntry Name="Delete"><Value>4</Value></EnumEntry><pValue>OperationReg</pValue></Enumeration>
  <Enumeration Name="FileOpenMode">
    <EnumEntry Name="Read"><Value>0</Value></EnumEntry><EnumEntry Name="Write"><Value>1</Value></EnumEntry>
    <pValue>ModeReg</pValue></Enumeration>
  <Register Name="FileAccessBuffer"><Address>0x1000</Address><Length>512</Length>
    <AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></Register>
  <Integer Name="FileAccessOffset"><pValue>OffsetReg</pValue></Integer>
  <Integer Name="FileAccessLength"><pValue>LengthReg</pValue></Integer>
  <Command Name="FileOperationExecute"><pValue>ExecuteReg</pValue><CommandValue>1</CommandValue></Command>
  <Enumeration Name="FileOperationStatus"><EnumEntry Name="Success"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Failure"><Value>1</Value></EnumEntry><pValue>StatusReg</pValue></Enumeration>
  <Integer Name="FileOperationResult"><pValue>ResultReg</pValue></Integer>
  <Integer Name="FileSize"><pValue>SizeReg</pValue></Integer>
  <IntReg Name="SelectorReg"><Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
  <IntReg Name="OperationReg"><Address>0x104</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
  <IntReg Name="ModeReg"><Address>0x108</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
  <IntReg Name="OffsetReg"><Address>0x10C</Address><Length>4</Length><AccessMode>)" +
           offsetAccess + R"(</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <IntReg Name="LengthReg"><Address>0x110</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
  <IntReg Name="ExecuteReg"><Address>0x114</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <IntReg Name="StatusReg"><Address>0x118</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <IntReg Name="ResultReg"><Address>0x11C</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>
  <IntReg Name="SizeReg"><Address>0x120</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>)";
}

// A device that keeps files in memory and carries out the operation on each execute.
class FileDevice {
  public:
    FileDevice(MemoryPort& port, bool managesOffset) : port_(port), managesOffset_(managesOffset) {
        port_.onWrite = [this](int64_t address, int64_t) {
            if (address == kExecute && port_.Peek32LittleEndian(kExecute) == 1) {
                Execute();
                port_.Poke32LittleEndian(kExecute, 0);
            }
        };
    }

    std::map<uint32_t, std::string> files;
    std::map<std::string, int> operations;
    size_t writeCapacity = SIZE_MAX;

  private:
    void Execute() {
        const uint32_t file = port_.Peek32LittleEndian(kSelector);
        const uint32_t operation = port_.Peek32LittleEndian(kOperation);
        static const char* const kNames[] = {"Open", "Close", "Read", "Write", "Delete"};
        ++operations[operation < 5 ? kNames[operation] : "?"];
        bool ok = true;
        uint32_t result = 0;
        std::string& content = files[file];
        const uint32_t offset = managesOffset_ ? deviceOffset_ : port_.Peek32LittleEndian(kOffset);
        const uint32_t length = port_.Peek32LittleEndian(kLength);
        switch (operation) {
            case 0:
                open_[file] = true;
                deviceOffset_ = 0;
                break;
            case 1:
                ok = open_[file];
                open_[file] = false;
                break;
            case 2:
                ok = open_[file];
                if (ok && offset <= content.size()) {
                    result =
                        std::min<uint32_t>(length, static_cast<uint32_t>(content.size() - offset));
                    port_.PokeBytes(kBuffer,
                                    std::vector<uint8_t>(content.begin() + offset,
                                                         content.begin() + offset + result));
                }
                break;
            case 3: {
                ok = open_[file];
                result = static_cast<uint32_t>(std::min<size_t>(
                    length, writeCapacity > content.size() ? writeCapacity - offset : 0));
                if (content.size() < offset + result) {
                    content.resize(offset + result);
                }
                for (uint32_t i = 0; i < result; ++i) {
                    content[offset + i] = static_cast<char>(port_.memory[kBuffer + i]);
                }
                break;
            }
            case 4:
                files.erase(file);
                break;
            default:
                ok = false;
        }
        deviceOffset_ += result;
        if (managesOffset_) {
            port_.Poke32LittleEndian(kOffset, deviceOffset_);
        }
        port_.Poke32LittleEndian(kStatus, ok ? 0 : 1);
        port_.Poke32LittleEndian(kResult, result);
        port_.Poke32LittleEndian(kSize, static_cast<uint32_t>(files[file].size()));
    }

    MemoryPort& port_;
    bool managesOffset_;
    uint32_t deviceOffset_ = 0;
    std::map<uint32_t, bool> open_;
};

std::string Pattern(size_t size) {
    std::string text(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>((i * 7 + 3) & 0xFF);
    }
    return text;
}

TEST(FileAccess, ReadsInBufferSizedChunks) {
    for (bool managesOffset : {false, true}) {
        SCOPED_TRACE(managesOffset ? "device-managed offset" : "host-written offset");
        Fixture f(FileFeatures(managesOffset));
        FileDevice device(f.port, managesOffset);
        device.files[1] = Pattern(1300);
        FileProtocolAdapter adapter;
        ASSERT_TRUE(adapter.attach(f.map._GetNodeMap()));
        EXPECT_EQ(adapter.getBufSize("UserData", std::ios::in), kBufferLength);
        ASSERT_TRUE(adapter.openFile("UserData", std::ios::in));
        std::string data(2000, '\0');
        EXPECT_EQ(adapter.read(data.data(), 0, 2000, "UserData"), 1300);
        data.resize(1300);
        EXPECT_EQ(data, device.files[1]);
        EXPECT_EQ(device.operations["Read"], 4);  // 512 + 512 + 276, then end of file
        EXPECT_EQ(adapter.getFileSize("UserData"), 1300);
        EXPECT_TRUE(adapter.closeFile("UserData"));
    }
}

TEST(FileAccess, RefusesUnknownNamesModesAndReportsFailures) {
    Fixture f(FileFeatures(false));
    FileDevice device(f.port, false);
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(f.map._GetNodeMap()));
    const int writes = f.port.writes;
    EXPECT_FALSE(adapter.openFile("NoSuchFile", std::ios::in));
    EXPECT_FALSE(adapter.openFile("Firmware", std::ios::in));  // entry not implemented
    EXPECT_FALSE(adapter.openFile("UserData", std::ios::in | std::ios::out));  // no ReadWrite
    EXPECT_EQ(f.port.writes, writes);  // refused before touching the device
    char buffer[16];
    EXPECT_EQ(adapter.read(buffer, 0, 16, "UserData"), 0);  // not open: status Failure
    EXPECT_EQ(adapter.lastStatus(), "Failure");
    EXPECT_FALSE(adapter.closeFile("UserData"));
    EXPECT_EQ(adapter.read(nullptr, 0, 16, "UserData"), 0);

    CNodeMapRef bare;
    bare._LoadXMLFromString(Describe("<Integer Name=\"FileSelector\"><Value>0</Value></Integer>"));
    FileProtocolAdapter unattached;
    EXPECT_FALSE(unattached.attach(bare._GetNodeMap()));
    EXPECT_FALSE(unattached.openFile("UserData", std::ios::in));
    EXPECT_FALSE(unattached.attach(nullptr));
}

TEST(FileAccess, ShortWriteIsReported) {
    Fixture f(FileFeatures(false));
    FileDevice device(f.port, false);
    device.writeCapacity = 700;
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(f.map._GetNodeMap()));
    ASSERT_TRUE(adapter.openFile("UserSet1", std::ios::out));
    const std::string data = Pattern(1000);
    EXPECT_EQ(adapter.write(data.data(), 0, 1000, "UserSet1"), 700);
    EXPECT_EQ(device.files[0], data.substr(0, 700));
}

TEST(FileAccess, StreamsRoundTrip) {
    Fixture f(FileFeatures(true));
    FileDevice device(f.port, true);
    const std::string data = Pattern(1300);
    {
        ODevFileStream out(f.map._GetNodeMap(), "UserSet1");
        ASSERT_TRUE(out.is_open());
        out.write(data.data(), static_cast<std::streamsize>(data.size()));
        out.close();
        EXPECT_TRUE(out.good());
    }
    EXPECT_EQ(device.files[0], data);
    EXPECT_EQ(device.operations["Write"], 3);  // 512 + 512 + 276
    IDevFileStream in(f.map._GetNodeMap(), "UserSet1");
    ASSERT_TRUE(in.is_open());
    const std::string back((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(back, data);
    in.close();
    IDevFileStream missing(f.map._GetNodeMap(), "NoSuchFile");
    EXPECT_FALSE(missing.is_open());
    EXPECT_TRUE(missing.fail());
}

}  // namespace
}  // namespace RyGenApi::testing

namespace RyGenApi::testing {
namespace {

TEST(FileAccess, WaitsForBusyDeviceAndTimesOut) {
    Fixture f(FileFeatures(false));
    FileDevice device(f.port, false);
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(f.map._GetNodeMap()));
    // The device never clears the execute register: the operation never finishes.
    f.port.onWrite = nullptr;
    adapter.setTimeout(std::chrono::milliseconds(30));
    EXPECT_THROW(adapter.openFile("UserData", std::ios::in), TimeoutException);
}

}  // namespace
}  // namespace RyGenApi::testing
