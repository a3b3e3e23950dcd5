#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tools/burst.h"
#include "tools/commands/commands.h"
#include "tools/commands/demo_steps.h"
#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"

namespace zavri::tools {
namespace {

constexpr char kDefaultPhotograph[] = "/usr/share/backgrounds/seeding_by_Clements_Engelhardt.jpg";
constexpr int kFrames = 4;
constexpr int kRuns = 7;
constexpr int kCropSide = 640;

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

}  // namespace

int run_demo(const DemoOptions& options, const Console& console) {
  const std::string photograph = photograph_of(options);
  const std::string folder = options.folder + '/';
  std::vector<std::string> pictures = further_pictures();
  pictures.insert(pictures.end(), {"before.png", "after.png", "crop.png"});
  for (const std::string& name : pictures) check_output(folder + name, console.force);
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
  console.progress("running the other operations");
  const Report further = further_operations({burst.clean, before, result.frame, folder, kRuns});

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
