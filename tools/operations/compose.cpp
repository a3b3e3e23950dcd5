#include "tools/operations/compose.h"

#include <zavricustpro.h>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr int64_t kMostPixels = UINT32_MAX / 11;

// Returns the frame without padding.
Frame whole(const Frame& frame) { return frame.crop(0, 0, frame.width(), frame.height()); }

// Says, with the numbers that do not divide, why the picture is not exact.
std::vector<std::string> remarks_on(const Compose& compose, const Frame& frame) {
  std::string reasons;
  const auto divide = [&](const char* what, int number, int divisor) {
    if (number % divisor == 0) return;
    reasons += (reasons.empty() ? ": " : "; ") + std::string(what) + ", " + std::to_string(number) +
               ", is no multiple of " + std::to_string(divisor);
  };
  divide("the width less the padding", frame.width() - compose.padding, 4);
  divide("the height", frame.height(), 8);
  if (compose.pad == Pad::kBoth) divide("the padding of both bands", compose.padding, 2);
  if (reasons.empty()) return {};
  return {"the picture is not exact" + reasons};
}

// Runs the library. Without memory for its scratch frame it leaves the output as it was, whose
// first byte would otherwise become black.
void compose_frames(T_ComposeParam& param) {
  constexpr uint8_t kUntouched = 1;
  param.dst_frame[0] = kUntouched;
  expect_accepted(zavri_mp_compose_two_same_frame(&param));
  if (param.dst_frame[0] == kUntouched) {
    throw Error("the library had no memory for its scratch frame", kRefused);
  }
}

}  // namespace

Settings Compose::settings() {
  return {whole_number("padding", padding, 0, 65535, "columns of padding, both bands together"),
          choice<Pad>("pad", pad,
                      {{"left", Pad::kLeft},
                       {"right", Pad::kRight},
                       {"center", Pad::kCenter},
                       {"both", Pad::kBoth}},
                      "where the padding stands")};
}

void Compose::check(const Size& size, int frames) const {
  check_count(frames);
  if (int64_t{size.width} * size.height > kMostPixels) {
    throw Error(size.text() + ": at most " + std::to_string(kMostPixels / 1000000) +
                " megapixels can be composed");
  }
  if (padding > size.width) {
    throw Error("--padding " + std::to_string(padding) + ": at most the width, " +
                std::to_string(size.width));
  }
}

Result Compose::run(const Frames& frames, int runs) const {
  check(size_of(frames.front()), static_cast<int>(frames.size()));
  expect_one_size(frames);
  const Frame a = whole(frames[0]);
  const Frame b = whole(frames[1].with_order(a.order()));
  Result result;
  result.frame = Frame(a.width(), a.height(), a.order());
  T_ComposeParam param{};
  param.width = static_cast<uint16_t>(a.width());
  param.height = static_cast<uint16_t>(a.height());
  param.mode = static_cast<uint32_t>(pad);
  param.padding = static_cast<uint16_t>(padding);
  param.src_frame1 = a.buffer().data();
  param.src_frame2 = b.buffer().data();
  param.dst_frame = result.frame.buffer().data();
  result.seconds = median_seconds(
      runs, [] {}, [&] { compose_frames(param); });
  result.remarks = remarks_on(*this, a);
  return result;
}

}  // namespace zavri::tools
