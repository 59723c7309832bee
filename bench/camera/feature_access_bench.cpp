// ry-camera-feature-bench: what one feature access costs through the SDK beside Aravis, on
// one emulated camera in the same run. Ours: a read the node map serves from its cache, a
// read after the cache was dropped (one register round trip), writes with verification of a
// feature the camera takes as it is (ExposureTime) and of one that makes it rebuild its
// frame layout (Width), reads by name, and one bare register read through the SDK
// (ReadData) and through the transport layer alone, the floor of any uncached access.
// Beside them Aravis's reads of the same feature with its register cache off (its default)
// and on. Each figure is the median over batches, in microseconds per access.
//   bash scripts/in-private-net.sh build/bin/ry-camera-feature-bench [--cycles=N]
#include <arv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "RyGenTL.h"
#include "first_camera.h"
#include "loop_program.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kPerBatch = 100;
constexpr int kRounds = 3;
constexpr uint64_t kWidthRegister = 0x30000;  // emulator/src/feature_registers.h
constexpr const char* kBareRow = "transport GCReadPort, one register";
constexpr const char* kCachedRow = "ours GetWidth, cached";
constexpr const char* kUncachedRow = "ours GetWidth after InvalidateNodes";
constexpr const char* kAravisDeviceRow = "aravis arv_device_get_integer_feature_value";

// Microseconds per call of every batch of every row, the rows in the order first measured.
class Table {
  public:
    void Measure(const std::string& name, int batches, const std::function<void()>& call) {
        std::vector<double>& samples = Samples(name);
        for (int b = 0; b < batches; ++b) {
            const auto start = Clock::now();
            for (int i = 0; i < kPerBatch; ++i)
                call();
            samples.push_back(
                std::chrono::duration<double, std::micro>(Clock::now() - start).count() /
                kPerBatch);
        }
    }

    double Median(const std::string& name) {
        std::vector<double> samples = Samples(name);
        if (samples.empty())
            return 0.0;
        std::sort(samples.begin(), samples.end());
        return samples[samples.size() / 2];
    }

    void Print() {
        for (const auto& [name, samples] : rows_)
            std::printf("%-52s %9.3f\n", name.c_str(), Median(name));
    }

  private:
    std::vector<double>& Samples(const std::string& name) {
        for (auto& [rowName, samples] : rows_)
            if (rowName == name)
                return samples;
        return rows_.emplace_back(name, std::vector<double>{}).second;
    }

    std::vector<std::pair<std::string, std::vector<double>>> rows_;
};

// The transport layer alone: open the camera by its address on whichever interface reaches
// it and read the Width register.
class BareDevice {
  public:
    BareDevice() {
        if (GCInitLib() != GC_ERR_SUCCESS || TLOpen(&system_) != GC_ERR_SUCCESS)
            return;
        bool8_t changed = 0;
        uint32_t interfaces = 0;
        TLUpdateInterfaceList(system_, &changed, 100);
        TLGetNumInterfaces(system_, &interfaces);
        for (uint32_t i = 0; i < interfaces && device_ == nullptr; ++i)
            TryInterface(i);
    }
    ~BareDevice() {
        if (device_ != nullptr)
            DevClose(device_);
        if (iface_ != nullptr)
            IFClose(iface_);
        if (system_ != nullptr)
            TLClose(system_);
        GCCloseLib();
    }
    BareDevice(const BareDevice&) = delete;
    BareDevice& operator=(const BareDevice&) = delete;

    bool IsOpen() const { return device_ != nullptr; }
    void ReadWidth() {
        uint32_t value = 0;
        size_t size = sizeof value;
        GCReadPort(device_, kWidthRegister, &value, &size);
    }

  private:
    void TryInterface(uint32_t index) {
        char id[128];
        size_t size = sizeof id;
        if (TLGetInterfaceID(system_, index, id, &size) != GC_ERR_SUCCESS ||
            TLOpenInterface(system_, id, &iface_) != GC_ERR_SUCCESS)
            return;
        bool8_t changed = 0;
        IFUpdateDeviceList(iface_, &changed, 300);
        if (IFOpenDevice(iface_, rytest::kEmulatedCameraAddress, DEVICE_ACCESS_CONTROL, &device_) !=
            GC_ERR_SUCCESS) {
            device_ = nullptr;
            IFClose(iface_);
            iface_ = nullptr;
        }
    }

    TL_HANDLE system_ = nullptr;
    IF_HANDLE iface_ = nullptr;
    DEV_HANDLE device_ = nullptr;
};

bool MeasureBare(int batches, Table& table) {
    BareDevice device;
    if (!device.IsOpen()) {
        std::fprintf(stderr, "the transport layer did not open the emulated camera\n");
        return false;
    }
    table.Measure(kBareRow, batches, [&] { device.ReadWidth(); });
    return true;
}

