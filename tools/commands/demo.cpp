#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <numeric>

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

int64_t detail(const Frame& part) {
  int64_t sum = 0;
  for (size_t i = 1; i < part.luma.size(); ++i) sum += std::abs(part.luma[i] - part.luma[i - 1]);
  return sum;
}

// Noise shows best where it hides neither in detail nor in the dark or bright.
int64_t evenness(const Frame& part) {
  constexpr int64_t kDark = 64;
  constexpr int64_t kBright = 160;
  const auto count = static_cast<int64_t>(part.luma.size());
  const int64_t mean = std::accumulate(part.luma.begin(), part.luma.end(), int64_t{0}) / count;
  const bool middle = mean >= kDark && mean <= kBright;
  return -detail(part) - (middle ? 0 : 255 * count);
}

// The part with the highest score(part).
template <class Score>
Part best_part(const Frame& frame, Score score) {
  Part part{0, 0, std::min(kCropSide, frame.width), std::min(kCropSide, frame.height)};
  Part best = part;
  int64_t highest = std::numeric_limits<int64_t>::min();
  for (part.y = 0; part.y + part.height <= frame.height; part.y += kCropSide / 2) {
    for (part.x = 0; part.x + part.width <= frame.width; part.x += kCropSide / 2) {
      const int64_t reached = score(frame.crop(part.x, part.y, part.width, part.height));
      if (reached <= highest) continue;
      highest = reached;
      best = part;
    }
  }
  return best;
}

// The same parts of several frames at their own size: a column for each frame, a row for each part.
Picture side_by_side(const std::vector<const Frame*>& frames, const std::vector<Part>& parts) {
  const int width = parts.front().width;
  const int height = parts.front().height;
  Picture all(width * static_cast<int>(frames.size()), height * static_cast<int>(parts.size()));
  const size_t row_bytes = 3 * static_cast<size_t>(width);
  uint8_t* to = all.rgb.data();
  for (const Part& part : parts) {
    std::vector<Picture> pictures;
    pictures.reserve(frames.size());
    for (const Frame* frame : frames) {
      pictures.push_back(to_picture(frame->crop(part.x, part.y, width, height)));
    }
    for (size_t row = 0; row < static_cast<size_t>(height); ++row) {
      for (const Picture& picture : pictures) {
        to = std::copy_n(&picture.rgb[row * row_bytes], row_bytes, to);
      }
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
  for (const std::string& line : remarks(result, options.settings, kFrames)) console.say(line);

  console.progress("writing pictures");
  std::vector<NamedFrame> raw = name_frames(burst, options.folder, "nv12");
  raw.push_back({folder + "denoised_" + before.size() + ".nv12", &result.frame});
  for (const NamedFrame& frame : raw) check_output(frame.path, console.force);
  make_folder(options.folder);
  for (const NamedFrame& frame : raw) write_file(frame.path, encode(*frame.frame, frame.path));
  write_file(folder + "before.png", encode(before, "before.png"));
  write_file(folder + "after.png", encode(result.frame, "after.png"));
  const std::vector<Part> parts{best_part(burst.clean, detail), best_part(burst.clean, evenness)};
  write_file(folder + "crop.png",
             encode(side_by_side({&before, &result.frame, &burst.clean}, parts), "crop.png"));
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
