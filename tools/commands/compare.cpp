#include <algorithm>

#include "tools/command_line.h"
#include "tools/error.h"
#include "tools/images/metrics.h"

namespace zavri::tools {
namespace {

// The differences of a row around mid-grey, magnified so that single levels show.
void fill_difference(const uint8_t* a, const uint8_t* b, uint8_t* difference, int width) {
  constexpr int kMagnified = 8;
  for (int x = 0; x < width; ++x) {
    difference[x] = static_cast<uint8_t>(std::clamp(128 + kMagnified * (a[x] - b[x]), 0, 255));
  }
}

Frame difference_of(const Frame& a, const Frame& b) {
  const Frame other = b.with_order(a.order());
  Frame difference(a.width(), a.height(), a.order());
  for (int y = 0; y < a.height(); ++y) {
    fill_difference(a.luma_row(y), other.luma_row(y), difference.luma_row(y), a.width());
  }
  for (int y = 0; y < a.height() / 2; ++y) {
    fill_difference(a.chroma_row(y), other.chroma_row(y), difference.chroma_row(y), a.width());
  }
  return difference;
}

class Compare : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    input_.declare(options, "two frames of one size");
    options.add(
        {real_number("min-psnr", min_psnr_, 0, 1000, "exit status 1 where a plane is below (dB)"),
         word("diff", difference_.path, "OUT", "picture of the differences, eightfold")});
  }

  int run(Console& console) override {
    if (!difference_.path.empty()) difference_.prepare(console);
    const std::vector<Frame> frames = load_frames(input_.paths, input_.options, 2);
    if (frames.size() != 2) throw Error("IN: two frames are compared");
    const Frame& a = frames[0];
    const Frame& b = frames[1];
    if (a.size() != b.size()) {
      throw Error(input_.paths.back() + ": " + b.size() + " cannot be compared with " + a.size());
    }
    Report table = Report::array();
    bool above_limit = true;
    for (const PlaneDifference& plane : compare(a, b)) {
      table.push_back({{"plane", plane.plane},
                       {"psnr", decimals(plane.psnr, 2)},
                       {"ssim", decimals(plane.ssim, 4)},
                       {"largest_difference", plane.largest}});
      above_limit &= plane.psnr >= min_psnr_;
    }
    if (!difference_.path.empty()) save(difference_of(a, b), difference_.path);
    console.print({{"size", a.size()}, {"planes", table}});
    return above_limit ? kDone : kBelowLimit;
  }

 private:
  Input input_;
  double min_psnr_ = 0;
  Output difference_;
};

Compare g_compare("compare", "PSNR and SSIM (over 8x8 windows) of two frames, plane by plane",
                  "compare clean.png out.png --min-psnr 30");

}  // namespace
}  // namespace zavri::tools
