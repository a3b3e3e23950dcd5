#include "tools/commands/demo_steps.h"

#include <algorithm>
#include <cmath>

#include "tools/error.h"
#include "tools/images/files.h"
#include "tools/images/metrics.h"
#include "tools/operations/chroma.h"
#include "tools/operations/compose.h"
#include "tools/operations/resize.h"
#include "tools/operations/rnr.h"

namespace zavri::tools {
namespace {

constexpr Size kMostEnlarged = {1920, 1080};
constexpr int kBand = 64;  // columns between the two frames of the composition

std::string psnr(const PlaneDifference& plane) {
  return std::isinf(plane.psnr) ? "inf" : decimals(plane.psnr, 2).dump();
}

std::string luma_psnr(const Frame& clean, const Frame& frame) {
  return psnr(compare(clean, frame).front());
}

// Tells whether the operation takes so many frames of this size with these settings.
bool takes(const Operation& operation, const Size& size, int frames = 1) {
  try {
    operation.check(size, frames);
  } catch (const Error&) {
    return false;
  }
  return true;
}

// Writes the picture of an operation and makes its row of the table.
Report told(const DemoFrames& demo, const std::string& operation, const Result& result,
            const std::string& outcome) {
  const std::string picture = operation + ".png";
  save(result.frame, demo.folder + picture);
  return {{"operation", operation},
          {"milliseconds", decimals(1e3 * result.seconds, 1)},
          {"picture", picture},
          {"outcome", outcome}};
}

// Fills `width` bytes with means of four samples of one kind, which stand `step` bytes apart: 1 in
// luma, 2 in pairs of chroma.
void halve_row(const uint8_t* upper, const uint8_t* lower, uint8_t* half, int width, int step) {
  for (int x = 0; x < width; ++x) {
    const int at = x / step * 2 * step + x % step;
    half[x] =
        static_cast<uint8_t>((upper[at] + upper[at + step] + lower[at] + lower[at + step] + 2) / 4);
  }
}

Frame halved(const Frame& frame) {
  Frame half(frame.width() / 2, frame.height() / 2, frame.order());
  for (int y = 0; y < half.height(); ++y) {
    halve_row(frame.luma_row(2 * y), frame.luma_row(2 * y + 1), half.luma_row(y), half.width(), 1);
  }
  for (int y = 0; y < half.height() / 2; ++y) {
    halve_row(frame.chroma_row(2 * y), frame.chroma_row(2 * y + 1), half.chroma_row(y),
              half.width(), 2);
  }
  return half;
}

// The largest part of a frame whose half is as exact: the library's strips are alike where both
// heights are multiples of 8.
Size whole_strips(const Size& size) { return {size.width / 4 * 4, size.height / 16 * 16}; }

Size enlarged_part(const Frame& frame) {
  const Size size = whole_strips(size_of(frame));
  return {std::min(kMostEnlarged.width, size.width), std::min(kMostEnlarged.height, size.height)};
}

Resize resize_of_demo(const Size& part) {
  Resize resize;
  resize.to = {2 * part.width, 2 * part.height};
  return resize;
}

bool takes_resize(const Frame& frame) {
  const Size part = enlarged_part(frame);
  return part.height > 0 && takes(resize_of_demo(part), part);
}

// Enlarges the middle of the denoised frame to twice its size, and tells how much of the clean
// frame comes back when its half is enlarged.
Report enlarge(const DemoFrames& demo) {
  const Frame& clean = demo.clean;
  const Size part = enlarged_part(clean);
  const Frame middle =
      demo.denoised.crop((clean.width() - part.width) / 4 * 2,
                         (clean.height() - part.height) / 4 * 2, part.width, part.height);
  Resize resize = resize_of_demo(part);
  const Result twice = resize.run({middle}, demo.runs);
  resize.to = whole_strips(size_of(clean));
  const Frame whole = clean.crop(0, 0, resize.to.width, resize.to.height);
  const Frame half = halved(whole);
  const std::string poly = luma_psnr(whole, resize.run({half}).frame);
  resize.scaling = Scaling::kBilinear;
  const std::string bilinear = luma_psnr(whole, resize.run({half}).frame);
  return told(demo, "resize", twice,
              "middle to " + twice.frame.size() + "; half size enlarged back: luma PSNR " + poly +
                  ", bilinear " + bilinear);
}

Chroma chroma_of_demo() {
  Chroma chroma;
  chroma.taps = 7;
  return chroma;
}

bool takes_chroma(const Frame& frame) { return takes(chroma_of_demo(), size_of(frame)); }

// Denoises the chroma of the noisy frame alone.
Report filter_chroma(const DemoFrames& demo) {
  const Result result = chroma_of_demo().run({demo.noisy}, demo.runs);
  const auto of_both = [&](const Frame& frame) {
    const std::vector<PlaneDifference> planes = compare(demo.clean, frame);
    return psnr(planes[1]) + " and " + psnr(planes[2]);
  };
  return told(demo, "chroma", result,
              "PSNR of U and V " + of_both(demo.noisy) + " to " + of_both(result.frame));
}

bool takes_rnr(const Frame& frame) { return takes(Rnr(), size_of(frame)); }

// Blurs the luma of the noisy frame, the more the farther from the centre.
Report run_rnr(const DemoFrames& demo) {
  const Result result = Rnr().run({demo.noisy}, demo.runs);
  return told(demo, "rnr", result,
              "luma PSNR " + luma_psnr(demo.clean, demo.noisy) + " to " +
                  luma_psnr(demo.clean, result.frame));
}

// The picture is exact where the height is a multiple of 8, as upper() leaves it, and where the
// band leaves a multiple of 4 of the width.
Compose compose_of_demo(const Frame& frame) {
  Compose compose;
  compose.padding = kBand + frame.width() % 4;
  return compose;
}

Frame upper(const Frame& frame) { return frame.crop(0, 0, frame.width(), frame.height() / 8 * 8); }

// Leaves narrow frames out, of which the band would be the larger part.
bool takes_compose(const Frame& frame) {
  return frame.height() >= 8 && frame.width() >= 2 * kBand &&
         takes(compose_of_demo(frame), size_of(frame), 2);
}

// Puts before and after side by side in one frame.
Report compose_both(const DemoFrames& demo) {
  const Result result =
      compose_of_demo(demo.noisy).run({upper(demo.noisy), upper(demo.denoised)}, demo.runs);
  return told(demo, "compose", result, "before and after");
}

struct DemoStep {
  const char* picture;
  bool (*takes)(const Frame& frame);
  Report (*run)(const DemoFrames& demo);
};
constexpr DemoStep kSteps[] = {{"resize.png", takes_resize, enlarge},
                               {"chroma.png", takes_chroma, filter_chroma},
                               {"rnr.png", takes_rnr, run_rnr},
                               {"compose.png", takes_compose, compose_both}};

}  // namespace

std::vector<std::string> further_pictures() {
  std::vector<std::string> names;
  for (const DemoStep& step : kSteps) names.push_back(step.picture);
  return names;
}

Report further_operations(const DemoFrames& demo) {
  Report rows = Report::array();
  for (const DemoStep& step : kSteps) {
    if (step.takes(demo.noisy)) rows.push_back(step.run(demo));
  }
  return rows;
}

}  // namespace zavri::tools
