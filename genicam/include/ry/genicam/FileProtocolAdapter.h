// Reads and writes files stored in a device through its standard file access features
// (FileSelector, FileOperationSelector, FileOperationExecute, FileAccessBuffer ...).
#pragma once

#include <chrono>
#include <cstdint>
#include <ios>
#include <string>

#include "ry/genicam/Interfaces.h"

namespace RyGenApi {

class FileProtocolAdapter {
  public:
    FileProtocolAdapter() = default;

    // Looks the file access features up; false when a required one is missing. No device
    // traffic happens here.
    bool attach(INodeMap* nodeMap);
    bool isAttached() const { return fileSelector_ != nullptr; }

    // Opens `fileName` (an entry of FileSelector) for reading (std::ios::in), writing
    // (std::ios::out) or both. False when the name or mode is unknown to the device or the
    // device reports a failure.
    bool openFile(const char* fileName, std::ios_base::openmode mode);
    bool closeFile(const char* fileName);
    bool deleteFile(const char* fileName);

    // Transfers in chunks of at most getBufSize() bytes; returns the bytes moved. Fewer than
    // asked means end of file (read) or a device failure (write).
    std::streamsize read(char* buffer, int64_t offset, std::streamsize length,
                         const char* fileName);
    std::streamsize write(const char* buffer, int64_t offset, int64_t length, const char* fileName);

    // Largest chunk one transfer can carry for this file and direction.
    int64_t getBufSize(const char* fileName, std::ios_base::openmode mode);
    // Size reported by FileSize, or -1 when the device has no such feature.
    int64_t getFileSize(const char* fileName);

    void setTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }
    // Text of the last status failure ("" when the last operation succeeded).
    const std::string& lastStatus() const { return lastStatus_; }

  private:
    bool Select(const char* fileName, const char* operation);
    bool ExecuteAndCheck();
    void WaitUntilDone();
    int64_t ChunkLimit();
    // Runs one read or write step at `position`; returns the bytes moved, -1 on failure.
    int64_t Transfer(int64_t position, int64_t chunk);

    IEnumeration* fileSelector_ = nullptr;
    IEnumeration* operationSelector_ = nullptr;
    ICommand* operationExecute_ = nullptr;
    IEnumeration* openMode_ = nullptr;
    IRegister* accessBuffer_ = nullptr;
    IInteger* accessOffset_ = nullptr;
    IInteger* accessLength_ = nullptr;
    IEnumeration* operationStatus_ = nullptr;
    IInteger* operationResult_ = nullptr;
    IInteger* fileSize_ = nullptr;
    std::chrono::milliseconds timeout_{2000};
    std::string lastStatus_;
};

}  // namespace RyGenApi
