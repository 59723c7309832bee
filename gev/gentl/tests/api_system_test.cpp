// System and interface modules through the C interface: life cycle, the interface list,
// information commands, pseudo-addresses and the answers to bad arguments.
#include <cstring>

#include "producer_fixture.h"

namespace ry::gentl::testing {
namespace {

TEST(LibraryLifeCycleTest, RefusesUseBeforeInitAndDoubleOpens) {
    TL_HANDLE system = nullptr;
    EXPECT_EQ(TLOpen(&system), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(TLOpen(nullptr), GC_ERR_INVALID_PARAMETER);
    ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
    TL_HANDLE second = nullptr;
    EXPECT_EQ(TLOpen(&second), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(TLClose(system), GC_ERR_SUCCESS);
    EXPECT_EQ(TLClose(system), GC_ERR_INVALID_HANDLE);
    ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(LibraryLifeCycleTest, EveryModuleRefusesForeignHandles) {
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    int notAHandle = 0;
    void* bogus = &notAHandle;
    uint32_t count = 0;
    size_t size = 4;
    bool8_t changed = 0;
    EXPECT_EQ(TLGetNumInterfaces(bogus, &count), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(TLUpdateInterfaceList(nullptr, &changed, 100), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(IFGetNumDevices(bogus, &count), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(IFClose(bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(DevClose(bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(DSClose(bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(DSQueueBuffer(bogus, bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(EventKill(bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(EventGetData(nullptr, &count, &size, 0), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCReadPort(bogus, 2, &count, &size), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCRegisterEvent(bogus, EVENT_NEW_BUFFER, &bogus), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
}

TEST_F(ProducerTest, ListsLoopbackWithNameAddressAndMask) {
    bool8_t changed = 0;
    ASSERT_EQ(TLUpdateInterfaceList(system_, &changed, 100), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 0);
    uint32_t count = 0;
    ASSERT_EQ(TLGetNumInterfaces(system_, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 1u);  // the private namespace has loopback only
    char id[128];
    size_t size = sizeof id;
    ASSERT_EQ(TLGetInterfaceID(system_, 0, id, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(id, "lo-127.0.0.1");
    EXPECT_EQ(size, std::strlen(id) + 1);
    size = sizeof id;
    EXPECT_EQ(TLGetInterfaceID(system_, 1, id, &size), GC_ERR_INVALID_PARAMETER);

    const std::pair<INTERFACE_INFO_CMD, const char*> expected[] = {
        {INTERFACE_INFO_DISPLAYNAME, "IF:lo-127.0.0.1 (lo, 127.0.0.1)"},
        {INTERFACE_INFO_IP_ADDRESS, "127.0.0.1"},
        {INTERFACE_INFO_SUBNET_MASK, "255.0.0.0"}};
    for (const auto& [cmd, text] : expected) {
        char value[128] = {};
        INFO_DATATYPE type = 0;
        size = sizeof value;
        ASSERT_EQ(TLGetInterfaceInfo(system_, id, cmd, &type, value, &size), GC_ERR_SUCCESS);
        EXPECT_STREQ(value, text);
        EXPECT_EQ(type, INFO_DATATYPE_STRING);
        size = sizeof value;
        ASSERT_EQ(IFGetInfo(iface_, cmd, &type, value, &size), GC_ERR_SUCCESS);
        EXPECT_STREQ(value, text);
    }
}

TEST_F(ProducerTest, InformationCallsRefuseBadArguments) {
    char small[4];
    size_t size = sizeof small;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(TLGetInterfaceID(system_, 0, small, &size), GC_ERR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, std::strlen("lo-127.0.0.1") + 1);  // tells the size it needs
    EXPECT_EQ(TLGetInterfaceID(system_, 0, nullptr, nullptr), GC_ERR_INVALID_PARAMETER);
    size = 0;
    EXPECT_EQ(TLGetInterfaceID(system_, 0, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, std::strlen("lo-127.0.0.1") + 1);
    size = sizeof small;
    EXPECT_EQ(TLGetInterfaceInfo(system_, "eth9-10.0.0.1", 1, &type, small, &size),
              GC_ERR_INVALID_ID);
    EXPECT_EQ(TLGetInterfaceInfo(system_, "lo-127.0.0.1", 999, &type, small, &size),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(TLGetInterfaceInfo(system_, nullptr, 1, &type, small, &size),
              GC_ERR_INVALID_PARAMETER);
    IF_HANDLE other = nullptr;
    EXPECT_EQ(TLOpenInterface(system_, "nope", &other), GC_ERR_INVALID_ID);
    EXPECT_EQ(TLOpenInterface(system_, "lo-127.0.0.1", nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(ProducerTest, SystemPseudoAddressesKeepTheirSettings) {
    const std::pair<uint64_t, uint32_t> defaults[] = {{2, 500}, {3, 0}, {4, 200}};
    for (const auto& [address, value] : defaults) {
        uint32_t read = 0;
        size_t size = sizeof read;
        ASSERT_EQ(GCReadPort(system_, address, &read, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(read, value) << address;
    }
    for (uint64_t address : {2u, 3u, 4u}) {
        const uint32_t value = 1234;
        size_t size = sizeof value;
        ASSERT_EQ(GCWritePort(system_, address, &value, &size), GC_ERR_SUCCESS);
        uint32_t read = 0;
        ASSERT_EQ(GCReadPort(system_, address, &read, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(read, address == 3 ? 1u : 1234u);
    }
    uint32_t value = 0;
    size_t size = sizeof value;
    EXPECT_EQ(GCReadPort(system_, 5, &value, &size), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(GCReadPort(system_, 7, &value, &size), GC_ERR_INVALID_ADDRESS);
    size = 2;
    EXPECT_EQ(GCReadPort(system_, 2, &value, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(GCReadPort(system_, 2, nullptr, &size), GC_ERR_INVALID_PARAMETER);
    // 0 is a setting of its own: no limit.
    for (const uint64_t address : {2u, 4u}) {
        const uint32_t zero = 0;
        size = 4;
        EXPECT_EQ(GCWritePort(system_, address, &zero, &size), GC_ERR_SUCCESS);
        value = 1;
        EXPECT_EQ(GCReadPort(system_, address, &value, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(value, 0u) << address;
    }
}

TEST_F(ProducerTest, InterfacePseudoAddressesKeepTheirSettings) {
    const std::pair<uint64_t, uint32_t> defaults[] = {{7, 3000}, {8, 100}, {9, 1},
                                                      {16, 0},   {17, 0},  {18, 0}};
    for (const auto& [address, value] : defaults) {
        uint32_t read = 0;
        size_t size = sizeof read;
        ASSERT_EQ(GCReadPort(iface_, address, &read, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(read, value) << address;
    }
    const std::pair<uint64_t, uint32_t> writes[] = {{7, 0},  {8, 0},  {9, 0},
                                                    {16, 1}, {17, 1}, {18, 2}};
    for (const auto& [address, value] : writes) {
        size_t size = sizeof value;
        ASSERT_EQ(GCWritePort(iface_, address, &value, &size), GC_ERR_SUCCESS);
    }
    // A second handle on the same interface sees the same settings.
    IF_HANDLE again = nullptr;
    ASSERT_EQ(TLOpenInterface(system_, "lo-127.0.0.1", &again), GC_ERR_SUCCESS);
    for (const auto& [address, value] : writes) {
        uint32_t read = 0;
        size_t size = sizeof read;
        ASSERT_EQ(GCReadPort(again, address, &read, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(read, value) << address;
    }
    uint32_t read = 0;
    size_t size = sizeof read;
    EXPECT_EQ(GCReadPort(again, 2, &read, &size), GC_ERR_INVALID_ADDRESS);
    const uint32_t noSuchPath = 3;
    EXPECT_EQ(GCWritePort(again, RY_IF_PORT_RECEIVE_PATH, &noSuchPath, &size),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(IFClose(again), GC_ERR_SUCCESS);
}

}  // namespace
}  // namespace ry::gentl::testing
