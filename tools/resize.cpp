#include "tools/resize.h"

#include <zavricustpro.h>

#include <array>

#include "tools/error.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr uint32_t kReduction = 1;

std::string size_of(const ResizeSettings& settings) {
  return std::to_string(settings.width) + 'x' + std::to_string(settings.height);
}

// Luma rows of the library's strips: of each of the first three, and of the last.
std::array<int, 2> strip_rows(int height) {
  const int rows = height / 4 + height / 4 % 2;
  return {rows, height - 3 * rows};
}

// What the library does not refuse itself, though it then writes where nothing is, or leaves rows
// unwritten.
void check(const Frame& from, const ResizeSettings& to) {
  if (to.width < from.width || to.height < from.height) return;  // refused
  const std::array<int, 2> source = strip_rows(from.height);
  const std::array<int, 2> target = strip_rows(to.height);
  if (source[1] < 0 || target[1] < 0) {
    throw Error(from.size() + " to " + size_of(to) +
                    ": three of the library's strips are higher than a frame of 4 or 5 rows",
                kRefused);
  }
  for (size_t i = 0; i < source.size(); ++i) {
    if (source[i] == 0 && target[i] != 0) {
      throw Error(from.size() + " to " + size_of(to) +
                      ": one of the library's strips has no rows in the input and " +
                      std::to_string(target[i]) + " in the result",
                  kRefused);
    }
  }
}

}  // namespace

ResizeResult resize(const Frame& frame, const ResizeSettings& settings, int runs) {
  check(frame, settings);
  ResizeResult result{Frame(settings.width, settings.height, frame.order), 0};
  T_ResizeParam param{};
  param.scale_mode = static_cast<uint16_t>(settings.scaling);
  param.src_width = param.src_stride = static_cast<uint16_t>(frame.width);
  param.src_height = static_cast<uint16_t>(frame.height);
  param.src_y = frame.luma.data();
  param.src_uv = frame.chroma.data();
  param.dst_width = param.dst_stride = static_cast<uint16_t>(settings.width);
  param.dst_height = static_cast<uint16_t>(settings.height);
  param.dst_y = result.frame.luma.data();
  param.dst_uv = result.frame.chroma.data();

  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    uint32_t code = 0;
    seconds.push_back(seconds_of([&] { code = zavri_mp_resize_process(&param); }));
    if (code == kReduction) {
      throw Error(frame.size() + " to " + result.frame.size() +
                      ": the library only enlarges, and refused with code 1",
                  kRefused);
    }
    if (code != 0) {
      throw Error("the library refused the frame with code " + std::to_string(code), kRefused);
    }
  }
  result.seconds = median(seconds);
  return result;
}

std::string remark(const Frame& frame, const ResizeSettings& settings) {
  if (frame.height == settings.height) return {};
  if (frame.height % 8 == 0 && settings.height % 8 == 0) return {};
  return "heights that are not multiples of 8: strips are scaled one by one, and rows shift at "
         "their borders";
}

}  // namespace zavri::tools
