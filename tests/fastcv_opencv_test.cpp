// The portable functions beside OpenCV's, which share none of their code or arithmetic.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "platform/fastcv.h"

namespace {

TEST(FastcvBesideOpenCv, BilinearIsInterLinearExact) {
  cv::RNG random(1);
  for (int round = 0; round < 3000; ++round) {
    cv::Mat from(random.uniform(1, 90), random.uniform(1, 90), CV_8U);
    random.fill(from, cv::RNG::UNIFORM, 0, 256);
    const cv::Size size(random.uniform(1, 200), random.uniform(1, 200));
    cv::Mat expected;
    cv::resize(from, expected, size, 0, 0, cv::INTER_LINEAR_EXACT);
    cv::Mat actual(size, CV_8U);
    ASSERT_EQ(fcvScaleu8(from.data, from.cols, from.rows, from.step, actual.data, size.width,
                         size.height, actual.step, zavri::kInterpolateBilinear),
              0);
    ASSERT_EQ(cv::countNonZero(actual != expected), 0) << from.size() << " to " << size;
  }
}

TEST(FastcvBesideOpenCv, GaussianIsGaussianBlur) {
  cv::RNG random(2);
  for (int round = 0; round < 200; ++round) {
    cv::Mat from(random.uniform(1, 90), random.uniform(1, 90), CV_8U);
    random.fill(from, cv::RNG::UNIFORM, 0, 256);
    cv::Mat expected;
    cv::GaussianBlur(from, expected, {5, 5}, 0, 0, cv::BORDER_REPLICATE);
    cv::Mat actual(from.size(), CV_8U);
    fcvFilterGaussian5x5u8(from.data, from.cols, from.rows, actual.data, 1);
    ASSERT_EQ(cv::countNonZero(actual != expected), 0) << from.size();
  }
}

}  // namespace
