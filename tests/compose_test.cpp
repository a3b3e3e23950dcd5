#include <gtest/gtest.h>

#include <cstring>

#include "include/zavricustpro.h"
#include "tests/support/allocations.h"
#include "tests/support/log_capture.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

const std::vector<LogLine> kRefused = {{6, "ZVC", "zavri-mp::compose, error para !!!"}};

std::vector<LogLine> done_lines(int width, int height) {
  return {{2, "Defog",
           "KADRO::compose begin, width=" + std::to_string(width) +
               ", height=" + std::to_string(height)},
          {2, "Defog", "KADRO::compose end"}};
}

// Draws the picture sample by sample, with positions that run on from row to row.
void naive_fill(const T_ComposeParam& param, uint32_t mode, uint8_t* scratch) {
  const int width = param.width;
  const int used = width - param.padding;
  const int span = used / 2;
  const int half = param.padding >> 1;
  const int left = mode == 0 ? param.padding : mode == 3 ? half : 0;
  const int middle = mode == 2 ? param.padding : 0;
  const int right = mode == 1 ? param.padding : mode == 3 ? half : 0;
  const int steps = used / 4;
  const bool bands_only = used < 4;

  const uint8_t* const frames[] = {param.src_frame1, param.src_frame2};
  const int frame_columns[] = {left, left + span + middle};
  // Returns where the position stands after the row, as the next function does.
  const auto write_row = [&](int to, int from, int sample, uint8_t black) {
    const int right_column = frame_columns[1] + (bands_only ? span : 2 * steps);
    for (int i = 0; i < left; ++i) scratch[to + i] = black;
    for (int i = 0; i < middle; ++i) scratch[to + left + span + i] = black;
    for (int i = 0; i < right; ++i) scratch[to + right_column + i] = black;
    for (int f = 0; f < 2 && !bands_only; ++f) {
      for (int i = 0; i < 2 * steps; ++i) {
        scratch[to + frame_columns[f] + i] = frames[f][from + i / sample * 2 * sample + i % sample];
      }
    }
    return bands_only ? to + width : to + right_column + right;
  };
  const auto next_source = [&](int from) { return from + 4 * steps + width + param.padding; };

  int luma = 0;
  int chroma = width * param.height / 2;
  int luma_source = width;
  int chroma_source = width * param.height + width;
  for (int k = 0; k < param.height / 4; ++k) {
    write_row(luma, luma_source, 1, 0);
    luma = write_row(luma + width, luma_source + 2 * width, 1, 0);
    luma_source = next_source(luma_source + 2 * width);
    chroma = write_row(chroma, chroma_source, 2, 129);
    chroma_source = next_source(chroma_source);
  }
}

struct ComposeFrames {
  ComposeFrames(Random& random, int width, int height, int padding) {
    param.width = static_cast<uint16_t>(width);
    param.height = static_cast<uint16_t>(height);
    param.padding = static_cast<uint16_t>(padding);
    for (Bytes* const frame : {&source1, &source2, &output}) {
      *frame = samples(random, Style::kUniform, zavri_room_compose_frame(&param));
    }
    param.src_frame1 = source1.data();
    param.src_frame2 = source2.data();
    param.dst_frame = output.data();
  }

  Bytes source1;
  Bytes source2;
  Bytes output;
  T_ComposeParam param{};
};

using Fill = void (*)(T_ComposeParam*, uint8_t*);
constexpr Fill kFills[] = {zavri_mp_compose_two_same_frame_padding_left,
                           zavri_mp_compose_two_same_frame_padding_right,
                           zavri_mp_compose_two_same_frame_padding_center,
                           zavri_mp_compose_two_same_frame_padding_left_right};

// The scratch frame begins within the first source, so that rows are written where others are read.
TEST(Compose, FillsIntoTheirOwnSourcesAsTheRuleDoes) {
  Random random(4);
  constexpr int kWidth = 160;
  constexpr int kHeight = 16;
  const Bytes bytes = samples(random, Style::kUniform, 4 * kWidth * kHeight);
  for (size_t from = 0; from < kWidth * kHeight; from += 7) {
    for (const Fill fill : kFills) {
      const auto filled = [&, at = from](Build build) {
        const UseBuild use(build);
        Bytes result = bytes;
        T_ComposeParam param{};
        param.width = kWidth;
        param.height = kHeight;
        param.padding = 8;
        param.src_frame1 = param.src_frame2 = result.data();
        fill(&param, result.data() + at);
        return result;
      };
      const Bytes expected = filled(Build::kPlain);
      for (const Build build : builds_here()) ASSERT_TRUE(filled(build) == expected) << from;
    }
  }
}

