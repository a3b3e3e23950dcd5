#include "tools/operations/denoise.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr int kEdgeGainEnd = 16;

// Without the frames.
T_3DYuvDenoiseParam record_of(const Denoise& denoise, const Size& size, size_t stride,
                              size_t frames) {
  T_3DYuvDenoiseParam param{};
  param.ref_index = static_cast<uint8_t>(denoise.reference);
  param.frame_num = static_cast<uint8_t>(frames);
  param.switch_a = denoise.merge == Merge::kWhole;
  param.switch_b = denoise.merge == Merge::kEdges;
  param.switch_c = denoise.merge == Merge::kEdgesLuma;
  param.switch_d = denoise.smooth;
  param.thresh_tune = 1;
  param.gain = static_cast<uint8_t>(denoise.gain);
  param.width = static_cast<uint32_t>(size.width);
  param.height = static_cast<uint32_t>(size.height);
  param.y_stride = param.uv_stride = static_cast<uint32_t>(stride);
  param.thresh = static_cast<uint8_t>(denoise.thresh);
  param.thresh_table = denoise.curve.data();
  param.thresh_table_len = static_cast<uint8_t>(denoise.curve.size());
  param.threshY = static_cast<uint8_t>(denoise.thresh_luma);
  param.threshY_table = denoise.curve_luma.data();
  param.threshY_table_len = static_cast<uint8_t>(denoise.curve_luma.size());
  return param;
}

// Whether these thresholds leave the library nothing to do.
bool is_idle(Merge merge, const T_3DYuvDenoiseParam& used) {
  if (used.thresh < 2 && used.threshY < 2) return true;
  if (used.frame_num == 1) return false;
  switch (merge) {
    case Merge::kWhole:
      return used.thresh == 0;
    case Merge::kEdges:
    case Merge::kEdgesLuma:
      return used.threshY < 2;
    case Merge::kChroma:
      return used.thresh < 2;
  }
  return true;
}

bool is_of_edges(Merge merge) { return merge == Merge::kEdges || merge == Merge::kEdgesLuma; }

// What the library merges at this gain.
Merge merge_at_gain(const Denoise& denoise) {
  return is_of_edges(denoise.merge) && denoise.gain >= kEdgeGainEnd ? Merge::kChroma
                                                                    : denoise.merge;
}

// Where the library does less than the settings ask for, or something else.
std::vector<std::string> remarks_on(const Denoise& denoise, const T_3DYuvDenoiseParam& used,
                                    double megapixels) {
  std::vector<std::string> lines;
  const Merge merge = merge_at_gain(denoise);
  if (merge != denoise.merge && used.frame_num > 1) {
    lines.push_back("--gain " + std::to_string(denoise.gain) + ": edges need a gain below " +
                    std::to_string(kEdgeGainEnd) + "; the chroma of the whole frame was merged");
  }
  if (is_idle(merge, used)) {
    const char* const what = used.frame_num == 1 ? "smoothed" : "merged";
    const char* const why = megapixels < 2 ? "below 2 megapixels the library scales thresholds to 0"
                                           : "a higher threshold or gain is needed";
    return {"thresholds " + std::to_string(used.thresh) + " and " + std::to_string(used.threshY) +
            ": nothing was " + what + "; " + why};
  }
  const size_t luma = zavri_room_denoise_luma(&used);
  if (used.frame_num > 1 && merge != Merge::kChroma && luma > used.uv_offset) {
    lines.push_back("the last strip merges luma in " + std::to_string(luma - used.uv_offset) +
                    " bytes of the chroma plane too: what they become depends on timing, and " +
                    "padding between the planes would keep them apart");
  }
  return lines;
}

// The library counts strides in 16 bits where it smooths, and where it merges edges of 2 or 3
// frames. All copies have the stride of the reference.
void check_stride(const Denoise& denoise, const Frames& frames) {
  const bool edges = denoise.merge == Merge::kEdges || denoise.merge == Merge::kEdgesLuma;
  const bool in_16_bits =
      denoise.smooth || (edges && denoise.gain < kEdgeGainEnd && frames.size() < 4);
  if (!in_16_bits) return;
  expect_stride(frames[static_cast<size_t>(denoise.reference)], INT16_MAX,
                denoise.smooth ? "chroma is smoothed with" : "edges are merged with");
}

}  // namespace

