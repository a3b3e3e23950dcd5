#include <cstdlib>
#include <cstring>

#include "compose/decimate.h"
#include "compose/padding.h"
#include "include/zavricustpro.h"
#include "platform/log.h"
#include "simd/overlap.h"

namespace zavri {
namespace {

constexpr uint32_t kBadParameters = 2;

bool valid(const T_ComposeParam* param) {
  return param != nullptr && param->height != 0 && param->width != 0 &&
         param->dst_frame != nullptr && param->src_frame1 != nullptr &&
         param->src_frame2 != nullptr;
}

uint32_t pixels_of(const T_ComposeParam& param) { return uint32_t{param.width} * param.height; }

bool output_overlaps_sources(const T_ComposeParam& param) {
  const size_t bytes = size_t{pixels_of(param)} * 3 / 2;
  const Range output{param.dst_frame, bytes};
  return overlap({param.src_frame1, bytes}, output) || overlap({param.src_frame2, bytes}, output);
}

// Puts the picture between black bars. Each bound is cut from the product on its own: where that is
// no multiple of 8, a byte between two parts may stay as it was.
void lay_out(const T_ComposeParam& param, uint8_t* scratch) {
  const uint32_t pixels = pixels_of(param);
  uint8_t* const frame = param.dst_frame;
  uint8_t* const luma = frame + (pixels >> 2);
  uint8_t* const chroma = frame + ((pixels * 9) >> 3);

  if (fill_covers_picture(param, param.mode) && !output_overlaps_sources(param)) {
    fill_picture(param, param.mode, luma, chroma);
  } else {
    uint8_t* const scratch_chroma = scratch + (pixels >> 1);
    // What the fill leaves out must not show what the heap held before.
    memset(scratch, 0, (pixels * 3) >> 2);
    // A mode above 3 is no error: the frames are just not drawn.
    if (param.mode < kPaddingModes) fill_picture(param, param.mode, scratch, scratch_chroma);
    memcpy(luma, scratch, pixels >> 1);
    memcpy(chroma, scratch_chroma, pixels >> 2);
  }
  const FillFunction fill = decimate_kernels().fill;
  fill(frame, kBlackLuma, pixels >> 2);
  fill(frame + ((pixels * 3) >> 2), kBlackLuma, pixels >> 2);
  fill(frame + pixels, kBlackChroma, pixels >> 3);
  fill(frame + ((pixels * 11) >> 3), kBlackChroma, pixels >> 3);
}

}  // namespace
}  // namespace zavri

uint32_t zavri_mp_compose_two_same_frame(T_ComposeParam* param) {
  if (!zavri::valid(param)) {
    __android_log_print(zavri::kLogError, zavri::kTagProcessing,
                        "zavri-mp::compose, error para !!!");
    return zavri::kBadParameters;
  }
  __android_log_print(zavri::kLogVerbose, zavri::kTagDefog,
                      "KADRO::compose begin, width=%d, height=%d", param->width, param->height);
  // Every call takes the scratch frame, needed or not, so that it depends on the size alone whether
  // one fails for want of memory. The output then stays as it was, and the caller is not told.
  if (void* const scratch = malloc((zavri::pixels_of(*param) * 3) >> 2)) {
    zavri::lay_out(*param, static_cast<uint8_t*>(scratch));
    free(scratch);
  }
  __android_log_print(zavri::kLogVerbose, zavri::kTagDefog, "KADRO::compose end");
  return 0;
}
