#include "tools/denoise.h"

#include <zavricustpro.h>

#include <algorithm>
#include <chrono>
#include <cstring>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr int kEdgeGainEnd = 16;

// The edge sections of two and three frames drift past both planes, and with some heights the last
// strip works up to three luma rows below its plane: with this room between and after the planes
// strips never meet.
size_t room_after_plane(const Frame& frame) {
  const auto width = static_cast<size_t>(frame.width);
  const auto last_strip_rows = static_cast<size_t>(frame.height / 2 - 3 * (frame.height / 8));
  return 4 * width + 2 * (width / 4) * last_strip_rows;
}

// Copies of the frames in the layout that the record describes.
class Planes {
 public:
  explicit Planes(const std::vector<Frame>& frames) {
    const Frame& first = frames.front();
    uv_offset_ = first.luma.size() + room_after_plane(first);
    for (const Frame& frame : frames) {
      std::vector<uint8_t> bytes(uv_offset_ + first.chroma.size() + room_after_plane(first));
      memcpy(bytes.data(), frame.luma.data(), frame.luma.size());
      memcpy(&bytes[uv_offset_], frame.chroma.data(), frame.chroma.size());
      bytes_.push_back(std::move(bytes));
    }
  }

  void describe(T_3DYuvDenoiseParam& param) {
    param.uv_offset = static_cast<uint32_t>(uv_offset_);
    for (size_t k = 0; k < bytes_.size(); ++k) param.frame_y[k] = bytes_[k].data();
  }

  void copy_to(Frame& frame, int index) const {
    const std::vector<uint8_t>& bytes = bytes_[static_cast<size_t>(index)];
    memcpy(frame.luma.data(), bytes.data(), frame.luma.size());
    memcpy(frame.chroma.data(), &bytes[uv_offset_], frame.chroma.size());
  }

  void copy_from(const Frame& frame, int index) {
    std::vector<uint8_t>& bytes = bytes_[static_cast<size_t>(index)];
    memcpy(bytes.data(), frame.luma.data(), frame.luma.size());
    memcpy(&bytes[uv_offset_], frame.chroma.data(), frame.chroma.size());
  }

 private:
  size_t uv_offset_;
  std::vector<std::vector<uint8_t>> bytes_;
};

T_3DYuvDenoiseParam record(const std::vector<Frame>& frames, const DenoiseSettings& settings) {
  T_3DYuvDenoiseParam param{};
  param.ref_index = static_cast<uint8_t>(settings.reference);
  param.frame_num = static_cast<uint8_t>(frames.size());
  param.switch_a = settings.merge == Merge::kWhole;
  param.switch_b = settings.merge == Merge::kEdges;
  param.switch_c = settings.merge == Merge::kEdgesLuma;
  param.switch_d = settings.smooth;
  param.thresh_tune = 1;
  param.gain = static_cast<uint8_t>(settings.gain);
  param.width = static_cast<uint32_t>(frames.front().width);
  param.height = static_cast<uint32_t>(frames.front().height);
  param.y_stride = param.uv_stride = param.width;
  param.thresh = static_cast<uint8_t>(settings.thresh);
  param.threshY = static_cast<uint8_t>(settings.thresh_luma);
  return param;
}

// Whether these thresholds leave the library nothing to do.
bool is_idle(Merge merge, const DenoiseResult& used, int frames) {
  if (used.thresh < 2 && used.thresh_luma < 2) return true;
  if (frames == 1) return false;
  switch (merge) {
    case Merge::kWhole:
      return used.thresh == 0;
    case Merge::kEdges:
    case Merge::kEdgesLuma:
      return used.thresh_luma < 2;
    case Merge::kChroma:
      return used.thresh < 2;
  }
  return true;
}

}  // namespace

DenoiseResult denoise(const std::vector<Frame>& frames, const DenoiseSettings& settings, int runs) {
  for (const Frame& frame : frames) {
    if (frame.width != frames.front().width || frame.height != frames.front().height) {
      throw Error("frames of " + frames.front().size() + " and " + frame.size() +
                  ": all frames must have one size");
    }
  }
  const Frame& reference = frames[static_cast<size_t>(settings.reference)];
  Planes planes(frames);
  DenoiseResult result{reference, 0, 0, 0};
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    if (run > 0) planes.copy_from(reference, settings.reference);
    // The entry writes thresholds back, so that each run needs a record of its own.
    T_3DYuvDenoiseParam param = record(frames, settings);
    planes.describe(param);
    const auto start = std::chrono::steady_clock::now();
    const uint32_t code = zavri_mp_3D_YUV_denoise(&param);
    seconds.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (code != 0) {
      throw Error("the library refused the frames with code " + std::to_string(code), kRefused);
    }
    result.thresh = param.thresh;
    result.thresh_luma = param.threshY;
  }
  planes.copy_to(result.frame, settings.reference);
  std::sort(seconds.begin(), seconds.end());
  result.seconds = seconds[seconds.size() / 2];
  return result;
}

std::vector<std::string> remarks(const DenoiseResult& result, const DenoiseSettings& settings,
                                 int frames) {
  std::vector<std::string> lines;
  Merge merge = settings.merge;
  const bool edges = merge == Merge::kEdges || merge == Merge::kEdgesLuma;
  if (edges && settings.gain >= kEdgeGainEnd) {
    merge = Merge::kChroma;
    if (frames > 1) {
      lines.push_back("--gain " + std::to_string(settings.gain) + ": edges need a gain below " +
                      std::to_string(kEdgeGainEnd) + "; the chroma of the whole frame was merged");
    }
  }
  if (!is_idle(merge, result, frames)) return lines;
  const std::string what = frames == 1 ? "smoothed" : "merged";
  const char* const why = result.frame.megapixels() < 2
                              ? "below 2 megapixels the library scales thresholds to 0"
                              : "a higher threshold or gain is needed";
  return {"thresholds " + std::to_string(result.thresh) + " and " +
          std::to_string(result.thresh_luma) + ": nothing was " + what + "; " + why};
}

}  // namespace zavri::tools
