// RyCamera: construction, copies, destruction and the plain getters.
#include <chrono>
#include <cstring>

#include "acquisition/acquisition_threads.h"
#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "camera/device_description.h"
#include "camera/worker_stop.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::camera {

namespace {

// The destructor gives each thread this long before leaving it to end by itself.
constexpr std::chrono::milliseconds kDestructorThreadWait{50};

}  // namespace

CameraShared::~CameraShared() {
    static constexpr core::LogSite kSite{L"RyCamera", L"RYSDK::RyCamera::~RyCamera"};
    acquisition::StopAcquisitionThreads(*this, acquisition::kDestructorWaits, kSite);
    acquisition::ReleaseRetiredThreads(*this, kDestructorThreadWait);
    signals->stop.Set();
    signals->exitRequest.store(1);
    StopWorker(connectionThread, kDestructorThreadWait);
    StopWorker(generalEventThread, kDestructorThreadWait);
    if (stream != nullptr)
        TL().DSClose(stream);
    if (device != nullptr) {
        if (privilege != CCP_PRIVILEGE_MONITOR)
            TL().CloseCCP(device);
        TL().DevClose(device);
    }
    port->SetPortHandle(nullptr);
}

}  // namespace RYSDK::camera

namespace RYSDK {

using camera::TL;

RyCamera::RyCamera() {
    Initialize();
}

RyCamera::RyCamera(RyInterface* adapter, uint32_t mode)
    : m_pRyInterface(adapter), m_StreamMode(static_cast<int32_t>(mode)) {
    Initialize();
}

RyCamera::RyCamera(const RyCamera& other) = default;
RyCamera& RyCamera::operator=(const RyCamera& other) = default;

// Copies share one state; whatever the last of them leaves running is ended by the state.
RyCamera::~RyCamera() = default;

void RyCamera::Initialize() {
    m_Shared = std::make_shared<camera::CameraShared>();
    m_NumBuffer = 0;
    m_PlainDevice = 0;
    m_AcquisitionTimeout = 5000;
    m_StreamMode = 1;
    m_LastFrameNumber = 0xFFFFFFFF;
}

RESULT RyCamera::GetRyInterface(RyInterface** adapter) {
    if (m_pRyInterface == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    if (adapter == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *adapter = m_pRyInterface;
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetDeviceHandle(TransportHandle* device) {
    if (device == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *device = m_Shared->device;
    return RESULT_SUCCESS;
}

RESULT RyCamera::SetCCPPrivilege(CCP_PRIVILEGE privilege) {
    m_Privilege = privilege;
    return RESULT_SUCCESS;
}

int RyCamera::GetXML(TransportHandle device, char** data, uint32_t* size, int* zipped) {
    RY_CAMERA_SITE(GetXML);
    const RESULT result = RY_GUARDED(kSite, [&] {
        if (data == nullptr || size == nullptr || zipped == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        camera::RawDescription description;
        if (!camera::ReadRawDescription(device, kSite, description))
            return RESULT_ERROR;
        *size = description.length;
        *zipped = description.zipped ? 1 : 0;
        *data = description.data.release();
        return RESULT_SUCCESS;
    });
    return result == RESULT_SUCCESS ? 1 : 0;
}

std::string RyCamera::GetXML(TransportHandle device, int /*unused*/) {
    RY_CAMERA_SITE(GetXML);
    std::string text;
    const RESULT result = RY_GUARDED(kSite, [&] {
        camera::RawDescription description;
        if (!camera::ReadRawDescription(device, kSite, description) ||
            !camera::DecodeDescription(description, kSite, text)) {
            return RESULT_ERROR;
        }
        return RESULT_SUCCESS;
    });
    if (result != RESULT_SUCCESS)
        text.clear();
    return text;
}

}  // namespace RYSDK
