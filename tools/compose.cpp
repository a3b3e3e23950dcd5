#include "tools/compose.h"

#include <zavricustpro.h>

#include "tools/error.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr uint64_t kPixelsEnd = 390451573;  // 2^32 / 11

// Luma and chroma in one piece, U first.
std::vector<uint8_t> whole(const Frame& frame) {
  std::vector<uint8_t> bytes = frame.luma;
  const Frame uv = frame.with_u_first();
  bytes.insert(bytes.end(), uv.chroma.begin(), uv.chroma.end());
  return bytes;
}

}  // namespace

std::string refusal(const Frame& frame, const ComposeSettings& settings) {
  const auto pixels = static_cast<uint64_t>(frame.width) * static_cast<uint64_t>(frame.height);
  if (pixels >= kPixelsEnd) return frame.size() + ": at most 390 megapixels can be composed";
  if (settings.padding <= frame.width) return {};
  return "--padding " + std::to_string(settings.padding) + ": at most the width, " +
         std::to_string(frame.width);
}

Composed compose(const Frame& a, const Frame& b, const ComposeSettings& settings, int runs) {
  if (a.width != b.width || a.height != b.height) {
    throw Error("frames of " + a.size() + " and " + b.size() + ": both must have one size");
  }
  const std::string refused = refusal(a, settings);
  if (!refused.empty()) throw Error(refused);
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
    output[0] = 1;  // in a frame that was written, 0
    seconds.push_back(seconds_of([&] { code = zavri_mp_compose_two_same_frame(&param); }));
    if (code != 0) {
      throw Error("the library refused the frames with code " + std::to_string(code), kRefused);
    }
    if (output[0] != 0) throw Error("the library had no memory for its scratch frame", kRefused);
  }
  result.seconds = median(seconds);
  const auto chroma = output.begin() + static_cast<ptrdiff_t>(result.frame.luma.size());
  std::copy(output.begin(), chroma, result.frame.luma.begin());
  std::copy(chroma, output.end(), result.frame.chroma.begin());
  return result;
}

std::string remark(const Frame& frame, const ComposeSettings& settings) {
  std::string reasons;
  const auto check = [&](const char* what, int number, int divisor) {
    if (number % divisor == 0) return;
    reasons += (reasons.empty() ? ": " : "; ") + std::string(what) + ", " + std::to_string(number) +
               ", is no multiple of " + std::to_string(divisor);
  };
  check("the width less the padding", frame.width - settings.padding, 4);
  check("the height", frame.height, 8);
  if (settings.pad == Pad::kBoth) check("the padding of both bands", settings.padding, 2);
  return reasons.empty() ? reasons : "the picture is not exact" + reasons;
}

}  // namespace zavri::tools
