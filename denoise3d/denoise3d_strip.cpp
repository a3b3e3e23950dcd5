#include <algorithm>

#include "denoise3d/edge_sections.h"
#include "denoise3d/merge.h"
#include "denoise3d/uv_run_smooth.h"
#include "include/zavricustpro.h"
#include "platform/log.h"

namespace zavri {
namespace {

constexpr int32_t kFirstStrip = 0;
constexpr uint8_t kEdgeGainEnd = 16;  // the edge modes serve lower gains only
constexpr uint16_t kSmoothLevel = 10;

enum class MergeMode {
  kNone,
  kWhole,      // chroma and luma of all rows
  kEdges,      // chroma and luma of the edge sections
  kEdgesLuma,  // luma of the edge sections
  kChroma,     // chroma of all rows
};

MergeMode choose_mode(const T_3DYuvDenoiseParam& param) {
  if (!param.thresh_tune) return MergeMode::kNone;
  const bool edge_gain = param.gain < kEdgeGainEnd;
  if (param.switch_a && !param.switch_b) return MergeMode::kWhole;
  if (param.switch_b && edge_gain) return MergeMode::kEdges;
  if (param.switch_c && edge_gain) return MergeMode::kEdgesLuma;
  return param.thresh >= 2 ? MergeMode::kChroma : MergeMode::kNone;
}

// A strip of the reference frame, which knows where the other frames hold the same samples.
class Strip {
 public:
  Strip(const T_3DYuvDenoiseParam& param, int32_t number);

  // Returns false when the task ends without the smoothing pass.
  bool merge();
  void smooth_chroma() const;

 private:
  void merge_rows(MergeKind kind, const MergeLimits& limits);
  void merge_edges(MergeKind kind);
  ptrdiff_t last_strips_end(ptrdiff_t row_step, ptrdiff_t row_bytes) const;
  void merge_row(MergeKind kind, ptrdiff_t chroma, ptrdiff_t luma, size_t bytes,
                 const MergeLimits& limits) const;
  MergeRow row_at(ptrdiff_t chroma, ptrdiff_t luma) const;
  void log_geometry(const char* variant) const;

