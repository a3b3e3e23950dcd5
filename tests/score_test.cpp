#include "tools/quality/score.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/pictures.h"
#include "tools/error.h"
#include "tools/images/metrics.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

// By the frames' samples: the mean of so many, as an ideal merge without any check would make it.
Frame mean_of(const std::vector<Frame>& frames) {
  Frame mean = frames[0];
  for (size_t i = 0; i < mean.buffer().size(); ++i) {
    double sum = 0;
    for (const Frame& frame : frames) sum += frame.buffer()[i];
    mean.buffer()[i] = static_cast<uint8_t>(std::lround(sum / static_cast<double>(frames.size())));
  }
  return mean;
}

// The mean of three neighbours in each row.
Frame blurred(const Frame& frame) {
  Frame result = frame;
  for (int y = 0; y < frame.height(); ++y) {
    for (int x = 1; x + 1 < frame.width(); ++x) {
      const uint8_t* const from = frame.luma_row(y) + x;
      result.luma_row(y)[x] = static_cast<uint8_t>((from[-1] + from[0] + from[1]) / 3);
    }
  }
  return result;
}

BurstFrames burst_of(bool object, int frames) {
  BurstSettings settings;
  settings.profile = NoiseProfile{{{0, 36}, {0, 9}, {0, 9}}};
  settings.changes.object = object;
  settings.frames = frames;
  return make_burst(half_textured(640, 480), settings);
}

// Four frames have a quarter of the noise, 6.02 dB less; so has each number its own known value.
TEST(Score, TellsGoodResultsFromBlurredAndGhostedOnes) {
  const BurstFrames burst = burst_of(true, 4);
  const Scorer scorer(burst.clean, burst.noisy[0], &*burst.moving);
  std::vector<Frame> still;  // what the burst would be if nothing moved
  for (int k = 0; k < 4; ++k) {
    still.push_back(with_noise(burst.clean, NoiseProfile{{{0, 36}, {0, 9}, {0, 9}}}, 9, k));
  }
  const Score right = scorer.score(mean_of(still));
  EXPECT_NEAR(right.luma.noise_removed, 6.02, 0.15);
  // Rounding takes part in the chroma, whose variance of 9 falls to 9 / 4.
  EXPECT_NEAR(right.chroma.noise_removed, 5.86, 0.1);
  EXPECT_NEAR(right.luma.texture_psnr, 10 * std::log10(255 * 255 / 9.0), 0.15);
  EXPECT_LT(*right.luma.ghost_error, 0.4);

  EXPECT_EQ(scorer.before().luma.noise_removed, 0);
  EXPECT_NEAR(scorer.before().luma.texture_psnr, 10 * std::log10(255 * 255 / 36.0), 0.15);
  EXPECT_LT(*scorer.before().luma.ghost_error, 0.6);

  const Score soft = scorer.score(blurred(burst.noisy[0]));
  EXPECT_NEAR(soft.luma.noise_removed, 4.77, 0.3);
  EXPECT_LT(soft.luma.texture_psnr, right.luma.texture_psnr - 5);

  const Score ghosted = scorer.score(mean_of(burst.noisy));
  EXPECT_NEAR(ghosted.luma.noise_removed, 6.02, 0.15);
  EXPECT_NEAR(ghosted.luma.texture_psnr, right.luma.texture_psnr, 0.2);
  EXPECT_GT(*ghosted.luma.ghost_error, *right.luma.ghost_error + 3);
}

TEST(Score, WithoutACleanFrameIsThatOfTheFrameLeftOut) {
  for (const bool object : {false, true}) {
    SCOPED_TRACE(object ? "moving" : "still");
    const BurstFrames burst = burst_of(object, 4);
    const std::vector<Frame> others(burst.noisy.begin(), burst.noisy.end() - 1);
    const Score truth =
        Scorer(burst.clean, others[0], object ? &*burst.moving : nullptr).score(mean_of(others));
    const Score score = Scorer(burst.noisy, 3).score(mean_of(others));
    EXPECT_NEAR(score.luma.noise_removed, truth.luma.noise_removed, 0.3);
    EXPECT_NEAR(score.chroma.noise_removed, truth.chroma.noise_removed, 0.3);
    EXPECT_NEAR(score.luma.texture_psnr, truth.luma.texture_psnr, 0.5);
    EXPECT_EQ(score.luma.ghost_error.value_or(0) > 3, object);
    const Score mean = score_by_leaving_out(burst.noisy, mean_of);
    EXPECT_NEAR(mean.luma.noise_removed, 4.77, 0.2);
  }
}

TEST(Score, TakesFramesOfOneSizeInAnyLayoutAndWithStillParts) {
  const BurstFrames burst = burst_of(false, 3);
  const Scorer scorer(burst.clean, burst.noisy[0].with_order(ChromaOrder::kVu));
  Frame padded(640, 480, ChromaOrder::kVu, {704, 704 * 500, 704 * 750});
  const Frame turned = burst.noisy[1].with_order(ChromaOrder::kVu);
  for (int y = 0; y < 480; ++y) std::copy_n(turned.luma_row(y), 640, padded.luma_row(y));
  for (int y = 0; y < 240; ++y) std::copy_n(turned.chroma_row(y), 640, padded.chroma_row(y));
  EXPECT_EQ(scorer.score(padded).chroma.texture_psnr,
            scorer.score(burst.noisy[1]).chroma.texture_psnr);
  EXPECT_FALSE(scorer.before().luma.ghost_error);

  EXPECT_THROW(scorer.score(Frame(64, 48)), Error);
  EXPECT_THROW(Scorer(burst.clean, Frame(64, 48)), Error);
  EXPECT_THROW(Scorer(Frame(4, 4), Frame(4, 4)), Error);
  EXPECT_THROW(Scorer({burst.noisy[0], burst.noisy[1]}, 1), Error);
}

}  // namespace
}  // namespace zavri::tools