Settings Denoise::settings() {
  const auto threshold = [](const char* name, int& value, const char* what) {
    return or_auto(whole_number(name, value, 1, 100, what), value);
  };
  const std::string edges =
      "what is merged, the edges only for a gain below " + std::to_string(kEdgeGainEnd);
  return {
      threshold("thresh", thresh, "of chroma, scaled by the frame's size"),
      threshold("thresh-luma", thresh_luma, "of luma, scaled likewise"),
      choice<Merge>("mode", merge,
                    {{"whole", Merge::kWhole},
                     {"edges", Merge::kEdges},
                     {"edges-luma", Merge::kEdgesLuma},
                     {"chroma", Merge::kChroma}},
                    edges),
      whole_number("gain", gain, 0, 255, "sensor gain of the record"),
      whole_number("ref", reference, 0, kFrames.most - 1, "index of the frame that is denoised"),
      flag("smooth", smooth, "smooth the chroma afterwards"),
      curve_setting("thresh-table", curve, kThreshTable,
                    "chroma thresholds by gain, for --thresh auto; a file holds them in JSON "
                    "or as an initialiser in C"),
      curve_setting("thresh-luma-table", curve_luma, kThreshLumaTable, "luma thresholds likewise")};
}

Settings Smooth::settings() { return {Denoise::settings().front()}; }

void Denoise::check(const Size&, int frames) const {
  check_count(frames);
  const auto check_curve = [](const char* name, const Curve& points, int request) {
    if (points.empty() || request == 0) return;
    throw Error("--" + std::string(name) + "-table: needs --" + name +
                " auto; the library would take " + std::to_string(request) + " instead");
  };
  check_curve("thresh", curve, thresh);
  check_curve("thresh-luma", curve_luma, thresh_luma);
  if (reference >= frames) {
    throw Error("--ref " + std::to_string(reference) + ": below the number of frames, " +
                std::to_string(frames));
  }
  if (frames == 1 && !smooth) {
    throw Error("--smooth: is needed for a single frame, which has nothing to be merged with");
  }
}

Result Denoise::run(const Frames& frames, int runs) const {
  DenoiseRuns copies(frames);
  Result result = copies.run(*this, runs);
  result.frame = frames[static_cast<size_t>(reference)];
  copy_picture(copies.merged(), result.frame);
  return result;
}

Thresholds Denoise::used(const Size& size) const {
  // With no frames the entry derives the thresholds and does nothing else.
  T_3DYuvDenoiseParam param = record_of(*this, size, static_cast<size_t>(size.width), 0);
  expect_accepted(zavri_mp_3D_YUV_denoise(&param));
  return {param.thresh, merge_at_gain(*this) == Merge::kChroma ? 0 : param.threshY};
}

std::string Denoise::effect(const Size& size) const {
  const Merge merged = merge_at_gain(*this);
  const Thresholds thresholds = used(size);
  // Edges know luma's threshold alone, and nothing but smoothing knows the gain.
  const int parts[] = {static_cast<int>(merged), is_of_edges(merged) ? 0 : thresholds.chroma,
                       thresholds.luma, smooth ? gain : -1};
  std::string text;
  for (const int part : parts) text += std::to_string(part) + ' ';
  return text;
}

void DenoiseRuns::prepare(const Room& room) {
  if (!copies_.empty() && room.luma <= room_.luma && room.chroma <= room_.chroma) return;
  room_ = {std::max(room.luma, room_.luma), 0, std::max(room.chroma, room_.chroma)};
  copies_.clear();
  for (const Frame& frame : frames_) {
    copies_.push_back(roomy_copy(frame, frames_[worked_], room_));
  }
}

Result DenoiseRuns::run(const Denoise& denoise, int runs) {
  denoise.check(size_of(frames_.front()), static_cast<int>(frames_.size()));
  expect_one_size(frames_);
  check_stride(denoise, frames_);
  if (worked_ != static_cast<size_t>(denoise.reference)) copies_.clear();
  worked_ = static_cast<size_t>(denoise.reference);
  const Frame& noisy = frames_[worked_];
  const T_3DYuvDenoiseParam asked =
      record_of(denoise, size_of(noisy), noisy.layout().stride, frames_.size());
  prepare({zavri_room_denoise_luma(&asked), 0, zavri_room_denoise_chroma(&asked)});

  T_3DYuvDenoiseParam param{};
  const auto restore = [&] {
    copy_picture(noisy, copies_[worked_]);
    // The entry writes the thresholds that it used into the record, so that each run has its own.
    param = asked;
    param.uv_offset = static_cast<uint32_t>(copies_[worked_].layout().chroma_at);
    for (size_t k = 0; k < copies_.size(); ++k) param.frame_y[k] = copies_[k].buffer().data();
  };
  Result result;
  result.seconds =
      median_seconds(runs, restore, [&] { expect_accepted(zavri_mp_3D_YUV_denoise(&param)); });
  result.figures = {{"thresh", param.thresh}, {"thresh_luma", param.threshY}};
  result.remarks = remarks_on(denoise, param, noisy.megapixels());
  return result;
}

}  // namespace zavri::tools
