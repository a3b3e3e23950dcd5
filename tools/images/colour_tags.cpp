#include "tools/images/colour_tags.h"

#include <cstring>

namespace zavri::tools {
namespace {

bool is_high_definition(const AVFrame& frame) { return frame.width >= 1280 || frame.height > 576; }

bool has_matrix(const AVPixFmtDescriptor& pixel) {
  const bool is_rgb = (pixel.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
  const bool is_grey = pixel.nb_components < 3;
  return !is_rgb && !is_grey;
}

AVColorSpace usual_matrix(const AVFrame& frame, bool is_still) {
  const bool is_bt601 = is_still || frame.color_range == AVCOL_RANGE_JPEG ||
                        frame.chroma_location == AVCHROMA_LOC_CENTER || !is_high_definition(frame);
  return is_bt601 ? AVCOL_SPC_BT470BG : AVCOL_SPC_BT709;
}

}  // namespace

void tag_colours(AVFrame& frame, bool is_still) {
  const AVPixFmtDescriptor& pixel = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
  // FFmpeg has these formats of full range, which are otherwise like those without the j.
  if (strncmp(pixel.name, "yuvj", 4) == 0) frame.color_range = AVCOL_RANGE_JPEG;
  if (frame.color_range == AVCOL_RANGE_UNSPECIFIED) {
    frame.color_range = has_matrix(pixel) ? AVCOL_RANGE_MPEG : AVCOL_RANGE_JPEG;
  }
  if (!has_matrix(pixel)) frame.colorspace = AVCOL_SPC_BT470BG;
  if (frame.colorspace == AVCOL_SPC_UNSPECIFIED) {
    frame.colorspace = usual_matrix(frame, is_still);
  }
  // These two have one matrix under two numbers.
  if (frame.colorspace == AVCOL_SPC_SMPTE170M) frame.colorspace = AVCOL_SPC_BT470BG;
}

}  // namespace zavri::tools
