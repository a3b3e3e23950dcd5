#include "tools/sensor/burst.h"

#include <cctype>
#include <cstring>
#include <filesystem>

#include "tools/command_line.h"
#include "tools/error.h"
#include "tools/images/metrics.h"

namespace zavri::tools {
namespace {

constexpr int kMostFrames = 4;

// Frames of an older, longer burst would be taken for frames of this one.
void remove_later_frames(const std::string& last) {
  const size_t digit = last.rfind("/frame") + strlen("/frame");
  std::string later = last;
  while (++later[digit] < '0' + kMostFrames) std::filesystem::remove(later);
}

class Burst : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    sensor_.gain = 32;
    options.argument("PHOTO", photograph_, "a picture");
    options.add(word("o", folder_, "FOLDER", "of the frames"), true);
    options.add({whole_number("frames", frames_, 1, kMostFrames, "how many"),
                 choice<std::string>("pix", pixel_, {{"nv12", "nv12"}, {"nv21", "nv21"}},
                                     "format of the frames")});
    declare_sensor(options, sensor_, seed_);
  }

  int run(Console& console) override {
    const Picture photograph = load_picture(photograph_);
    console.progress("making " + std::to_string(frames_) + " noisy frames");
    const BurstFrames burst =
        make_burst(photograph, sensor_, static_cast<uint64_t>(seed_), frames_);
    const std::vector<NamedFrame> named = name_frames(burst, folder_, pixel_);
    make_folder(folder_);
    for (const NamedFrame& frame : named) check_output(frame.path, console.force);
    remove_later_frames(named.back().path);

    Report files = Report::array();
    for (const NamedFrame& frame : named) {
      save(*frame.frame, frame.path);
      Report row{{"file", frame.path}};
      for (const PlaneDifference& plane : compare(*frame.frame, burst.clean)) {
        row[std::string("psnr_") + static_cast<char>(tolower(plane.plane[0]))] =
            decimals(plane.psnr, 2);
      }
      files.push_back(row);
    }
    console.print({{"sensor_gain", sensor_.gain}, {"seed", seed_}, {"frames", files}});
    return kDone;
  }

 private:
  std::string photograph_;
  std::string folder_;
  int frames_ = 4;
  Sensor sensor_;
  int64_t seed_ = 1;
  std::string pixel_ = "nv12";
};

Burst g_burst("burst", "make noisy frames of a photograph",
              "burst photo.jpg --sensor-gain 32 -o frames");

}  // namespace
}  // namespace zavri::tools