bool MeasureOurs(int batches, Table& table) {
    rytest::FirstCamera first;
    RYSDK::RyCamera* camera = first.Open();
    if (camera == nullptr) {
        std::fprintf(stderr, "the emulated camera did not open\n");
        return false;
    }
    // A figure of calls that failed would say nothing: every result is checked.
    bool ok = true;
    auto check = [&](RYSDK::RESULT result) { ok = ok && result == RYSDK::RESULT_SUCCESS; };
    unsigned int width = 0;
    unsigned int exposure = 0;
    RYSDK::PIXEL_FORMAT format{};
    char text[32];
    auto byName = [&] {
        uint64_t size = sizeof(text);
        check(camera->GetCustomCommand("Width", text, &size));
    };
    uint8_t word[4];
    table.Measure("ours ReadData, one register", batches, [&] {
        int64_t size = sizeof(word);
        check(camera->ReadData(word, kWidthRegister, &size));
    });
    check(camera->GetWidth(&width));
    table.Measure(kCachedRow, batches, [&] { check(camera->GetWidth(&width)); });
    table.Measure("ours GetPixelFormat, cached", batches,
                  [&] { check(camera->GetPixelFormat(&format)); });
    table.Measure("ours GetCustomCommand(\"Width\"), cached", batches, byName);
    table.Measure("ours InvalidateNodes alone", batches, [&] { check(camera->InvalidateNodes()); });
    table.Measure(kUncachedRow, batches, [&] {
        camera->InvalidateNodes();
        check(camera->GetWidth(&width));
    });
    table.Measure("ours GetCustomCommand after InvalidateNodes", batches, [&] {
        camera->InvalidateNodes();
        byName();
    });
    check(camera->GetExposureTime(&exposure));
    unsigned int nextExposure = exposure;
    table.Measure("ours SetExposureTime, with verification", batches, [&] {
        nextExposure = nextExposure == exposure ? exposure + 10 : exposure;
        check(camera->SetExposureTime(nextExposure));
    });
    // Last: every width change makes the emulator lay its frames out anew.
    unsigned int nextWidth = 640;
    table.Measure("ours SetWidth, with verification", batches, [&] {
        nextWidth = nextWidth == 640 ? 644 : 640;
        check(camera->SetWidth(nextWidth));
    });
    if (!ok)
        std::fprintf(stderr, "a measured call of ours failed\n");
    return first.Gige().CloseCamera(camera) == RYSDK::RESULT_SUCCESS && ok;
}

bool MeasureAravis(int batches, Table& table) {
    arv_update_device_list();
    GError* error = nullptr;
    ArvCamera* peer = arv_camera_new(rytest::kEmulatedCameraAddress, &error);
    if (peer == nullptr) {
        std::fprintf(stderr, "Aravis: %s\n", error != nullptr ? error->message : "no camera");
        g_clear_error(&error);
        return false;
    }
    ArvDevice* device = arv_camera_get_device(peer);
    if (arv_device_get_integer_feature_value(device, "Width", &error) <= 0) {
        std::fprintf(stderr, "Aravis does not read the width\n");
        g_clear_error(&error);
        g_object_unref(peer);
        return false;
    }
    auto measure = [&](const char* suffix) {
        table.Measure(std::string("aravis arv_camera_get_integer") + suffix, batches,
                      [&] { arv_camera_get_integer(peer, "Width", nullptr); });
        table.Measure(std::string(kAravisDeviceRow) + suffix, batches,
                      [&] { arv_device_get_integer_feature_value(device, "Width", nullptr); });
    };
    measure("");
    arv_device_set_register_cache_policy(device, ARV_REGISTER_CACHE_POLICY_ENABLE);
    measure(", cache on");
    g_object_unref(peer);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    int batches = 10;
    if (const int status = rytest::PrepareLoopProgram(argc, argv, batches); status != 0)
        return status;
    const ry::emulator::Camera emulator(rytest::EmulatedCameraConfig());
    Table table;
    // The sides take turns, each holding the camera's control channel while it measures;
    // several rounds spread the load of a shared machine over all of them.
    for (int round = 0; round < kRounds; ++round) {
        if (!MeasureBare(batches, table) || !MeasureOurs(batches, table) ||
            !MeasureAravis(batches, table))
            return 1;
    }
    std::printf("feature access, microseconds per call (median of %d batches of %d)\n",
                kRounds * batches, kPerBatch);
    table.Print();
    const double bare = table.Median(kBareRow);
    const double uncached = table.Median(kUncachedRow);
    std::printf("%-52s %9.2f\n", "uncached GetWidth / one register read", uncached / bare);
    std::printf("%-52s %9.2f\n", "aravis uncached read / ours uncached",
                table.Median(kAravisDeviceRow) / uncached);
    std::printf("%-52s %9.2f\n", "aravis uncached read / ours cached",
                table.Median(kAravisDeviceRow) / table.Median(kCachedRow));
    return 0;
}
