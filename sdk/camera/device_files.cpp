// Files stored on the camera, read and written whole through the node map's device file
// streams, which move the data in the camera's own chunk size.
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "core/platform/text.h"
#include "ry/genicam/DevFileStream.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using core::kLogDebug;

namespace {

constexpr auto kOperationPollPause = std::chrono::milliseconds(200);
// A camera that never reports its file operation done would hold the writer forever; past
// this the write goes on to its close and reports what the stream saw.
constexpr auto kOperationWaitLimit = std::chrono::seconds(10);

constexpr const char* kStatusFeatures[] = {
    "FileOperationSelector", "FileAccessOffset", "FileAccessLength", "FileOperationStatus",
    "FileOperationResult",   "FileOpenMode",     "FileSize"};

void ReportOpen(const core::LogSite& site, const void* nodeMap, const char* fileName) {
    RY_LOG_EVENT(site, kLogDebug, L"Open - %d, %ls",
                 static_cast<int>(reinterpret_cast<uintptr_t>(nodeMap)),
                 core::Widen(fileName).c_str());
}

// Closing decides the result: a stream still failed after its close is a close failure.
template <typename Stream>
RESULT CloseStream(Stream& stream, RESULT whenFailedBefore) {
    const bool failedBefore = stream.fail();
    try {
        stream.close();
    } catch (...) {
        return RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE;
    }
    if (stream.fail())
        return RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE;
    return failedBefore ? whenFailedBefore : RESULT_SUCCESS;
}

template <typename Stream>
bool OpenStream(Stream& stream, RyGenApi::INodeMap* nodeMap, const char* fileName) {
    try {
        stream.open(nodeMap, fileName);
    } catch (...) {
        return false;
    }
    return stream.is_open() && !stream.fail();
}

// Waits until the camera reports its file operation done.
RESULT AwaitFileOperation(const camera::CameraShared& shared, const core::LogSite& site) {
    if (!shared.nodeMap)
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    RyGenApi::INode* node = shared.nodeMap->map._GetNode("FileOperationExecute");
    if (node == nullptr)
        return RESULT_ERROR_XML_NOT_EXIST_NODE;
    auto* execute = dynamic_cast<RyGenApi::ICommand*>(node);
    const RyGenApi::EAccessMode mode = node->GetAccessMode();
    if (execute == nullptr || (mode != RyGenApi::RW && mode != RyGenApi::RO))
        return RESULT_SUCCESS;
    const auto began = std::chrono::steady_clock::now();
    while (!execute->IsDone(true) &&
           std::chrono::steady_clock::now() - began < kOperationWaitLimit) {
        std::this_thread::sleep_for(kOperationPollPause);
        RY_LOG_EVENT(site, kLogDebug, L"Waiting...");
    }
    return RESULT_SUCCESS;
}

}  // namespace

RESULT RyCamera::ReadFileStream(const char* fileName, uint8_t* buffer, uint64_t& size) {
    RY_CAMERA_SITE(ReadFileStream);
    return RY_GUARDED(kSite, [&] {
        if (!m_Shared->nodeMap)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        if (fileName == nullptr || buffer == nullptr || size == 0)
            return RESULT_ERROR_INVALID_PARAMETER;
        RyGenApi::INodeMap* nodeMap = m_Shared->nodeMap->map._GetNodeMap();
        RyGenApi::IDevFileStream stream;
        ReportOpen(kSite, nodeMap, fileName);
        if (!OpenStream(stream, nodeMap, fileName))
            return RESULT_ERROR_FILE_STREAM_OPEN_FAILURE;
        stream.read(reinterpret_cast<char*>(buffer), static_cast<std::streamsize>(size));
        return CloseStream(stream, RESULT_ERROR_FILE_STREAM_READ_FAILURE);
    });
}

RESULT RyCamera::WriteFileStream(const char* fileName, const uint8_t* data, uint64_t size) {
    RY_CAMERA_SITE(WriteFileStream);
    return RY_GUARDED(kSite, [&] {
        if (!m_Shared->nodeMap)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        if (fileName == nullptr || data == nullptr || size == 0)
            return RESULT_ERROR_INVALID_PARAMETER;
        RyGenApi::INodeMap* nodeMap = m_Shared->nodeMap->map._GetNodeMap();
        RyGenApi::ODevFileStream stream;
        ReportOpen(kSite, nodeMap, fileName);
        if (!OpenStream(stream, nodeMap, fileName))
            return RESULT_ERROR_FILE_STREAM_OPEN_FAILURE;
        stream.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        // The stream's buffer reaches the camera at the latest when the stream closes.
        const RESULT awaited = AwaitFileOperation(*m_Shared, kSite);
        if (awaited != RESULT_SUCCESS)
            return awaited;
        return CloseStream(stream, RESULT_ERROR_FILE_STREAM_WRITE_FAILURE);
    });
}

RESULT RyCamera::GetFileAccessControlStatus(char* text) {
    return GetFileAccessControlStatus(text, FILE_ACCESS_STATUS_SIZE);
}

RESULT RyCamera::GetFileAccessControlStatus(char* text, size_t capacity) {
    if (text == nullptr || capacity == 0)
        return RESULT_ERROR_INVALID_PARAMETER;
    size_t length = strnlen(text, capacity);
    if (length == capacity)
        return RESULT_ERROR_INVALID_PARAMETER;
    for (const char* feature : kStatusFeatures) {
        char value[512] = {};
        uint64_t size = sizeof(value);
        if (GetCustomCommand(feature, value, &size, GET_CUSTOM_COMMAND_VALUE) != RESULT_SUCCESS)
            std::strcpy(value, "Failed to get data");
        const std::string line = std::string(feature) + " : " + value + "\n";
        // What does not fit is cut; the text always stays terminated.
        const size_t room = capacity - 1 - length;
        const size_t copied = std::min(room, line.size());
        std::memcpy(text + length, line.data(), copied);
        length += copied;
        text[length] = '\0';
    }
    return RESULT_SUCCESS;
}

}  // namespace RYSDK
