#include "tools/commands/demo_steps.h"

#include <algorithm>

#include "tools/chroma.h"
#include "tools/compose.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"
#include "tools/radial.h"
#include "tools/resize.h"

namespace zavri::tools {
namespace {

constexpr int kResizeWidth = 1920;  // of the part that is enlarged, at most
constexpr int kResizeHeight = 1080;
constexpr int kBand = 64;  // between the two frames of the composition

std::string psnr(const PlaneDifference& plane) { return decimals(plane.psnr, 2).dump(); }

std::string luma_psnr(const Frame& clean, const Frame& frame) {
  return psnr(compare(clean, frame).front());
}

// Writes the picture of an operation and makes its row.
Report told(const DemoFrames& demo, const std::string& operation, double seconds,
            const Frame& frame, const std::string& outcome) {
  const std::string picture = operation + ".png";
  write_file(demo.folder + picture, encode(frame, picture));
  return {{"operation", operation},
          {"milliseconds", decimals(1e3 * seconds, 1)},
          {"picture", picture},
          {"outcome", outcome}};
}

// Every sample the mean of four.
Frame halved(const Frame& frame) {
  Frame half(frame.width / 2, frame.height / 2, frame.order);
  // Samples of one kind stand `step` bytes apart.
  const auto reduce = [](const std::vector<uint8_t>& from, std::vector<uint8_t>& to, int width,
                         size_t step) {
    const auto stride = static_cast<size_t>(width) * step;
    for (size_t i = 0; i < to.size(); ++i) {
      const size_t row = i / stride;
      const size_t column = i % stride;
      const size_t at = row * 2 * 2 * stride + column / step * 2 * step + column % step;
      to[i] = static_cast<uint8_t>(
          (from[at] + from[at + step] + from[at + 2 * stride] + from[at + 2 * stride + step] + 2) /
          4);
    }
  };
  reduce(frame.luma, half.luma, half.width, 1);
  reduce(frame.chroma, half.chroma, half.width / 2, 2);
  return half;
}

// A part of the denoised frame, enlarged to twice its size; and what enlarging brings back of the
// clean one that was halved.
Report enlarge(const DemoFrames& demo) {
  const Frame& clean = demo.clean;
  const int width = std::min(kResizeWidth, clean.width / 4 * 4);
  const int height = std::min(kResizeHeight, clean.height / 16 * 16);
  const Frame middle = demo.denoised.crop((clean.width - width) / 4 * 2,
                                          (clean.height - height) / 4 * 2, width, height);
  const ResizeResult twice = resize(middle, {2 * width, 2 * height}, demo.runs);
  const Frame whole = clean.crop(0, 0, clean.width / 4 * 4, clean.height / 16 * 16);
  const Frame half = halved(whole);
  const auto restored = [&](Scaling scaling) {
    return luma_psnr(whole, resize(half, {whole.width, whole.height, scaling}).frame);
  };
  return told(demo, "resize", twice.seconds, twice.frame,
              "middle to " + twice.frame.size() + "; half size enlarged back: luma PSNR " +
                  restored(Scaling::kPoly) + ", bilinear " + restored(Scaling::kBilinear));
}

constexpr int kChromaTaps = 7;

bool takes_chroma(const Frame& frame) {
  ChromaSettings settings;
  settings.taps = kChromaTaps;
  return is_large_enough(frame, settings);
}

// The chroma denoise of the noisy frame alone.
Report filter_chroma(const DemoFrames& demo) {
  ChromaSettings settings;
  settings.taps = kChromaTaps;
  const ChromaResult result = denoise_chroma(demo.noisy, settings, demo.runs);
  const auto of_both = [&](const Frame& frame) {
    const std::vector<PlaneDifference> planes = compare(demo.clean, frame);
    return psnr(planes[1]) + " and " + psnr(planes[2]);
  };
  return told(demo, "chroma", result.seconds, result.frame,
              "PSNR of U and V " + of_both(demo.noisy) + " to " + of_both(result.frame));
}

bool takes_rnr(const Frame& frame) { return refusal(frame, RadialSettings()).empty(); }

// The blur that grows from the centre outwards, on the noisy frame.
Report blur_radially(const DemoFrames& demo) {
  const RadialResult result = reduce_radially(demo.noisy, RadialSettings(), demo.runs);
  return told(demo, "rnr", result.seconds, result.frame,
              "luma PSNR " + luma_psnr(demo.clean, demo.noisy) + " to " +
                  luma_psnr(demo.clean, result.frame));
}

// Exact for a height that is a multiple of 8, and a band that leaves a multiple of 4 of the width.
ComposeSettings band_of(const Frame& frame) { return {Pad::kCenter, kBand + frame.width % 4}; }

Frame upper(const Frame& frame) { return frame.crop(0, 0, frame.width, frame.height / 8 * 8); }

// The band is not to be the larger part.
bool takes_compose(const Frame& frame) {
  return frame.height >= 8 && frame.width >= 2 * kBand && refusal(frame, band_of(frame)).empty();
}

// Before and after in one frame.
Report compose_both(const DemoFrames& demo) {
  const Composed result =
      compose(upper(demo.noisy), upper(demo.denoised), band_of(demo.noisy), demo.runs);
  return told(demo, "compose", result.seconds, result.frame, "before and after");
}

// One strip of the enlarged part has 2 rows at least.
bool takes_resize(const Frame& frame) { return frame.width >= 4 && frame.height >= 16; }

struct Step {
  const char* picture;
  bool (*takes)(const Frame& frame);
  Report (*run)(const DemoFrames& demo);
};
constexpr Step kSteps[] = {{"resize.png", takes_resize, enlarge},
                           {"chroma.png", takes_chroma, filter_chroma},
                           {"rnr.png", takes_rnr, blur_radially},
                           {"compose.png", takes_compose, compose_both}};

}  // namespace

std::vector<std::string> further_pictures() {
  std::vector<std::string> names;
  for (const Step& step : kSteps) names.push_back(step.picture);
  return names;
}

Report further_operations(const DemoFrames& demo) {
  Report rows = Report::array();
  for (const Step& step : kSteps) {
    if (step.takes(demo.noisy)) rows.push_back(step.run(demo));
  }
  return rows;
}

}  // namespace zavri::tools
