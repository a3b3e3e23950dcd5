#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tools/burst.h"
#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"

namespace zavri::tools {
namespace {

constexpr char kDefaultPhotograph[] = "/usr/share/backgrounds/seeding_by_Clements_Engelhardt.jpg";
constexpr int kFrames = 4;
constexpr int kRuns = 7;
constexpr int kCropSide = 640;
constexpr int kResizeWidth = 1920;  // of the part that is enlarged, at most
constexpr int kResizeHeight = 1080;
constexpr int kBand = 64;  // between the two frames of the composition

std::string photograph_of(const DemoOptions& options) {
  if (!options.photograph.empty()) return options.photograph;
  if (!std::filesystem::exists(kDefaultPhotograph)) {
    throw Error(std::string("PHOTO: name a photograph, or install lomiri-wallpapers-16.04 for ") +
                kDefaultPhotograph);
  }
  return kDefaultPhotograph;
}

struct Part {
  int x, y, width, height;
};

// The part with the most detail in its luma.
Part busiest_part(const Frame& frame) {
  Part best{0, 0, std::min(kCropSide, frame.width), std::min(kCropSide, frame.height)};
  int64_t most = -1;
  for (int y = 0; y + best.height <= frame.height; y += kCropSide / 2) {
    for (int x = 0; x + best.width <= frame.width; x += kCropSide / 2) {
      const Frame part = frame.crop(x, y, best.width, best.height);
      int64_t detail = 0;
      for (size_t i = 1; i < part.luma.size(); ++i) {
        detail += std::abs(part.luma[i] - part.luma[i - 1]);
      }
      if (detail <= most) continue;
      most = detail;
      best.x = x;
      best.y = y;
    }
  }
  return best;
}

// The same part of several frames at its own size, side by side.
Picture side_by_side(const std::vector<const Frame*>& frames, const Part& part) {
  const auto count = static_cast<int>(frames.size());
  Picture all(part.width * count, part.height);
  const size_t row_bytes = 3 * static_cast<size_t>(part.width);
  for (size_t k = 0; k < frames.size(); ++k) {
    const Picture one = to_picture(frames[k]->crop(part.x, part.y, part.width, part.height));
    for (size_t row = 0; row < static_cast<size_t>(part.height); ++row) {
      std::copy_n(&one.rgb[row * row_bytes], row_bytes,
                  &all.rgb[(row * frames.size() + k) * row_bytes]);
    }
  }
  return all;
}

Report quality(const Frame& clean, const Frame& before, const Frame& after) {
  Report table = Report::array();
  const std::vector<PlaneDifference> noisy = compare(clean, before);
  const std::vector<PlaneDifference> denoised = compare(clean, after);
  for (size_t i = 0; i < noisy.size(); ++i) {
    table.push_back({{"plane", noisy[i].plane},
                     {"PSNR before", decimals(noisy[i].psnr, 2)},
                     {"PSNR after", decimals(denoised[i].psnr, 2)},
                     {"SSIM before", decimals(noisy[i].ssim, 4)},
                     {"SSIM after", decimals(denoised[i].ssim, 4)}});
  }
  return table;
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
Report resize_step(const Frame& clean, const Frame& denoised, const std::string& folder) {
  const int width = std::min(kResizeWidth, clean.width / 4 * 4);
  const int height = std::min(kResizeHeight, clean.height / 16 * 16);
  const auto middle = [&](const Frame& frame) {
    return frame.crop((frame.width - width) / 4 * 2, (frame.height - height) / 4 * 2, width,
                      height);
  };
  const ResizeResult twice = resize(middle(denoised), {2 * width, 2 * height}, kRuns);
  write_file(folder + "resize.png", encode(twice.frame, "resize.png"));
  const Frame whole = clean.crop(0, 0, clean.width / 4 * 4, clean.height / 16 * 16);
  const Frame half = halved(whole);
  const auto luma_psnr = [&](Scaling scaling) {
    const Frame back = resize(half, {whole.width, whole.height, scaling}).frame;
    return decimals(compare(whole, back).front().psnr, 2).dump();
  };
  return {{"operation", "resize"},
          {"milliseconds", decimals(1e3 * twice.seconds, 1)},
          {"picture", "resize.png"},
          {"outcome", "half size enlarged back: luma PSNR " + luma_psnr(Scaling::kPoly) +
                          ", bilinear " + luma_psnr(Scaling::kBilinear)}};
}

// The blur that grows from the centre outwards, on the noisy frame.
Report rnr_step(const Frame& clean, const Frame& before, const std::string& folder) {
  const RadialResult radial = reduce_radially(before, RadialSettings(), kRuns);
  write_file(folder + "rnr.png", encode(radial.frame, "rnr.png"));
  const auto luma_psnr = [&](const Frame& frame) {
    return decimals(compare(clean, frame).front().psnr, 2).dump();
  };
  return {{"operation", "rnr"},
          {"milliseconds", decimals(1e3 * radial.seconds, 1)},
          {"picture", "rnr.png"},
          {"outcome", "luma PSNR " + luma_psnr(before) + " to " + luma_psnr(radial.frame)}};
}

// Before and after in one frame. It is exact for a height that is a multiple of 8, and when the
// band leaves a multiple of 4 of the width.
Report compose_step(const Frame& before, const Frame& after, const std::string& folder) {
  const auto upper = [](const Frame& frame) {
    return frame.crop(0, 0, frame.width, frame.height / 8 * 8);
  };
  const ComposeSettings middle{Pad::kCenter, kBand + before.width % 4};
  const Composed composed = compose(upper(before), upper(after), middle, kRuns);
  write_file(folder + "compose.png", encode(composed.frame, "compose.png"));
  return {{"operation", "compose"},
          {"milliseconds", decimals(1e3 * composed.seconds, 1)},
          {"picture", "compose.png"},
          {"outcome", "before and after"}};
}

}  // namespace

int run_demo(const DemoOptions& options, const Console& console) {
  const std::string photograph = photograph_of(options);
  const std::string folder = options.folder + '/';
  for (const char* name :
       {"before.png", "after.png", "crop.png", "resize.png", "rnr.png", "compose.png"}) {
    check_output(folder + name, console.force);
  }
  console.progress("making " + std::to_string(kFrames) + " noisy frames of " + photograph);
  const BurstFrames burst =
      make_burst(load_picture(photograph), options.sensor, options.seed, kFrames);
  const Frame& before = burst.noisy[static_cast<size_t>(options.settings.reference)];
  console.progress("denoising");
  const DenoiseResult result = denoise(burst.noisy, options.settings, kRuns);
  const std::string nothing_done = remark(result, options.settings, kFrames);
  if (!nothing_done.empty()) console.say(nothing_done);

  console.progress("writing pictures");
  std::vector<NamedFrame> raw = name_frames(burst, options.folder, "nv12");
  raw.push_back({folder + "denoised_" + before.size() + ".nv12", &result.frame});
  for (const NamedFrame& frame : raw) check_output(frame.path, console.force);
  make_folder(options.folder);
  for (const NamedFrame& frame : raw) write_file(frame.path, encode(*frame.frame, frame.path));
  write_file(folder + "before.png", encode(before, "before.png"));
  write_file(folder + "after.png", encode(result.frame, "after.png"));
  write_file(folder + "crop.png",
             encode(side_by_side({&before, &result.frame, &burst.clean}, busiest_part(burst.clean)),
                    "crop.png"));
  Report further = Report::array();
  further.push_back(resize_step(burst.clean, result.frame, folder));
  further.push_back(rnr_step(burst.clean, before, folder));
  further.push_back(compose_step(before, result.frame, folder));

  console.print({{"photograph", photograph},
                 {"size", before.size()},
                 {"frames", kFrames},
                 {"sensor gain", options.sensor.gain},
                 {"denoise", quality(burst.clean, before, result.frame)},
                 {"thresh", result.thresh},
                 {"threshY", result.thresh_luma},
                 {"milliseconds", decimals(1e3 * result.seconds, 1)},
                 {"megapixels per second", decimals(before.megapixels() / result.seconds, 0)},
                 {"further operations", further},
                 {"pictures", folder + "before.png after.png crop.png (before, after, clean)"}});
  return kDone;
}

}  // namespace zavri::tools
