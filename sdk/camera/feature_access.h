// The steps every feature accessor of the camera takes: the node map test, the lookup by
// name, the cast to the interface the accessor needs and the access-mode tests, each with
// its result and log line. A node is looked up anew for every step; the node map's own
// index makes that cheap.
#pragma once

#include <vector>

#include "camera/camera_shared.h"
#include "core/log/log.h"
#include "rysdk/RyResult.h"

namespace RYSDK::camera {

class FeatureAccess {
  public:
    FeatureAccess(const CameraShared& shared, const core::LogSite& site) noexcept
        : FeatureAccess(shared.nodeMap.get(), site) {}
    // For the camera's worker threads, which hold the node map but not the camera.
    FeatureAccess(DeviceNodeMap* nodeMap, const core::LogSite& site) noexcept
        : nodeMap_(nodeMap), site_(site) {}

    // RESULT_ERROR_XML_NODE_ACCESS_FAILED, logged, while the camera has no node map.
    RESULT CheckNodeMap() const;

    // RESULT_ERROR_XML_NOT_EXIST_NODE, logged with `missingFormat` (one %ls: the name), when
    // the device has no node of that name.
    RESULT CheckExists(const char* name, const wchar_t* missingFormat) const;

    // The node cast to the accessor's interface, or null.
    template <typename Interface>
    Interface* As(const char* name) const {
        return dynamic_cast<Interface*>(nodeMap_->map._GetNode(name));
    }

    // RESULT_ERROR_RYCAMERA_READ_ONLY, logged as "<name>.AccessMode == R0", for a read-only
    // node.
    RESULT CheckNotReadOnly(RyGenApi::IBase& node, const char* name) const;

    const core::LogSite& Site() const noexcept { return site_; }

    // The enumeration's entries a caller may choose, in the feature's order: those neither
    // not implemented nor unavailable.
    static std::vector<RyGenApi::IEnumEntry*> AvailableEntries(RyGenApi::IEnumeration& node);

  private:
    DeviceNodeMap* nodeMap_;
    const core::LogSite& site_;
};

}  // namespace RYSDK::camera
