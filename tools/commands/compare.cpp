#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <utility>

#include "tools/command_line.h"
#include "tools/commands/pairs.h"
#include "tools/error.h"
#include "tools/images/mask.h"
#include "tools/images/metrics.h"
#include "tools/operations/measure.h"
#include "tools/quality/score.h"

namespace zavri::tools {
namespace {

// Puts the differences of a row around mid-grey, magnified so that single levels show.
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

// Holds two frames, and what they are judged by.
struct Case {
  Frame a;
  Frame b;
  std::optional<Frame> clean;
  std::optional<Mask> moving;

  const Frame& target() const { return clean ? *clean : a; }
  Scorer scorer() const { return {*clean, a, moving ? &*moving : nullptr}; }
};

using Planes = std::vector<PlaneDifference>;

std::string key(const std::string& name, const PlaneDifference& plane) {
  return name + '_' + static_cast<char>(tolower(plane.plane[0]));
}

class Compare : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;
  int run(Console& console) override;

 private:
  void check() const;
  int run_pair(Console& console);
  int run_folders(Console& console);
  int run_without_last(Console& console);

  Case load_case(const std::string& name, std::vector<std::string> paths) const;
  // Leaves the part of the frame that is compared.
  void cut(Frame& frame) const;
  bool is_above_limits(const Planes& planes) const;

  static Report table_of(const Planes& planes, const std::optional<Planes>& before);
  static Report table_of(const Score& score, const Score& before);

