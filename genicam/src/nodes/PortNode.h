// A port node: where the node map reaches the device (or another port).
#pragma once

#include "nodes/Facades.h"

namespace RyGenApi::detail {

class PortNode : public Node, public virtual IPort {
  public:
    PortNode(NodeMapImpl& map, std::string_view name) : Node(map, name, intfIPort) {}
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    bool IsConnected() const { return connected_ != nullptr; }
    void Connect(IPort* port) { connected_ = port; }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override { return connected_ ? RW : NA; }

  private:
    IPort* connected_ = nullptr;
    bool swapEndianess_ = false;
};

}  // namespace RyGenApi::detail
