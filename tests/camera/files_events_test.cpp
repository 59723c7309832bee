// Files stored on the camera and the camera's events, against the emulator.
#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "camera_fixture.h"

namespace {

using namespace RYSDK;

class FilesAndEvents : public rytest::OpenedCameraTest {};

TEST_F(FilesAndEvents, AMegabyteFileComesBackByteExact) {
    std::vector<uint8_t> data(1 << 20);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<uint8_t>(i * 7 + i / 251);
    ASSERT_EQ(camera_->WriteFileStream("UserData", data.data(), data.size()), RESULT_SUCCESS);
    std::vector<uint8_t> back(data.size());
    uint64_t size = back.size();
    ASSERT_EQ(camera_->ReadFileStream("UserData", back.data(), size), RESULT_SUCCESS);
    EXPECT_EQ(size, data.size());
    EXPECT_TRUE(back == data);

    uint64_t more = back.size() + 1;
    std::vector<uint8_t> larger(more);
    EXPECT_EQ(camera_->ReadFileStream("UserData", larger.data(), more),
              RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE)
        << "a read past the end of the file";
}

TEST_F(FilesAndEvents, FileRequestsThatCannotBeServedAreRefused) {
    uint8_t byte = 0;
    uint64_t size = 1;
    EXPECT_EQ(camera_->ReadFileStream("NoSuchFile", &byte, size),
              RESULT_ERROR_FILE_STREAM_OPEN_FAILURE);
    EXPECT_EQ(camera_->WriteFileStream("LUTLuminance", &byte, 1),
              RESULT_ERROR_FILE_STREAM_OPEN_FAILURE)
        << "a read-only file cannot be opened for writing";
    size = 0;
    EXPECT_EQ(camera_->ReadFileStream("UserData", &byte, size), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->WriteFileStream("UserData", nullptr, 4), RESULT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(camera_->WriteFileStream(nullptr, &byte, 1), RESULT_ERROR_INVALID_PARAMETER);
}

TEST_F(FilesAndEvents, TheStatusReportAppendsAndNeverOverrunsItsBuffer) {
    std::string report(FILE_ACCESS_STATUS_SIZE, '\0');
    ASSERT_EQ(camera_->GetFileAccessControlStatus(report.data()), RESULT_SUCCESS);
    const std::string once(report.c_str());
    EXPECT_NE(once.find("FileOperationSelector : "), std::string::npos);
    EXPECT_NE(once.find("FileSize : "), std::string::npos);
    ASSERT_EQ(camera_->GetFileAccessControlStatus(report.data()), RESULT_SUCCESS);
    EXPECT_EQ(std::string(report.c_str()), once + once);

    char small[40] = "start ";
    std::memset(small + 7, 'Z', sizeof(small) - 7);
    small[sizeof(small) - 1] = 'Z';
    small[6] = '\0';
    ASSERT_EQ(camera_->GetFileAccessControlStatus(small, 30), RESULT_SUCCESS);
    EXPECT_EQ(std::strlen(small), 29u);
    EXPECT_EQ(small[30], 'Z') << "nothing is written past the size given";
}

std::atomic<int> exposureEnds{0};
std::atomic<void*> seenObject{nullptr};
std::atomic<void*> seenContext{nullptr};
int userContext = 0;

TEST_F(FilesAndEvents, CameraEventsReachTheirCallbackWithCameraAndContext) {
    exposureEnds = 0;
    constexpr uint32_t kExposureEnd = 0x9003;
    ASSERT_EQ(camera_->SetEventControlCallback(
                  kExposureEnd, "ExposureEnd", 11,
                  [](char*, RyGenICam::EVENT_DATA* data) {
                      seenObject = data->object;
                      seenContext = data->context;
                      ++exposureEnds;
                  },
                  &userContext),
              RESULT_SUCCESS);
    ASSERT_EQ(camera_->SetCustomCommand("EventSelector", "ExposureEnd", 0), RESULT_SUCCESS);
    ASSERT_EQ(camera_->SetCustomCommand("EventNotification", "On", 0), RESULT_SUCCESS);
    ASSERT_EQ(camera_->SetCustomCommand("AcquisitionStart", nullptr, 0), RESULT_SUCCESS);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (exposureEnds < 3 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    camera_->SetCustomCommand("AcquisitionStop", nullptr, 0);
    EXPECT_GE(exposureEnds, 3);
    EXPECT_EQ(seenObject, camera_);
    EXPECT_EQ(seenContext, &userContext);
}

TEST_F(FilesAndEvents, GeneralEventsAndPollingTimes) {
    EXPECT_EQ(camera_->GetPollingTime("NoSuchFeature"), 0);
    EXPECT_GE(camera_->GetPollingTime("Width"), -1);
    RyCamera closed(nullptr, 0);
    EXPECT_EQ(closed.InitEventControl(), RESULT_ERROR_XML_NODE_ACCESS_FAILED);
    EXPECT_EQ(closed.SetEventControlCallback(1, "x", 1, nullptr, nullptr),
              RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT);
}

}  // namespace
