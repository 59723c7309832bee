// Camera events routed by identifier to the application's callbacks, and the polling
// times the node map gives its features.
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "RyGenTL.h"
#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

static_assert(sizeof(RyGenICam::EVENT_DATA) == sizeof(RY_EVENT_DATA));
static_assert(offsetof(RyGenICam::EVENT_DATA, object) == offsetof(RY_EVENT_DATA, object));
static_assert(offsetof(RyGenICam::EVENT_DATA, context) == offsetof(RY_EVENT_DATA, context));
static_assert(offsetof(RyGenICam::EVENT_DATA, data) == offsetof(RY_EVENT_DATA, data));

// The transport layer calls this with the camera as the route's context.
void RyCamera::EventControlCallback(char* eventName, RyGenICam::EVENT_DATA* eventData) {
    if (eventData == nullptr || eventData->context == nullptr)
        return;
    auto* camera = static_cast<RyCamera*>(eventData->context);
    camera::EventRoute route;
    {
        std::lock_guard lock(camera->m_Shared->eventMutex);
        for (const camera::EventRoute& candidate : camera->m_Shared->eventRoutes) {
            if (candidate.eventId == eventData->eventId) {
                route = candidate;
                break;
            }
        }
    }
    eventData->object = camera;
    eventData->context = route.context;
    if (route.callback != nullptr)
        route.callback(eventName, eventData);
}

RESULT RyCamera::InitEventControl() {
    RY_CAMERA_SITE(InitEventControl);
    return RY_GUARDED(kSite, [&] {
        if (!m_Shared->nodeMap)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        RyGenApi::INode* node = m_Shared->nodeMap->map._GetNode("EventSelector");
        if (node == nullptr)
            return RESULT_ERROR_XML_NOT_EXIST_NODE;
        auto* selector = dynamic_cast<RyGenApi::IEnumeration*>(node);
        if (selector == nullptr)
            return RESULT_ERROR_INVALID_HANDLE;
        if (!RyGenApi::IsReadable(node->GetAccessMode()))
            return RESULT_ERROR;
        // The transport layer's record is the application's, field for field.
        const RY_EVENT_CALLBACK fromTransport = [](char* eventName, RY_EVENT_DATA* eventData) {
            EventControlCallback(eventName, reinterpret_cast<RyGenICam::EVENT_DATA*>(eventData));
        };
        RyGenApi::NodeList_t entries;
        selector->GetEntries(entries);
        for (RyGenApi::INode* entry : entries) {
            auto* value = dynamic_cast<RyGenApi::IEnumEntry*>(entry);
            if (value == nullptr || !RyGenApi::IsAvailable(entry->GetAccessMode()))
                continue;
            const std::string name = value->GetSymbolic();
            camera::TL().DevSetEventControl(m_Shared->device,
                                            static_cast<uint32_t>(value->GetValue()), name.c_str(),
                                            name.size(), fromTransport, this);
        }
        m_EventControlInitialized = 1;
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::SetEventControlCallback(uint32_t eventId, const char* /*eventName*/,
                                         uint64_t /*eventNameLength*/, pEventCallbackFn callback,
                                         void* context) {
    if (m_EventControlInitialized == 0 && InitEventControl() != RESULT_SUCCESS)
        return RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT;
    std::lock_guard lock(m_Shared->eventMutex);
    m_Shared->eventRoutes.push_back({static_cast<uint16_t>(eventId), callback, context});
    return RESULT_SUCCESS;
}

int RyCamera::GetPollingTime(const char* nodeName) {
    return m_Shared->nodeMap ? GetPollingTime(&m_Shared->nodeMap->map, nodeName) : 0;
}

int RyCamera::GetPollingTime(RyGenApi::CNodeMapRef* nodeMap, const char* nodeName) {
    RY_CAMERA_SITE(GetPollingTime);
    int pollingTime = 0;
    RY_GUARDED(kSite, [&] {
        if (nodeMap == nullptr || nodeName == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        RyGenApi::INode* node = nodeMap->_GetNode(nodeName);
        if (node == nullptr)
            return RESULT_ERROR_XML_NOT_EXIST_NODE;
        if (node->GetPollingTime() != -1) {
            pollingTime = static_cast<int>(node->GetPollingTime());
            return RESULT_SUCCESS;
        }
        // A feature that is not polled itself takes the polling time of its value node.
        const std::string valueNode = GetNodeItemValue(nodeMap, nodeName, "pValue");
        if (!valueNode.empty())
            pollingTime =
                std::atoi(GetNodeItemValue(nodeMap, valueNode.c_str(), "PollingTime").c_str());
        return RESULT_SUCCESS;
    });
    return pollingTime;
}

RESULT RyCamera::GetPollingTime(RyGenApi::INode* node, int64_t* pollingTime) {
    if (node == nullptr || pollingTime == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *pollingTime = node->GetPollingTime();
    return RESULT_SUCCESS;
}

std::string RyCamera::GetNodeItemValue(RyGenApi::CNodeMapRef* nodeMap, const char* nodeName,
                                       const char* itemName) {
    if (nodeMap == nullptr || nodeName == nullptr || itemName == nullptr)
        return {};
    RyGenApi::INode* node = nodeMap->_GetNode(nodeName);
    std::string value, attribute;
    if (node == nullptr || !node->GetProperty(itemName, value, attribute))
        return {};
    return value;
}

}  // namespace RYSDK
