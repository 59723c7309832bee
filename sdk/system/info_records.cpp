#include <cstring>
#include <iterator>

#include "rysdk/RyInfo.h"

namespace RYSDK {

RYCAMERA_INFO::RYCAMERA_INFO() noexcept
    : m_ErrorFlag(0),
      m_Result(RESULT_COUNT),
      m_DeviceIndex(0),
      m_Name{},
      m_ModelName{},
      m_ManufacturerName{},
      m_IPAddress{},
      m_MACAddress{} {}

RYINTERFACE_INFO::RYINTERFACE_INFO() noexcept
    : m_ErrorFlag(0), m_Result(RESULT_SUCCESS), m_Index(0), m_Name{}, m_CameraCount(0) {}

// A copy owns copies of the camera records, so each record has exactly one owner.
RYINTERFACE_INFO::RYINTERFACE_INFO(const RYINTERFACE_INFO& other)
    : m_ErrorFlag(other.m_ErrorFlag),
      m_Result(other.m_Result),
      m_Index(other.m_Index),
      m_Name{},
      m_CameraCount(0) {
    std::memcpy(m_Name, other.m_Name, sizeof(m_Name));
    for (const auto& camera : other.m_CameraList) {
        m_CameraList.push_back(std::make_unique<RYCAMERA_INFO>(*camera));
    }
    m_CameraCount = m_CameraList.size();
}

RYINTERFACE_INFO& RYINTERFACE_INFO::operator=(const RYINTERFACE_INFO& other) {
    if (this != &other) {
        RYINTERFACE_INFO copy(other);
        m_ErrorFlag = copy.m_ErrorFlag;
        m_Result = copy.m_Result;
        m_Index = copy.m_Index;
        std::memcpy(m_Name, copy.m_Name, sizeof(m_Name));
        m_CameraList.swap(copy.m_CameraList);
        m_CameraCount = copy.m_CameraCount;
    }
    return *this;
}

RYINTERFACE_INFO::~RYINTERFACE_INFO() = default;

void RYINTERFACE_INFO::AddCameraInfo(RYCAMERA_INFO* camera) {
    if (camera == nullptr)
        return;
    m_CameraList.emplace_back(camera);
    m_CameraCount = m_CameraList.size();
}

void RYINTERFACE_INFO::ClearCameraInfo() noexcept {
    m_CameraList.clear();
    m_CameraCount = 0;
}

const RYCAMERA_INFO* RYINTERFACE_INFO::GetCameraInfo(size_t position) const noexcept {
    if (position >= m_CameraList.size())
        return nullptr;
    auto it = m_CameraList.begin();
    std::advance(it, static_cast<std::ptrdiff_t>(position));
    return it->get();
}

}  // namespace RYSDK
