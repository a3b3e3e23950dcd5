#include "tools/sensor/burst.h"

#include <cctype>
#include <filesystem>

#include "tools/command_line.h"
#include "tools/error.h"
#include "tools/images/metrics.h"
#include "tools/operations/denoise.h"

namespace zavri::tools {
namespace {

constexpr double kSensorGain = 32;

class Burst : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    settings_.sensor.gain = kSensorGain;
    options.argument("PHOTO", photograph_, "a picture");
    options.add(word("o", folder_, "FOLDER", "of the frames"), true);
    options.add({whole_number("frames", settings_.frames, Denoise::kFrames.least,
                              Denoise::kFrames.most, "how many"),
                 choice<std::string>("pix", pixel_, {{"nv12", "nv12"}, {"nv21", "nv21"}},
                                     "format of the frames")});
    declare_sensor(options, settings_.sensor, seed_);
    Changes& changes = settings_.changes;
    options.add(
        {word("profile", profile_, "FILE", "noise as zavri noise fits it, for the sensor's"),
         real_number("shake", changes.shake, 0, 100,
                     "hand shake: pixels from frame to frame, a standard deviation an axis"),
         flag("object", changes.object, "an object moves through the picture"),
         or_auto(real_number("object-speed", changes.object_speed, 1, 10000,
                             "pixels from frame to frame, auto a third of the object's size"),
                 changes.object_speed),
         real_number("flicker", changes.flicker, 0, 90,
                     "how far the light of a frame may be from the first one's, percent")});
  }

  int run(Console& console) override {
    check();
    const std::vector<std::string> older = burst_files(folder_);
    for (const std::string& path : older) prepare_output(path, console, check_output);
    const Picture photograph = load_picture(photograph_);
    console.progress("making " + std::to_string(settings_.frames) + " noisy frames");
    const BurstFrames burst = make_burst(photograph, settings_);
    make_folder(folder_);
    // Frames that a longer burst left behind would be taken for frames of this one.
    for (const std::string& path : older) std::filesystem::remove(path);

    Report report{{"seed", seed_}};
    if (settings_.profile) {
      report["profile"] = profile_;
    } else {
      report["sensor_gain"] = settings_.sensor.gain;
    }
    if (burst.moving) {
      report["mask"] = name_mask(burst, folder_);
      save(burst.moving->picture(), name_mask(burst, folder_));
    }
    report["frames"] = save_frames(burst);
    console.print(report);
    return kDone;
  }

 private:
  void check() {
    if (settings_.changes.object_speed > 0 && !settings_.changes.object) {
      throw Error("--object-speed: needs --object");
    }
    settings_.seed = static_cast<uint64_t>(seed_);
    if (profile_.empty()) return;
    if (settings_.sensor.gain != kSensorGain) {
      throw Error("--sensor-gain: goes without --profile, which says what the noise is");
    }
    settings_.profile = load_noise_profile(profile_);
  }

  Report save_frames(const BurstFrames& burst) const {
    const Changes& changes = settings_.changes;
    Report rows = Report::array();
    for (const NamedFrame& frame : name_frames(burst, folder_, pixel_)) {
      save(*frame.frame, frame.path);
      Report row{{"file", frame.path}};
      // The clean frame, which comes first, shows what the first noisy one does.
      const View& view = burst.views[std::max<size_t>(rows.size(), 1) - 1];
      if (changes.shake > 0) row["shift"] = {decimals(view.x, 2), decimals(view.y, 2)};
      if (changes.object) row["object"] = {view.object_x, view.object_y};
      if (changes.flicker > 0) row["light"] = decimals(view.light, 3);
      for (const PlaneDifference& plane : compare(*frame.frame, burst.clean)) {
        row[std::string("psnr_") + static_cast<char>(tolower(plane.plane[0]))] =
            decimals(plane.psnr, 2);
      }
      rows.push_back(row);
    }
    return rows;
  }

  std::string photograph_;
  std::string folder_;
  std::string profile_;
  BurstSettings settings_;
  int64_t seed_ = 1;
  std::string pixel_ = "nv12";
};

Burst g_burst("burst", "make noisy frames of a photograph",
              "burst photo.jpg --sensor-gain 32 --shake 1.5 --object -o frames");

}  // namespace
}  // namespace zavri::tools
