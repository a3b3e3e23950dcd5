#include "tools/resize.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr int kLargestSide = 65535;  // the record's sizes have 16 bits
constexpr uint32_t kReduction = 1;

void check(const Frame& from, const Frame& to) {
  if (std::max({from.width, from.height, to.width, to.height}) > kLargestSide) {
    throw Error(from.size() + " to " + to.size() + ": at most 65535 pixels a side");
  }
  const std::string sizes = from.size() + " to " + to.size();
  for (const int height : {from.height, to.height}) {
    // The library does not refuse these itself, and writes where nothing is.
    if (height == 4 || height == 5) {
      throw Error(sizes + ": the library has no guard for a height of 4 or 5, where three of its " +
                      "strips are higher than the frame",
                  kRefused);
    }
  }
  if (from.height < 8 && from.height != to.height) {
    throw Error(sizes + ": below 8 rows strips of the source are empty");
  }
}

}  // namespace

ResizeResult resize(const Frame& frame, const ResizeSettings& settings, int runs) {
  ResizeResult result{Frame(settings.width, settings.height, frame.order), 0};
  check(frame, result.frame);
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
  if (frame.height % 8 == 0 && settings.height % 8 == 0) return {};
  return "heights that are not multiples of 8: strips are scaled one by one, and rows shift at "
         "their borders";
}

}  // namespace zavri::tools
