// Counts the operations on whole pictures.
#include <cstring>
#include <string>

#include "bench/instructions/count.h"
#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "rnr/blend.h"
#include "rnr/weights.h"

namespace zavri::bench {
namespace {

constexpr uint16_t kPoly = 0;
constexpr uint16_t kBilinear = 1;

// Describes one of the strips in which the library scales a frame to twice its width and height.
T_ResizeParam strip_of(const Bytes& source, Bytes& target, int number, uint16_t mode) {
  constexpr uint32_t kRows = kHeight / kZavriStrips;
  static_assert(kHeight % 8 == 0, "strips show the same parts of source and target");
  const size_t first = size_t{kRows} * kWidth * static_cast<size_t>(number);
  T_ResizeParam strip{};
  strip.scale_mode = mode;
  strip.src_width = strip.src_stride = kWidth;
  strip.src_height = kRows;
  strip.src_y = &source[first];
  strip.src_uv = &source[kPixels + first / 2];
  strip.dst_width = strip.dst_stride = 2 * kWidth;
  strip.dst_height = 2 * kRows;
  strip.dst_y = &target[4 * first];
  strip.dst_uv = &target[4 * kPixels + 2 * first];
  return strip;
}

void scale(uint16_t mode, const uint8_t* from, uint32_t width, uint32_t height, uint8_t* to) {
  if (mode == kPoly) {
    fcvScaleUpPolyu8(from, width, height, width, to, 2 * width, 2 * height, 2 * width);
  } else {
    fcvScaleu8(from, width, height, width, to, 2 * width, 2 * height, 2 * width,
               kInterpolateBilinear);
  }
}

// Scales luma and two planes of chroma, without the resize around the scaler.
void scale_planes(uint16_t mode, const Bytes& source, Bytes& target) {
  scale(mode, source.data(), kWidth, kHeight, target.data());
  for (const size_t chroma : {kPixels, kPixels * 5 / 4}) {
    scale(mode, &source[chroma], kWidth / 2, kHeight / 2, &target[4 * chroma]);
  }
}

}  // namespace

void count_resize(const Bytes& source) {
  constexpr size_t kTargetPixels = 4 * kPixels;
  Bytes target(4 * source.size());
  for (const uint16_t mode : {kBilinear, kPoly}) {
    const std::string group = mode == kPoly ? "resize/poly/" : "resize/bilinear/";
    const auto resize_strips = [&] {
      for (int k = 0; k < kZavriStrips; ++k) {
        const T_ResizeParam strip = strip_of(source, target, k, mode);
        zavri_mp_yuv_resize_inner(&strip, nullptr, nullptr);
      }
    };
    const auto scale_alone = [&] { scale_planes(mode, source, target); };
    count(group + "entry", kTargetPixels, resize_strips, target);
    count(group + "scaler", kTargetPixels, scale_alone, target);
  }
}

void count_rnr(const Bytes& picture) {
  const Bytes pristine(picture.begin(), picture.begin() + kPixels);
  Bytes plane = pristine;
  zavri_mp_RNR_init_base(kWidth, kHeight, kWidth, 100, 80);
  constexpr uint32_t kTiles = 12;
  for (uint32_t k = 0; k < kTiles; ++k) zavri_mp_RNR_init_weight(&k);
  const auto restore_plane = [&] { restore(plane, pristine); };
  const auto process_tiles = [&] {
    for (uint32_t k = 0; k < kTiles; ++k) zavri_mp_RNR_process_inner(&k, plane.data());
  };
  count("rnr/tiles", kPixels, restore_plane, process_tiles, plane);

  Bytes blurred(kPixels);
  const auto blur = [&] {
    fcvFilterGaussian5x5u8(pristine.data(), kWidth, kHeight, blurred.data(), 1);
  };
  count("rnr/gaussian", kPixels, blur, blurred);

  Bytes weights(kPixels);  // on either side of kBlurAlone
  for (size_t i = 0; i < kPixels; ++i) weights[i] = i % (kWholeWeight + 1);
  const BlendFunction kernel = blend_kernel();
  const auto blend = [&] {
    kernel(plane.data(), pristine.data(), blurred.data(), weights.data(), kPixels);
  };
  count("rnr/blend", kPixels, blend, plane);
}

void count_composition(const Bytes& picture) {
  Bytes output(picture.size());
  T_ComposeParam param{};
  param.width = kWidth;
  param.height = kHeight;
  param.padding = 128;
  param.src_frame1 = param.src_frame2 = picture.data();
  param.dst_frame = output.data();
  count(
      "composition", kPixels, [&] { zavri_mp_compose_two_same_frame(&param); }, output);
}

void count_measures(const Bytes& picture) {
  const uint8_t* const luma = picture.data();
  const T_OptRect rect = {0, 0, kWidth - 1, kHeight - 1};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  const auto count_sum = [](const char* name, auto measure) {
    Bytes result(sizeof(uint32_t));
    const auto keep_sum = [&] {
      const uint32_t sum = measure();
      memcpy(result.data(), &sum, sizeof(sum));
    };
    count(name, kPixels, keep_sum, result);
  };
  count_sum("focus",
            [&] { return zavri_auto_shoot_opt_get_FV_value(luma, &rect, kWidth, kHeight); });
  count_sum("average",
            [&] { return zavri_auto_shoot_opt_get_FV_value_average(luma, kWidth, kHeight); });
  count_sum("brightness",
            [&] { return zavri_auto_shoot_opt_get_bright(luma, &rect, kWidth, kHeight); });
}

}  // namespace zavri::bench
