#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <numeric>

#include "tools/command_line.h"
#include "tools/commands/demo_steps.h"
#include "tools/error.h"
#include "tools/images/metrics.h"
#include "tools/operations/denoise.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

constexpr char kDefaultPhotograph[] = "/usr/share/backgrounds/seeding_by_Clements_Engelhardt.jpg";
constexpr int kFrames = 4;
constexpr int kRuns = 7;
constexpr int kCropSide = 640;

struct Part {
  int x, y, width, height;
};

// The sum of the differences from sample to sample of the luma. A part has no padding, so that its
// samples stand one after the other.
int64_t detail(const Frame& part) {
  const uint8_t* const luma = part.luma_row(0);
  const auto count = static_cast<int64_t>(part.width()) * part.height();
  int64_t sum = 0;
  for (int64_t i = 1; i < count; ++i) sum += std::abs(luma[i] - luma[i - 1]);
  return sum;
}

// Is highest where noise shows best, where it hides neither in detail nor in the dark or bright.
int64_t evenness(const Frame& part) {
  constexpr int64_t kDark = 64;
  constexpr int64_t kBright = 160;
  const uint8_t* const luma = part.luma_row(0);
  const auto count = static_cast<int64_t>(part.width()) * part.height();
  const int64_t mean = std::accumulate(luma, luma + count, int64_t{0}) / count;
  const bool middle = mean >= kDark && mean <= kBright;
  return -detail(part) - (middle ? 0 : 255 * count);
}

// Finds the part with the highest score(part) among squares that overlap by half.
template <class Score>
Part best_part(const Frame& frame, Score score) {
  Part part{0, 0, std::min(kCropSide, frame.width()), std::min(kCropSide, frame.height())};
  Part best = part;
  int64_t highest = std::numeric_limits<int64_t>::min();
  for (part.y = 0; part.y + part.height <= frame.height(); part.y += kCropSide / 2) {
    for (part.x = 0; part.x + part.width <= frame.width(); part.x += kCropSide / 2) {
      const int64_t reached = score(frame.crop(part.x, part.y, part.width, part.height));
      if (reached <= highest) continue;
      highest = reached;
      best = part;
    }
  }
  return best;
}

// Shows the same parts of several frames at their own size: each frame has a column and each part a
// row.
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
                     {"psnr_before", decimals(noisy[i].psnr, 2)},
                     {"psnr_after", decimals(denoised[i].psnr, 2)},
                     {"ssim_before", decimals(noisy[i].ssim, 4)},
                     {"ssim_after", decimals(denoised[i].ssim, 4)}});
  }
  return table;
}

class Demo : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    sensor_.gain = 32;
    denoise_.thresh = 28;
    denoise_.thresh_luma = 40;
    options.argument("PHOTO", photograph_, "photograph; without one, a packaged one", false);
    options.add(word("o", folder_, "FOLDER", "of the results"));
    options.add(denoise_.settings());
    declare_sensor(options, sensor_, seed_);
  }

  int run(Console& console) override;

 private:
  void find_photograph();
  // Throws an Error unless all files of the demo can be written.
  void prepare(const std::vector<NamedFrame>& raw, Console& console) const;
  void write(const BurstFrames& burst, const Frame& before, const Frame& after) const;

  std::string photograph_;
  std::string folder_ = "zavri-demo";
  Sensor sensor_;
  int64_t seed_ = 1;
  Denoise denoise_;
};

void Demo::find_photograph() {
  if (!photograph_.empty()) return;
  if (!std::filesystem::exists(kDefaultPhotograph)) {
    throw Error(std::string("PHOTO: name a photograph, or install lomiri-wallpapers-16.04 for ") +
                kDefaultPhotograph);
  }
  photograph_ = kDefaultPhotograph;
}

void Demo::prepare(const std::vector<NamedFrame>& raw, Console& console) const {
  make_folder(folder_);
  std::vector<std::string> paths;
  for (const std::string& name : further_pictures()) paths.push_back(folder_ + '/' + name);
  for (const char* name : {"/before.png", "/after.png", "/crop.png"})
    paths.push_back(folder_ + name);
  for (const NamedFrame& frame : raw) paths.push_back(frame.path);
  for (const std::string& path : paths) prepare_output(path, console, check_output);
}

void Demo::write(const BurstFrames& burst, const Frame& before, const Frame& after) const {
  save(before, folder_ + "/before.png");
  save(after, folder_ + "/after.png");
  const std::vector<Part> parts{best_part(burst.clean, detail), best_part(burst.clean, evenness)};
  save(side_by_side({&before, &after, &burst.clean}, parts), folder_ + "/crop.png");
}

int Demo::run(Console& console) {
  find_photograph();
  console.progress("making " + std::to_string(kFrames) + " noisy frames of " + photograph_);
  BurstSettings settings;
  settings.sensor = sensor_;
  settings.seed = static_cast<uint64_t>(seed_);
  settings.frames = kFrames;
  const BurstFrames burst = make_burst(load_picture(photograph_), settings);
  const Frame& before = burst.noisy[static_cast<size_t>(denoise_.reference)];
  Result result;
  result.frame = before;
  std::vector<NamedFrame> raw = name_frames(burst, folder_, "nv12");
  raw.push_back({folder_ + "/denoised_" + before.size() + ".nv12", &result.frame});
  prepare(raw, console);
  console.progress("denoising");
  result = denoise_.run(burst.noisy, kRuns);
  for (const std::string& remark : result.remarks) console.remark(remark);
  console.progress("writing pictures");
  for (const NamedFrame& frame : raw) save(*frame.frame, frame.path);
  write(burst, before, result.frame);
  console.progress("running the other operations");
  const Report further =
      further_operations({burst.clean, before, result.frame, folder_ + '/', kRuns});

  Report report{{"photograph", photograph_},
                {"size", before.size()},
                {"frames", kFrames},
                {"sensor_gain", sensor_.gain},
                {"denoise", quality(burst.clean, before, result.frame)}};
  for (const auto& [name, number] : result.figures) report[name] = decimals(number, 0);
  report["milliseconds"] = decimals(1e3 * result.seconds, 1);
  report["megapixels_per_second"] = decimals(before.megapixels() / result.seconds, 0);
  report["further_operations"] = further;
  report["pictures"] = {folder_ + "/before.png", "after.png", "crop.png"};
  console.print(report);
  return kDone;
}

Demo g_demo("demo", "a noisy burst of a photograph made clean", "demo photo.jpg -o out");

}  // namespace
}  // namespace zavri::tools
