#include "ry/genicam/FileProtocolAdapter.h"

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

#include "ry/genicam/Exceptions.h"

namespace RyGenApi {

namespace {

template <typename T>
T* Lookup(INodeMap* map, const char* name) {
    return dynamic_cast<T*>(map->GetNode(name));
}

const char* OpenModeName(std::ios_base::openmode mode) {
    const bool in = (mode & std::ios_base::in) != 0;
    const bool out = (mode & std::ios_base::out) != 0;
    if (in && out) {
        return "ReadWrite";
    }
    if (in) {
        return "Read";
    }
    return out ? "Write" : nullptr;
}

bool HasAvailableEntry(IEnumeration* enumeration, const char* symbolic) {
    IEnumEntry* entry = enumeration->GetEntryByName(symbolic);
    return entry != nullptr && IsAvailable(entry->GetNode()->GetAccessMode());
}

}  // namespace

bool FileProtocolAdapter::attach(INodeMap* nodeMap) {
    fileSelector_ = nullptr;
    if (nodeMap == nullptr) {
        return false;
    }
    auto* fileSelector = Lookup<IEnumeration>(nodeMap, "FileSelector");
    operationSelector_ = Lookup<IEnumeration>(nodeMap, "FileOperationSelector");
    operationExecute_ = Lookup<ICommand>(nodeMap, "FileOperationExecute");
    openMode_ = Lookup<IEnumeration>(nodeMap, "FileOpenMode");
    accessBuffer_ = Lookup<IRegister>(nodeMap, "FileAccessBuffer");
    accessOffset_ = Lookup<IInteger>(nodeMap, "FileAccessOffset");
    accessLength_ = Lookup<IInteger>(nodeMap, "FileAccessLength");
    operationStatus_ = Lookup<IEnumeration>(nodeMap, "FileOperationStatus");
    operationResult_ = Lookup<IInteger>(nodeMap, "FileOperationResult");
    fileSize_ = Lookup<IInteger>(nodeMap, "FileSize");
    if (fileSelector == nullptr || operationSelector_ == nullptr || operationExecute_ == nullptr ||
        openMode_ == nullptr || accessBuffer_ == nullptr || accessOffset_ == nullptr ||
        accessLength_ == nullptr || operationStatus_ == nullptr || operationResult_ == nullptr) {
        return false;
    }
    fileSelector_ = fileSelector;
    return true;
}

// Selected features follow their selectors, and other code may have moved FileSelector,
// so every operation selects the file first and the operation second.
bool FileProtocolAdapter::Select(const char* fileName, const char* operation) {
    if (!isAttached() || fileName == nullptr || !HasAvailableEntry(fileSelector_, fileName) ||
        !HasAvailableEntry(operationSelector_, operation)) {
        return false;
    }
    fileSelector_->FromString(fileName);
    operationSelector_->FromString(operation);
    return true;
}

// Some devices make the file features unavailable while an operation runs, so the wait
// lasts until the command is done and the status can be read again.
void FileProtocolAdapter::WaitUntilDone() {
    const auto deadline = std::chrono::steady_clock::now() + timeout_;
    INode* status = operationStatus_->GetNode();
    for (;;) {
        if (operationExecute_->IsDone()) {
            status->InvalidateNode();
            if (IsReadable(status->GetAccessMode())) {
                return;
            }
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            throw TimeoutException(operationExecute_->GetNode()->GetName(),
                                   "file operation did not finish in time");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool FileProtocolAdapter::ExecuteAndCheck() {
    operationExecute_->Execute();
    WaitUntilDone();
    const std::string status = operationStatus_->GetCurrentEntry(false, true)->GetSymbolic();
    lastStatus_ = status == "Success" ? std::string() : status;
    return status == "Success";
}

bool FileProtocolAdapter::openFile(const char* fileName, std::ios_base::openmode mode) {
    const char* modeName = OpenModeName(mode);
    if (modeName == nullptr || !isAttached() || !HasAvailableEntry(openMode_, modeName) ||
        !Select(fileName, "Open")) {
        return false;
    }
    openMode_->FromString(modeName);
    return ExecuteAndCheck();
}

bool FileProtocolAdapter::closeFile(const char* fileName) {
    return Select(fileName, "Close") && ExecuteAndCheck();
}

bool FileProtocolAdapter::deleteFile(const char* fileName) {
    return Select(fileName, "Delete") && ExecuteAndCheck();
}

int64_t FileProtocolAdapter::ChunkLimit() {
    int64_t limit = accessBuffer_->GetLength();
    if (IsReadable(accessLength_->GetNode()->GetAccessMode())) {
        limit = std::min(limit, accessLength_->GetMax());
    }
    return limit;
}

int64_t FileProtocolAdapter::Transfer(int64_t position, int64_t chunk) {
    // Some devices advance the offset themselves and make it read-only.
    if (IsWritable(accessOffset_->GetNode()->GetAccessMode())) {
        accessOffset_->SetValue(position);
    } else if (accessOffset_->GetValue(false, true) != position) {
        return -1;
    }
    accessLength_->SetValue(chunk);
    if (!ExecuteAndCheck()) {
        return -1;
    }
    return std::min<int64_t>(operationResult_->GetValue(false, true), chunk);
}

int64_t FileProtocolAdapter::getBufSize(const char* fileName, std::ios_base::openmode mode) {
    const bool reading = (mode & std::ios_base::in) != 0;
    if (!Select(fileName, reading ? "Read" : "Write")) {
        return 0;
    }
    return ChunkLimit();
}

int64_t FileProtocolAdapter::getFileSize(const char* fileName) {
    if (fileSize_ == nullptr || !isAttached() || fileName == nullptr ||
        !HasAvailableEntry(fileSelector_, fileName)) {
        return -1;
    }
    fileSelector_->FromString(fileName);
    return fileSize_->GetValue(false, true);
}

std::streamsize FileProtocolAdapter::read(char* buffer, int64_t offset, std::streamsize length,
                                          const char* fileName) {
    if (buffer == nullptr || length <= 0 || offset < 0 || !Select(fileName, "Read")) {
        return 0;
    }
    const int64_t limit = ChunkLimit();
    if (limit <= 0) {
        return 0;
    }
    std::vector<uint8_t> window;
    std::streamsize done = 0;
    while (done < length) {
        const int64_t delivered = Transfer(offset + done, std::min<int64_t>(length - done, limit));
        if (delivered <= 0) {
            break;  // end of file or a failure
        }
        window.resize(static_cast<size_t>(accessBuffer_->GetLength()));
        accessBuffer_->Get(window.data(), static_cast<int64_t>(window.size()), false, true);
        const int64_t copied = std::min<int64_t>(delivered, static_cast<int64_t>(window.size()));
        std::memcpy(buffer + done, window.data(), static_cast<size_t>(copied));
        done += copied;
    }
    return done;
}

std::streamsize FileProtocolAdapter::write(const char* buffer, int64_t offset, int64_t length,
                                           const char* fileName) {
    if (buffer == nullptr || length <= 0 || offset < 0 || !Select(fileName, "Write")) {
        return 0;
    }
    const int64_t limit = ChunkLimit();
    if (limit <= 0) {
        return 0;
    }
    std::streamsize done = 0;
    while (done < length) {
        const int64_t chunk = std::min<int64_t>(length - done, limit);
        std::vector<uint8_t> window(static_cast<size_t>(accessBuffer_->GetLength()), 0);
        std::memcpy(window.data(), buffer + done, static_cast<size_t>(chunk));
        accessBuffer_->Set(window.data(), static_cast<int64_t>(window.size()));
        const int64_t accepted = Transfer(offset + done, chunk);
        if (accepted <= 0) {
            break;
        }
        done += accepted;
        if (accepted < chunk) {
            break;  // the device took less than offered: report the short count
        }
    }
    return done;
}

}  // namespace RyGenApi