  const T_3DYuvDenoiseParam& param_;
  const int32_t number_;
  const uint32_t chroma_rows_;
  // All offsets count from the first byte of a frame's luma plane.
  ptrdiff_t chroma_;
  ptrdiff_t luma_;
  ptrdiff_t luma_end_ = 0;  // where the luma that the last strip works on ends
  const uint8_t* others_[3];
};

uint32_t chroma_rows(int32_t number, uint32_t height) {
  const uint32_t quarter = height / 8;
  return number == kZavriLastStrip ? height / 2 - kZavriLastStrip * quarter : quarter;
}

Strip::Strip(const T_3DYuvDenoiseParam& param, int32_t number)
    : param_(param), number_(number), chroma_rows_(chroma_rows(number, param.height)), others_{} {
  const auto first = static_cast<ptrdiff_t>(number);
  chroma_ = static_cast<ptrdiff_t>(param.uv_offset) +
            first * static_cast<ptrdiff_t>(param.height / 8) * param.uv_stride;
  // This is a quotient of its own, not twice the chroma row: at a height of 12 strip 1 starts at
  // chroma row 1 and luma row 3.
  luma_ = first * static_cast<ptrdiff_t>(param.height / 4) * param.y_stride;
  for (int k = 0, other = 0; k < param.frame_num && other < param.frame_num - 1; ++k) {
    if (k != param.ref_index) others_[other++] = param.frame_y[k];
  }
}

MergeRow Strip::row_at(ptrdiff_t chroma, ptrdiff_t luma) const {
  uint8_t* const reference = param_.frame_y[param_.ref_index];
  MergeRow row{};
  row.uv = reference + chroma_ + chroma;
  row.y0 = reference + luma_ + luma;
  row.y1 = row.y0 + param_.y_stride;
  for (int k = 0; k < param_.frame_num - 1; ++k) {
    row.other_uv[k] = others_[k] + chroma_ + chroma;
    row.other_y[k] = others_[k] + luma_ + luma;
  }
  return row;
}

// Where the last strip's luma runs into chroma, another strip may merge that chroma at the same
// time. The vector forms write back what they do not change, and would undo the merge; the plain
// rule writes only what it merges.
void Strip::merge_row(MergeKind kind, ptrdiff_t chroma, ptrdiff_t luma, size_t bytes,
                      const MergeLimits& limits) const {
  const ptrdiff_t chroma_plane = static_cast<ptrdiff_t>(param_.uv_offset);
  const ptrdiff_t luma_end = luma_ + luma + static_cast<ptrdiff_t>(param_.y_stride + bytes);
  const bool is_shared = luma_end > chroma_plane || chroma_ + chroma < luma_end_;
  const MergeKernels& kernels = merge_kernels(is_shared ? Build::kPlain : best_build());
  kernels.get(kind, param_.frame_num - 1)(row_at(chroma, luma), bytes, limits);
}

ptrdiff_t Strip::last_strips_end(ptrdiff_t row_step, ptrdiff_t row_bytes) const {
  const auto y_stride = static_cast<ptrdiff_t>(param_.y_stride);
  const auto rows = static_cast<ptrdiff_t>(chroma_rows(kZavriLastStrip, param_.height));
  return kZavriLastStrip * static_cast<ptrdiff_t>(param_.height / 4) * y_stride +
         (rows - 1) * row_step + y_stride + row_bytes;
}

void Strip::merge_rows(MergeKind kind, const MergeLimits& limits) {
  const size_t bytes = param_.width & ~size_t{1};
  luma_end_ =
      last_strips_end(2 * static_cast<ptrdiff_t>(param_.y_stride), static_cast<ptrdiff_t>(bytes));
  for (ptrdiff_t r = 0; r < static_cast<ptrdiff_t>(chroma_rows_); ++r) {
    merge_row(kind, r * param_.uv_stride, 2 * r * param_.y_stride, bytes, limits);
  }
}

void Strip::merge_edges(MergeKind kind) {
  const EdgeSections sections(param_);
  luma_end_ =
      last_strips_end(sections.luma_step, sections.right + static_cast<ptrdiff_t>(sections.bytes));
  EdgeRamp left(EdgeSide::kLeft, param_.threshY, param_.width);
  EdgeRamp right(EdgeSide::kRight, param_.threshY, param_.width);

  const auto merge_section = [&](ptrdiff_t chroma, ptrdiff_t luma, EdgeRamp& ramp) {
    for (size_t b = 0; b < sections.bytes; b += EdgeRamp::kWindow) {
      const size_t bytes = std::min(sections.bytes - b, EdgeRamp::kWindow);
      const auto offset = static_cast<ptrdiff_t>(b);
      merge_row(kind, chroma + offset, luma + offset, bytes, {0, 0, ramp.limits(b, bytes)});
    }
  };
  for (ptrdiff_t r = 0; r < static_cast<ptrdiff_t>(chroma_rows_); ++r) {
    const ptrdiff_t chroma = r * sections.chroma_step;
    const ptrdiff_t luma = r * sections.luma_step;
    merge_section(chroma, luma, left);
    merge_section(chroma + sections.right, luma + sections.right, right);
  }
}

void Strip::log_geometry(const char* variant) const {
  const uint32_t jump = (param_.uv_stride - param_.width) & 0xffff;
  __android_log_print(kLogError, kTagProcessing,
                      "%s, width:%d, height:%d, UVStride:%d, YStride:%d, jumpUVLen:%d,", variant,
                      static_cast<int>(param_.width), static_cast<int>(param_.height),
                      static_cast<int>(param_.uv_stride), static_cast<int>(param_.y_stride),
                      static_cast<int>(jump));
}

bool Strip::merge() {
  const bool four_frames = param_.frame_num == 4;
  // A threshold t accepts differences up to t - 1.
  const auto chroma_limit = static_cast<uint8_t>(param_.thresh - 1);
  const auto luma_limit = static_cast<uint8_t>(param_.threshY - 1);

  switch (const MergeMode mode = choose_mode(param_)) {
    case MergeMode::kNone:
      return false;
    case MergeMode::kWhole:
      if (param_.thresh == 0) return true;
      merge_rows(param_.threshY == 0 ? MergeKind::kChroma : MergeKind::kWhole,
                 {chroma_limit, luma_limit, nullptr});
      return true;
    case MergeMode::kChroma:
      if (four_frames) log_geometry("inner4");
      merge_rows(MergeKind::kChroma, {chroma_limit, 0, nullptr});
      return true;
    case MergeMode::kEdges:
    case MergeMode::kEdgesLuma:
      if (param_.threshY < 2) return false;
      if (number_ != kFirstStrip && number_ != kZavriLastStrip) return false;
      if (four_frames) log_geometry("edge4");
      merge_edges(mode == MergeMode::kEdges ? MergeKind::kEdges : MergeKind::kEdgesLuma);
      return true;
  }
  return false;
}

void Strip::smooth_chroma() const {
  T_UvRunSmoothParam smooth{};
  smooth.gain = param_.gain;
  smooth.level = kSmoothLevel;
  // The record's fields are 16 bits wide; larger values are cut.
  smooth.width = static_cast<uint16_t>(param_.width);
  smooth.rows = static_cast<uint16_t>(chroma_rows_);
  smooth.stride = static_cast<uint16_t>(param_.uv_stride);
  smooth.plane = param_.frame_y[param_.ref_index] + chroma_;
  uv_run_smooth(&smooth);
}

}  // namespace
}  // namespace zavri

void zavri_mp_3D_YUV_denoise_inner(const void* strip, const void* param, void*) {
  if (strip == nullptr || param == nullptr) return;
  const auto& p = *static_cast<const T_3DYuvDenoiseParam*>(param);
  if (p.thresh <= 1 && p.threshY < 2) return;
  if (p.frame_num < 1 || p.frame_num > 4) return;

  zavri::Strip work(p, *static_cast<const int32_t*>(strip));
  if (p.frame_num > 1 && !work.merge()) return;
  if (p.switch_d) work.smooth_chroma();
}
