// Compares the portable scaler with OpenCV's, which shares none of its code or arithmetic.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "platform/fastcv.h"

namespace {

TEST(FastcvBesideOpenCv, BilinearIsInterLinearExact) {
  // Below 256 columns and rows no weight lies half way between two of 1/256. Where one does, ours
  // goes to the even one, OpenCV's where the rounding of a double sends it: one level apart at
  // most.
  cv::RNG random(1);
  for (int round = 0; round < 3000; ++round) {
    const bool is_photo = round == 0;
    cv::Mat from(is_photo ? 1080 : random.uniform(1, 90), is_photo ? 1920 : random.uniform(1, 90),
                 CV_8U);
    random.fill(from, cv::RNG::UNIFORM, 0, 256);
    const cv::Size size =
        is_photo ? cv::Size(3840, 2160) : cv::Size(random.uniform(1, 200), random.uniform(1, 200));
    cv::Mat expected;
    cv::resize(from, expected, size, 0, 0, cv::INTER_LINEAR_EXACT);
    cv::Mat actual(size, CV_8U);
    ASSERT_EQ(fcvScaleu8(from.data, from.cols, from.rows, from.step, actual.data, size.width,
                         size.height, actual.step, zavri::kInterpolateBilinear),
              0);
    ASSERT_EQ(cv::countNonZero(actual != expected), 0) << from.size() << " to " << size;
  }
}

}  // namespace
