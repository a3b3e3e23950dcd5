#include "tools/compose.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr int kLargestSide = 65535;         // the record's sizes have 16 bits
constexpr uint64_t kPixelsEnd = 390451573;  // 2^32 / 11

// Luma and chroma in one piece, U first.
std::vector<uint8_t> whole(const Frame& frame) {
  std::vector<uint8_t> bytes = frame.luma;
  const Frame uv = frame.with_u_first();
  bytes.insert(bytes.end(), uv.chroma.begin(), uv.chroma.end());
  return bytes;
}

void check(const Frame& a, const Frame& b, const ComposeSettings& settings) {
  if (a.width != b.width || a.height != b.height) {
    throw Error("frames of " + a.size() + " and " + b.size() + ": both must have one size");
  }
  const auto pixels = static_cast<uint64_t>(a.width) * static_cast<uint64_t>(a.height);
  if (std::max(a.width, a.height) > kLargestSide || pixels >= kPixelsEnd) {
    throw Error(a.size() + ": at most 65535 pixels a side and 390 megapixels can be composed");
  }
  if (settings.padding > a.width) {
    throw Error("--padding " + std::to_string(settings.padding) + ": at most the width, " +
                std::to_string(a.width));
  }
}

}  // namespace

Composed compose(const Frame& a, const Frame& b, const ComposeSettings& settings, int runs) {
  check(a, b, settings);
  const std::vector<uint8_t> source1 = whole(a);
  const std::vector<uint8_t> source2 = whole(b);
  std::vector<uint8_t> output(source1.size());
  T_ComposeParam param{};
  param.width = static_cast<uint16_t>(a.width);
  param.height = static_cast<uint16_t>(a.height);
  param.mode = static_cast<uint32_t>(settings.pad);
  param.padding = static_cast<uint16_t>(settings.padding);
  param.src_frame1 = source1.data();
  param.src_frame2 = source2.data();
  param.dst_frame = output.data();

  Composed result{Frame(a.width, a.height), 0};
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    uint32_t code = 0;
    seconds.push_back(seconds_of([&] { code = zavri_mp_compose_two_same_frame(&param); }));
    if (code != 0) {
      throw Error("the library refused the frames with code " + std::to_string(code), kRefused);
    }
  }
  result.seconds = median(seconds);
  const auto chroma = output.begin() + static_cast<ptrdiff_t>(result.frame.luma.size());
  std::copy(output.begin(), chroma, result.frame.luma.begin());
  std::copy(chroma, output.end(), result.frame.chroma.begin());
  return result;
}

std::string remark(const Frame& frame, const ComposeSettings& settings) {
  const bool even_bands = settings.pad != Pad::kBoth || settings.padding % 2 == 0;
  if ((frame.width - settings.padding) % 4 == 0 && frame.height % 8 == 0 && even_bands) return {};
  return "the picture is exact for a height that is a multiple of 8, a width less the padding that "
         "is one of 4, and two bands of whole columns";
}

}  // namespace zavri::tools
