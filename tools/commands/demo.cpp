#include <filesystem>

#include "tools/command_line.h"
#include "tools/commands/demo_steps.h"
#include "tools/commands/demo_tiles.h"
#include "tools/commands/pages.h"
#include "tools/error.h"
#include "tools/images/metrics.h"
#include "tools/operations/denoise.h"
#include "tools/quality/score.h"
#include "tools/quality/verdict.h"
#include "tools/report/run_page.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

constexpr char kDefaultPhotograph[] = "/usr/share/backgrounds/Dragonfly_by_Bolly.jpg";
constexpr int kFrames = 4;
constexpr int kRuns = 7;
constexpr char kPage[] = "/report.html";

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

// The three numbers, before and after.
Report score_table(const Scorer& scorer, const Score& after) {
  const auto row = [](const char* name, const PlaneScore& then, const PlaneScore& now) {
    return Report{{"plane", name},
                  {"noise_removed", decimals(now.noise_removed, 2)},
                  {"texture_psnr_before", decimals(then.texture_psnr, 2)},
                  {"texture_psnr_after", decimals(now.texture_psnr, 2)},
                  {"ghost_error", "none"}};  // as nothing moves
  };
  const Score& before = scorer.before();
  return {row("luma", before.luma, after.luma), row("chroma", before.chroma, after.chroma)};
}

class Demo : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    sensor_.gain = 48;
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
  void write(const Versions& versions) const;
  void write_report(const BurstFrames& burst, const Result& result, Console& console) const;

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

void Demo::write(const Versions& versions) const {
  save(versions.before, folder_ + "/before.png");
  save(versions.after, folder_ + "/after.png");
  save(draw_tiles(versions), folder_ + "/crop.png");
}

void Demo::write_report(const BurstFrames& burst, const Result& result, Console& console) const {
  if (const std::string obstacle = page_obstacle(); !obstacle.empty()) {
    console.remark(obstacle);
    return;
  }
  write_page(page_of({burst.noisy, denoise_, result, &burst.clean}), folder_ + kPage, console);
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
  write({before, result.frame, &burst.clean});
  console.progress("writing the report");
  write_report(burst, result, console);
  const Scorer scorer(burst.clean, before);
  const Score score = scorer.score(result.frame);
  for (const std::string& loss : losses(scorer.before(), score)) console.remark(loss);
  console.progress("running the other operations");
  const Report further =
      further_operations({burst.clean, before, result.frame, folder_ + '/', kRuns});

  Report report{{"photograph", photograph_},
                {"size", before.size()},
                {"frames", kFrames},
                {"sensor_gain", sensor_.gain},
                {"denoise", quality(burst.clean, before, result.frame)},
                {"score", score_table(scorer, score)}};
  for (const auto& [name, number] : result.figures) report[name] = decimals(number, 0);
  report["milliseconds"] = decimals(1e3 * result.seconds, 1);
  report["megapixels_per_second"] = decimals(before.megapixels() / result.seconds, 0);
  report["further_operations"] = further;
  report["pictures"] = {folder_ + "/before.png", "after.png", "crop.png"};
  if (page_obstacle().empty()) report["report"] = folder_ + kPage;
  console.print(report);
  return kDone;
}

Demo g_demo("demo", "a noisy burst of a photograph made clean", "demo photo.jpg -o out");

}  // namespace
}  // namespace zavri::tools
