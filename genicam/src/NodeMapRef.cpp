#include "ry/genicam/NodeMapRef.h"

#include <fstream>
#include <iterator>

#include "loader/ZipReader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi {

namespace {

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw RuntimeException("", "cannot open file '" + path + "'");
    }
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

const std::vector<std::string>& NoWarnings() {
    static const std::vector<std::string> kEmpty;
    return kEmpty;
}

}  // namespace

CNodeMapRef::CNodeMapRef(std::string deviceName) : deviceName_(std::move(deviceName)) {}
CNodeMapRef::~CNodeMapRef() = default;
CNodeMapRef::CNodeMapRef(CNodeMapRef&&) noexcept = default;
CNodeMapRef& CNodeMapRef::operator=(CNodeMapRef&&) noexcept = default;

void CNodeMapRef::_LoadXMLFromString(const std::string& xml) {
    if (impl_) {
        throw LogicalErrorException("", "node map '" + deviceName_ + "' is already loaded");
    }
    auto impl = std::make_unique<detail::NodeMapImpl>(deviceName_);
    impl->Load(xml);
    impl_ = std::move(impl);
}

void CNodeMapRef::_LoadXMLFromFile(const std::string& path) {
    _LoadXMLFromString(ReadWholeFile(path));
}

void CNodeMapRef::_LoadXMLFromZIPData(const void* data, size_t size) {
    _LoadXMLFromString(detail::ExtractFirstZipMember(data, size));
}

void CNodeMapRef::_LoadXMLFromZIPFile(const std::string& path) {
    const std::string data = ReadWholeFile(path);
    _LoadXMLFromZIPData(data.data(), data.size());
}

bool CNodeMapRef::_Connect(IPort* port, const std::string& portName) const {
    return impl_ && impl_->Connect(port, portName);
}

bool CNodeMapRef::_Connect(IPort* port) const {
    return impl_ && impl_->Connect(port);
}

INode* CNodeMapRef::_GetNode(const std::string& name) const {
    return impl_ ? impl_->GetNode(name) : nullptr;
}

INodeMap* CNodeMapRef::_GetNodeMap() const {
    return impl_.get();
}

void CNodeMapRef::_InvalidateNodes() const {
    if (impl_) {
        impl_->InvalidateNodes();
    }
}

void CNodeMapRef::_Poll(int64_t elapsedMilliseconds) const {
    if (impl_) {
        impl_->Poll(elapsedMilliseconds);
    }
}

const std::vector<std::string>& CNodeMapRef::_GetLoadWarnings() const {
    return impl_ ? impl_->Warnings() : NoWarnings();
}

void CNodeMapRef::_Destroy() {
    impl_.reset();
}

}  // namespace RyGenApi
