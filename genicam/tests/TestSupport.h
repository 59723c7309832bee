// Helpers shared by the node map tests: a register space in memory behind IPort and a
// wrapper that turns a few node elements into a complete description document.
#pragma once

#include <minizip/zip.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "ry/genicam/Exceptions.h"
#include "ry/genicam/NodeMapRef.h"

namespace RyGenApi::testing {

class MemoryPort : public IPort {
  public:
    EAccessMode GetAccessMode() const override { return RW; }

    void Read(void* buffer, int64_t address, int64_t length) override {
        ++reads;
        auto* bytes = static_cast<uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i) {
            const auto found = memory.find(address + i);
            bytes[i] = found == memory.end() ? 0 : found->second;
        }
    }

    void Write(const void* buffer, int64_t address, int64_t length) override {
        ++writes;
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i) {
            memory[address + i] = bytes[i];
        }
        if (onWrite) {
            onWrite(address, length);
        }
    }

    void Poke32BigEndian(int64_t address, uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            memory[address + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
        }
    }
    void Poke32LittleEndian(int64_t address, uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            memory[address + i] = static_cast<uint8_t>(value >> (8 * i));
        }
    }
    void PokeBytes(int64_t address, const std::vector<uint8_t>& bytes) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            memory[address + static_cast<int64_t>(i)] = bytes[i];
        }
    }
    uint32_t Peek32LittleEndian(int64_t address) const {
        uint32_t value = 0;
        for (int i = 3; i >= 0; --i) {
            const auto found = memory.find(address + i);
            value = (value << 8) | (found == memory.end() ? 0 : found->second);
        }
        return value;
    }
    uint32_t Peek32BigEndian(int64_t address) const {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const auto found = memory.find(address + i);
            value = (value << 8) | (found == memory.end() ? 0 : found->second);
        }
        return value;
    }

    std::map<int64_t, uint8_t> memory;
    int reads = 0;
    int writes = 0;
    std::function<void(int64_t, int64_t)> onWrite;
};

// Builds a zip archive with one deflated member, through a temporary file.
inline std::string ZipOf(const std::string& memberName, const std::string& content) {
    char path[] = "/tmp/ry-genicam-zip-XXXXXX";
    const int fd = mkstemp(path);
    close(fd);
    zipFile zip = zipOpen(path, APPEND_STATUS_CREATE);
    zip_fileinfo info{};
    zipOpenNewFileInZip(zip, memberName.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                        Z_BEST_COMPRESSION);
    zipWriteInFileInZip(zip, content.data(), static_cast<unsigned>(content.size()));
    zipCloseFileInZip(zip);
    zipClose(zip, nullptr);
    std::ifstream file(path, std::ios::binary);
    std::string data((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::remove(path);
    return data;
}

inline std::string Describe(const std::string& nodes, const char* schemaMinor = "1") {
    return std::string(
               "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<RegisterDescription ModelName=\"Test\" VendorName=\"Test\" "
               "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"") +
           schemaMinor +
           "\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_" +
           schemaMinor + "\">\n" + nodes + "\n<Port Name=\"Device\"/>\n</RegisterDescription>\n";
}

// A loaded node map connected to a memory port.
struct Fixture {
    explicit Fixture(const std::string& nodes) {
        map._LoadXMLFromString(Describe(nodes));
        map._Connect(&port);
    }
    template <typename T>
    T* Get(const std::string& name) {
        INode* node = map._GetNode(name);
        if (node == nullptr) {
            throw std::runtime_error("no node " + name);
        }
        T* typed = dynamic_cast<T*>(node);
        if (typed == nullptr) {
            throw std::runtime_error("node " + name + " has another interface");
        }
        return typed;
    }
    MemoryPort port;
    CNodeMapRef map{"Device"};
};

}  // namespace RyGenApi::testing
