// Owner of one node map. Created empty with a device name, then loaded once from the
// camera's description (plain XML text or a zip archive holding it) and connected to a port.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "ry/genicam/Interfaces.h"

namespace RyGenApi {

namespace detail {
class NodeMapImpl;
}

class CNodeMapRef {
  public:
    explicit CNodeMapRef(std::string deviceName = "Device");
    ~CNodeMapRef();
    CNodeMapRef(const CNodeMapRef&) = delete;
    CNodeMapRef& operator=(const CNodeMapRef&) = delete;
    CNodeMapRef(CNodeMapRef&&) noexcept;
    CNodeMapRef& operator=(CNodeMapRef&&) noexcept;

    // Throws RuntimeException naming the fault when the text is not a usable description
    // or when a node map is already loaded.
    void _LoadXMLFromString(const std::string& xml);
    void _LoadXMLFromFile(const std::string& path);
    // The archive must hold the description as its first (usually only) member.
    void _LoadXMLFromZIPData(const void* data, size_t size);
    void _LoadXMLFromZIPFile(const std::string& path);

    bool _Connect(IPort* port, const std::string& portName) const;
    // Connects to the port node named "Device", or to "CameraPort" when the file has no
    // node of the first name.
    bool _Connect(IPort* port) const;

    INode* _GetNode(const std::string& name) const;
    INodeMap* _GetNodeMap() const;
    std::string _GetDeviceName() const { return deviceName_; }
    void _InvalidateNodes() const;
    void _Poll(int64_t elapsedMilliseconds) const;
    bool _IsLoaded() const { return impl_ != nullptr; }
    // Non-fatal findings of the load (unknown keywords, defaults applied).
    const std::vector<std::string>& _GetLoadWarnings() const;
    void _Destroy();

  private:
    std::string deviceName_;
    std::unique_ptr<detail::NodeMapImpl> impl_;
};

}  // namespace RyGenApi