  Input input_;
  std::string reference_;
  std::string mask_;
  std::string without_last_;
  std::optional<Rect> rect_;
  double min_psnr_ = 0;
  double min_ssim_ = 0;
  Output difference_;
};

void Compare::declare(Options& options) {
  input_.declare(options, "two frames of one size, or two folders with frames of the same names");
  options.add(
      {word("reference", reference_, "CLEAN",
            "the clean frame, or a folder of them; the first frame is taken as the noisy one and "
            "the second as the result, which gets its score"),
       word("mask", mask_, "MASK", "picture that is white where something moves, for the score"),
       word("without-last", without_last_, "RESULT",
            "the score without a clean frame: IN are the frames of a burst, three at least, and "
            "RESULT was made of all but the last, with the first as reference"),
       rect_setting(rect_, "the part that counts, all four even"),
       real_number("min-psnr", min_psnr_, 0, 1000, "exit status 1 where a plane is below (dB)"),
       real_number("min-ssim", min_ssim_, -1, 1, "exit status 1 where a plane is below"),
       word("diff", difference_.path, "OUT", "picture of the differences, eightfold")});
}

void Compare::check() const {
  if (!mask_.empty() && reference_.empty()) throw Error("--mask: needs --reference");
  if (without_last_.empty()) return;
  if (!reference_.empty() || !difference_.path.empty() || min_psnr_ > 0 || min_ssim_ > 0) {
    throw Error(
        "--without-last: goes without --reference, --min-psnr, --min-ssim and --diff, as there is "
        "no clean frame");
  }
}

void Compare::cut(Frame& frame) const {
  if (!rect_) return;
  const Rect& r = *rect_;
  const bool is_even = (r.x | r.y | r.width | r.height) % 2 == 0;
  const bool is_inside = r.x >= 0 && r.y >= 0 && r.width > 0 && r.height > 0 &&
                         r.x + r.width <= frame.width() && r.y + r.height <= frame.height();
  if (!is_even || !is_inside) {
    throw Error("--rect " + r.text() + ": takes four even numbers inside of " + frame.size());
  }
  frame = frame.crop(r.x, r.y, r.width, r.height);
}

Case Compare::load_case(const std::string& name, std::vector<std::string> paths) const {
  if (!reference_.empty()) paths.push_back(file_named(name, reference_));
  std::vector<Frame> frames = load_frames(paths, input_.options, 2);
  const size_t expected = reference_.empty() ? 2 : 3;
  if (frames.size() != expected) throw Error("IN: two frames are compared");
  const std::string size = frames[0].size();
  for (size_t i = 0; i < frames.size(); ++i) {
    if (frames[i].size() != size) {
      const std::string& path = paths[std::min(i, paths.size() - 1)];
      throw Error(path + ": " + frames[i].size().append(" cannot be compared with ").append(size));
    }
    cut(frames[i]);
  }
  Case loaded{std::move(frames[0]), std::move(frames[1]), {}, {}};
  if (!reference_.empty()) loaded.clean = std::move(frames[2]);
  if (!mask_.empty()) {
    loaded.moving = load_mask(file_named(name, mask_), size);
    if (rect_) loaded.moving = loaded.moving->crop(rect_->x, rect_->y, rect_->width, rect_->height);
  }
  return loaded;
}

bool Compare::is_above_limits(const Planes& planes) const {
  return std::all_of(planes.begin(), planes.end(), [this](const PlaneDifference& plane) {
    return plane.psnr >= min_psnr_ && plane.ssim >= min_ssim_;
  });
}

Report Compare::table_of(const Planes& planes, const std::optional<Planes>& before) {
  Report table = Report::array();
  for (size_t i = 0; i < planes.size(); ++i) {
    Report row{{"plane", planes[i].plane}};
    if (before) row["psnr_before"] = decimals((*before)[i].psnr, 2);
    row["psnr"] = decimals(planes[i].psnr, 2);
    if (before) row["ssim_before"] = decimals((*before)[i].ssim, 4);
    row["ssim"] = decimals(planes[i].ssim, 4);
    row["largest_difference"] = planes[i].largest;
    table.push_back(row);
  }
  return table;
}

Report ghost_of(const PlaneScore& score) {
  return score.ghost_error ? decimals(*score.ghost_error, 2) : Report("none");
}

Report Compare::table_of(const Score& score, const Score& before) {
  const auto row = [&](const char* name, const PlaneScore& now, const PlaneScore& then) {
    return Report{{"plane", name},
                  {"noise_removed", decimals(now.noise_removed, 2)},
                  {"texture_psnr_before", decimals(then.texture_psnr, 2)},
                  {"texture_psnr", decimals(now.texture_psnr, 2)},
                  {"ghost_error_before", ghost_of(then)},
                  {"ghost_error", ghost_of(now)}};
  };
  return {row("luma", score.luma, before.luma), row("chroma", score.chroma, before.chroma)};
}

int Compare::run_pair(Console& console) {
  const Case pair = load_case("", input_.paths);
  const Planes planes = compare(pair.target(), pair.b);
  std::optional<Planes> before;
  if (pair.clean) before = compare(*pair.clean, pair.a);
  Report report{{"size", pair.a.size()}, {"planes", table_of(planes, before)}};
  if (pair.clean) {
    const Scorer scorer = pair.scorer();
    report["score"] = table_of(scorer.score(pair.b), scorer.before());
  }
  if (!difference_.path.empty()) save(difference_of(pair.target(), pair.b), difference_.path);
  console.print(report);
  return is_above_limits(planes) ? kDone : kBelowLimit;
}

int Compare::run_folders(Console& console) {
  if (!difference_.path.empty()) throw Error("--diff: takes two frames, no folders");
  Report rows = Report::array();
  bool all_above = true;
  for (const FilePair& files : pair_files(input_.paths[0], input_.paths[1])) {
    const Case pair = load_case(files.name, {files.a, files.b});
    const Planes planes = compare(pair.target(), pair.b);
    all_above &= is_above_limits(planes);
    Report row{{"name", files.name}};
    for (const PlaneDifference& plane : planes) row[key("psnr", plane)] = decimals(plane.psnr, 2);
    for (const PlaneDifference& plane : planes) row[key("ssim", plane)] = decimals(plane.ssim, 4);
    if (pair.clean) {
      const Score score = pair.scorer().score(pair.b);
      for (const auto& [name, part] : {std::pair("luma", score.luma), {"chroma", score.chroma}}) {
        row[std::string(name) + "_noise_removed"] = decimals(part.noise_removed, 2);
        row[std::string(name) + "_texture_psnr"] = decimals(part.texture_psnr, 2);
        row[std::string(name) + "_ghost_error"] = ghost_of(part);
      }
    }
    rows.push_back(row);
  }
  console.print({{"pairs", rows}});
  return all_above ? kDone : kBelowLimit;
}

int Compare::run_without_last(Console& console) {
  constexpr int kMostFrames = 16;
  std::vector<std::string> paths = input_.paths;
  paths.push_back(without_last_);
  std::vector<Frame> frames = load_frames(paths, input_.options, kMostFrames);
  for (Frame& frame : frames) cut(frame);
  const Frame result = std::move(frames.back());
  frames.pop_back();
  const Scorer scorer(frames, frames.size() - 1);
  console.print({{"size", frames[0].size()},
                 {"moving_percent", decimals(100 * scorer.moving_share(), 1)},
                 {"score", table_of(scorer.score(result), scorer.before())}});
  return kDone;
}

int Compare::run(Console& console) {
  check();
  if (!difference_.path.empty()) difference_.prepare(console);
  if (!without_last_.empty()) return run_without_last(console);
  const auto is_folder = [](const std::string& path) {
    return std::filesystem::is_directory(path);
  };
  const std::vector<std::string>& paths = input_.paths;
  if (std::none_of(paths.begin(), paths.end(), is_folder)) return run_pair(console);
  if (paths.size() == 2 && std::all_of(paths.begin(), paths.end(), is_folder)) {
    return run_folders(console);
  }
  throw Error("IN: two folders are compared, or two frames");
}

Compare g_compare("compare",
                  "PSNR and SSIM of frames by plane; with a clean frame, the score of a result",
                  "compare noisy.png out.png --reference clean.png --mask mask.png");

}  // namespace
}  // namespace zavri::tools
