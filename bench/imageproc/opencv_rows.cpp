// The same rows through cv::cvtColor with OpenCV's own threading switched off. OpenCV names
// a Bayer pattern by the second row's second and third samples, so our GB mosaic is its
// GR, our RG its BG and our GR its GB. OpenCV has no 16-bit Bayer to 8-bit BGR, so the
// 10- and 12-bit rows compare with its 16-bit Bayer to 16-bit BGR.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>

#include "bench_rows.h"

namespace rybench {

namespace {

// A source matrix of `type` filled with the benchmark pattern.
cv::Mat PatternMat(const FrameSize& size, int type) {
    cv::Mat mat(static_cast<int>(size.height), static_cast<int>(size.width), type);
    const std::vector<uint8_t> bytes = PatternBytes(mat.total() * mat.elemSize());
    std::memcpy(mat.data, bytes.data(), bytes.size());
    return mat;
}

void AddCvRow(const std::string& row, int sourceType, int code, uint16_t mask = 0) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("opencv", row, size, [size, sourceType, code, mask](benchmark::State& state) {
            cv::setNumThreads(0);
            cv::Mat src = PatternMat(size, sourceType);
            if (mask != 0) {
                src &= cv::Scalar(mask);
            }
            cv::Mat dst;
            cv::cvtColor(src, dst, code);
            for (auto _ : state) {
                cv::cvtColor(src, dst, code);
                benchmark::DoNotOptimize(dst.data);
            }
        });
    }
}

}  // namespace

void RegisterOpenCvRows() {
    AddCvRow("Bayer8 GB to BGR8", CV_8UC1, cv::COLOR_BayerGR2BGR);
    AddCvRow("Bayer8 RG to BGR8", CV_8UC1, cv::COLOR_BayerBG2BGR);
    AddCvRow("Bayer8 GR to BGR8", CV_8UC1, cv::COLOR_BayerGB2BGR);
    AddCvRow("Bayer12 GB to BGR8", CV_16UC1, cv::COLOR_BayerGR2BGR, 0x0FFF);
    AddCvRow("Bayer10 GB to BGR8", CV_16UC1, cv::COLOR_BayerGR2BGR, 0x03FF);
    AddCvRow("Bayer10 GB to BGR10", CV_16UC1, cv::COLOR_BayerGR2BGR, 0x03FF);
    // 4:2:2 sources are two-channel matrices of the frame's size.
    AddCvRow("YUV422 UYVY integer to BGR8", CV_8UC2, cv::COLOR_YUV2BGR_UYVY);
    AddCvRow("YUV422 UYVY floating to BGR8", CV_8UC2, cv::COLOR_YUV2BGR_UYVY);
    AddCvRow("YUV422 YUYV floating to BGR8", CV_8UC2, cv::COLOR_YUV2BGR_YUY2);
    AddCvRow("RGB8 to BGR8", CV_8UC3, cv::COLOR_RGB2BGR);
    AddCvRow("Mono8 to BGR8", CV_8UC1, cv::COLOR_GRAY2BGR);
}

}  // namespace rybench