// Bytes that a fill leaves out keep their value; those behind the scratch frame are checked too.
TEST(Compose, EveryFillPlacesBandsAndFrames) {
  Random random(2);
  for (const int height : {3, 4, 11, 16}) {
    for (int width = 1; width <= 140; ++width) {
      for (int padding = 0; padding <= width; ++padding) {
        if (padding == 14) padding = std::max(14, width - 9);
        ComposeFrames frames(random, width, height, padding);
        const size_t room = zavri_room_compose_scratch(&frames.param);
        const Bytes before = samples(random, Style::kUniform, room + 64);
        for (uint32_t mode = 0; mode < 4; ++mode) {
          frames.param.mode = random();  // the fills do not read it
          Bytes expected = before;
          naive_fill(frames.param, mode, expected.data());
          const UseBuild use(builds_here()[random() % builds_here().size()]);
          Bytes scratch = before;
          kFills[mode](&frames.param, scratch.data());
          ASSERT_TRUE(scratch == expected)
              << width << 'x' << height << " padding " << padding << " mode " << mode;
        }
      }
    }
  }
}

// Returns what `before`, the output before the call, becomes with the naive picture.
Bytes naive_output(const T_ComposeParam& param, const Bytes& before) {
  const size_t pixels = static_cast<size_t>(param.width) * param.height;
  Bytes scratch(pixels * 3 / 4);
  if (param.mode < 4) naive_fill(param, param.mode, scratch.data());
  Bytes output = before;
  memset(&output[0], 0, pixels / 4);
  memcpy(&output[pixels / 4], scratch.data(), pixels / 2);
  memset(&output[pixels * 3 / 4], 0, pixels / 4);
  memset(&output[pixels], 129, pixels / 8);
  memcpy(&output[pixels * 9 / 8], scratch.data() + pixels / 2, pixels / 4);
  memset(&output[pixels * 11 / 8], 129, pixels / 8);
  return output;
}

struct Shape {
  int width;
  int height;
  int padding;
};
// The last shapes leave bytes out: sizes are no multiples, rows slide, or there is no row at all.
constexpr Shape kShapes[] = {{36, 8, 36}, {20, 4, 8}, {66, 12, 0}, {66, 10, 4},
                             {37, 8, 5},  {31, 9, 0}, {24, 3, 8}};

TEST(Compose, LaysThePictureBetweenBars) {
  Random random(3);
  for (const Shape& shape : kShapes) {
    for (const uint32_t mode : {0u, 1u, 2u, 3u, 4u, 0xffffffffu}) {
      SCOPED_TRACE(::testing::Message() << shape.width << 'x' << shape.height << " padding "
                                        << shape.padding << " mode " << mode);
      ComposeFrames frames(random, shape.width, shape.height, shape.padding);
      frames.param.mode = mode;
      const Bytes expected = naive_output(frames.param, frames.output);
      const size_t pixels = static_cast<size_t>(shape.width) * shape.height;
      WatchAllocations allocations;
      take_log();
      EXPECT_EQ(zavri_mp_compose_two_same_frame(&frames.param), 0u);
      EXPECT_EQ(frames.output, expected);
      EXPECT_EQ(take_log(), done_lines(shape.width, shape.height));
      EXPECT_EQ(allocations.sizes, std::vector<size_t>{pixels * 3 / 4});
      EXPECT_EQ(allocations.freed, 1u);
    }
  }
}

TEST(Compose, TheOutputMayOverlapTheSources) {
  constexpr int kWidth = 64;
  constexpr int kHeight = 16;
  constexpr size_t kFrame = kWidth * kHeight * 3 / 2;
  Random random(4);
  for (const size_t output : {size_t{0}, size_t{64}, kFrame - 1, kFrame, kFrame + 1, 2 * kFrame}) {
    Bytes memory = samples(random, Style::kUniform, 3 * kFrame);
    T_ComposeParam param{};
    param.width = kWidth;
    param.height = kHeight;
    param.src_frame1 = memory.data();
    param.src_frame2 = memory.data() + kFrame;
    param.dst_frame = memory.data() + output;
    const Bytes before(memory.begin() + output, memory.begin() + output + kFrame);
    const Bytes expected = naive_output(param, before);
    EXPECT_EQ(zavri_mp_compose_two_same_frame(&param), 0u);
    EXPECT_EQ(Bytes(param.dst_frame, param.dst_frame + kFrame), expected) << output;
  }
}

TEST(Compose, RefusesNullPointersAndEmptyFrames) {
  Random random(6);
  ComposeFrames frames(random, 16, 8, 0);
  const Bytes before = frames.output;
  const auto refused = [&](auto spoil) {
    T_ComposeParam param = frames.param;
    spoil(param);
    const uint32_t result = zavri_mp_compose_two_same_frame(&param);
    return result == 2 && take_log() == kRefused && frames.output == before;
  };
  take_log();
  EXPECT_EQ(zavri_mp_compose_two_same_frame(nullptr), 2u);
  EXPECT_EQ(take_log(), kRefused);
  EXPECT_TRUE(refused([](T_ComposeParam& param) { param.width = 0; }));
  EXPECT_TRUE(refused([](T_ComposeParam& param) { param.height = 0; }));
  EXPECT_TRUE(refused([](T_ComposeParam& param) { param.src_frame1 = nullptr; }));
  EXPECT_TRUE(refused([](T_ComposeParam& param) { param.src_frame2 = nullptr; }));
  EXPECT_TRUE(refused([](T_ComposeParam& param) { param.dst_frame = nullptr; }));
}

}  // namespace
}  // namespace zavri::testing
