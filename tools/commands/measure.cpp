#include "tools/operations/measure.h"

#include <algorithm>
#include <climits>

#include "tools/command_line.h"
#include "tools/error.h"

namespace zavri::tools {
namespace {

Report row_of(const std::string& name, const Rect& rect, const Measures& measures) {
  return {{"file", name},
          {"rect", {rect.x, rect.y, rect.width, rect.height}},
          {"focus", measures.focus},
          {"derivation", measures.derivation},
          {"average", measures.average},
          {"brightness", measures.brightness},
          {"mean", decimals(measures.mean, 2)}};
}

// Marks the frames of the largest focus value. Rectangles of different sizes do not compare, nor do
// frames without any detail.
void mark_sharpest(Report& rows, const std::vector<Rect>& rects, bool as_text) {
  const auto same_size = [&](const Rect& rect) {
    return rect.width == rects.front().width && rect.height == rects.front().height;
  };
  if (rows.size() < 2 || !std::all_of(rects.begin(), rects.end(), same_size)) return;
  uint32_t most = 0;
  for (const Report& row : rows) most = std::max(most, row["focus"].get<uint32_t>());
  if (most == 0) return;
  for (Report& row : rows) {
    const bool sharpest = row["focus"] == most;
    row["sharpest"] = as_text ? Report(sharpest ? "*" : "") : Report(sharpest);
  }
}

class Measure : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    input_.declare(options, "frames; of several the sharpest is marked");
    options.add({rect_setting(rect_,
                              "without it all but the last column and row, which is the largest "
                              "there is, or of frames above 8 megapixels its middle"),
                 flag("csv", csv_, "print results as comma-separated values")});
  }

  int run(Console& console) override {
    if (csv_ && console.json) throw Error("--csv: goes without --json");
    console.csv = csv_;
    for (const std::string& path : input_.paths) {
      const std::vector<Frame> frames = load_all({path}, input_.options, INT_MAX).front().frames;
      for (const Frame& frame : frames) {
        const std::string number =
            frames.size() > 1 ? '#' + std::to_string(&frame - &frames[0]) : "";
        add(path + number, frame);
      }
    }
    const bool may_wrap =
        std::any_of(rects_.begin(), rects_.end(), [](const Rect& rect) { return rect.may_wrap(); });
    if (may_wrap) {
      console.remark("--rect: the library's sums count modulo 2^32; above " +
                     std::to_string(kSafeSamples) +
                     " samples they may have wrapped, and no frame is marked");
    } else {
      mark_sharpest(rows_, rects_, !console.json);
    }
    console.print({{"measures", rows_}});
    return kDone;
  }

 private:
  void add(const std::string& name, const Frame& frame) {
    const Rect rect = rect_ ? *rect_ : default_rect(frame);
    rows_.push_back(row_of(name, rect, measure(name, frame, rect)));
    rects_.push_back(rect);
  }

  Input input_;
  std::optional<Rect> rect_;
  bool csv_ = false;
  Report rows_ = Report::array();
  std::vector<Rect> rects_;
};

Measure g_measure("measure", "focus value, derivation, average and brightness of the luma",
                  "measure sweep/*_4000x3000.nv12 --rect 1600,1200,800,600");

}  // namespace
}  // namespace zavri::tools
