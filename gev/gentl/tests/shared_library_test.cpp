// The shared object exports exactly the C interface and works when loaded at run time.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "RyGenTL.h"

namespace {

const char* const kFunctions[] = {"GCInitLib",
                                  "GCCloseLib",
                                  "GCReadPort",
                                  "GCWritePort",
                                  "GCGetPortURL",
                                  "GCRegisterEvent",
                                  "GCUnregisterEvent",
                                  "TLOpen",
                                  "TLClose",
                                  "TLUpdateInterfaceList",
                                  "TLGetNumInterfaces",
                                  "TLGetInterfaceID",
                                  "TLGetInterfaceInfo",
                                  "TLOpenInterface",
                                  "TLGetDiscoveryInfo",
                                  "IFSetIgnoreSubnetDiscover",
                                  "IFUpdateDeviceList",
                                  "IFGetNumDevices",
                                  "IFGetDeviceID",
                                  "IFGetDeviceInfo",
                                  "IFGetInfo",
                                  "IFOpenDevice",
                                  "IFClose",
                                  "IFSetForceIP",
                                  "DevGetPort",
                                  "DevGetInfo",
                                  "DevGetNumDataStreams",
                                  "DevGetDataStreamID",
                                  "DevOpenDataStream",
                                  "DevClose",
                                  "DevSetMultiCastMode",
                                  "DevSetHeartBeatTimeout",
                                  "DevGetHeartBeatTimeout",
                                  "DevSetHeartBeatTimeoutCheckCount",
                                  "DevGetHeartBeatTimeoutCheckCount",
                                  "DevSetEventControl",
                                  "CloseCCP",
                                  "DSAnnounceBuffer",
                                  "DSRevokeBuffer",
                                  "DSQueueBuffer",
                                  "DSFlushQueue",
                                  "DSStartAcquisition",
                                  "DSStopAcquisition",
                                  "DSStartBufferGrabbing",
                                  "DSStopBufferGrabbing",
                                  "DSSetForceQueueBuffer",
                                  "DSSetClearBuffer",
                                  "DSRecoverQueuedBuffer",
                                  "DSGetInfo",
                                  "DSGetBufferInfo",
                                  "DSClose",
                                  "InitEvent",
                                  "EventGetData",
                                  "EventFlush",
                                  "EventKill"};

TEST(SharedLibraryTest, ExportsEveryFunctionAndHidesTheRest) {
    void* library = dlopen(RY_GENTL_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    for (const char* name : kFunctions)
        EXPECT_NE(dlsym(library, name), nullptr) << name;
    EXPECT_EQ(dlsym(library, "_ZN2ry5gentl10TheLibraryEv"), nullptr);  // internals stay hidden
    using Init = GC_ERROR (*)();
    using Open = GC_ERROR (*)(TL_HANDLE*);
    using Count = GC_ERROR (*)(TL_HANDLE, uint32_t*);
    const auto init = reinterpret_cast<Init>(dlsym(library, "GCInitLib"));
    const auto close = reinterpret_cast<Init>(dlsym(library, "GCCloseLib"));
    const auto open = reinterpret_cast<Open>(dlsym(library, "TLOpen"));
    const auto count = reinterpret_cast<Count>(dlsym(library, "TLGetNumInterfaces"));
    ASSERT_EQ(init(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(open(&system), GC_ERR_SUCCESS);
    uint32_t interfaces = 0;
    EXPECT_EQ(count(system, &interfaces), GC_ERR_SUCCESS);
    EXPECT_GE(interfaces, 1u);  // loopback at least
    // Unloading without GCCloseLib must not crash: the library closes itself.
    EXPECT_EQ(dlclose(library), 0);
    (void)close;
}

}  // namespace
