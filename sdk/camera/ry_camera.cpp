// RyCamera: construction, copies, destruction and the plain getters.
#include <chrono>
#include <cstring>

#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "camera/device_description.h"
#include "camera/worker_stop.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::TL;

namespace {

// The destructor gives each thread this long before leaving it to end by itself.
constexpr std::chrono::milliseconds kDestructorThreadWait{50};

// What the last holder of an open camera still holds when it is destroyed without a
// close: the stream and the device are given back rather than left to the transport layer.
void ReleaseTransport(camera::CameraShared& shared, CCP_PRIVILEGE privilege) {
    if (shared.stream != nullptr) {
        TL().DSClose(shared.stream);
        shared.stream = nullptr;
    }
    if (shared.device != nullptr) {
        if (privilege != CCP_PRIVILEGE_MONITOR)
            TL().CloseCCP(shared.device);
        TL().DevClose(shared.device);
        shared.device = nullptr;
    }
}

}  // namespace

RyCamera::RyCamera() {
    Initialize();
}

RyCamera::RyCamera(RyInterface* adapter, uint32_t mode)
    : m_pRyInterface(adapter), m_StreamMode(static_cast<int32_t>(mode)) {
    Initialize();
}

RyCamera::RyCamera(const RyCamera& other) = default;
RyCamera& RyCamera::operator=(const RyCamera& other) = default;

RyCamera::~RyCamera() {
    // Copies share one state; only the last of them ends the threads and frees it.
    if (!m_Shared || m_Shared.use_count() > 1)
        return;
    camera::CameraShared& shared = *m_Shared;
    shared.signals->stop.Set();
    shared.signals->exitRequest.store(1);
    camera::StopWorker(shared.connectionThread, kDestructorThreadWait);
    camera::StopWorker(shared.generalEventThread, kDestructorThreadWait);
    ReleaseTransport(shared, m_Privilege);
    shared.port->SetPortHandle(nullptr);
}

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
