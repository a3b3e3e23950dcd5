#include "tools/images/convert.h"

#include <algorithm>
#include <new>

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace zavri::tools {
namespace {

struct FreeSws {
  void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using Sws = std::unique_ptr<SwsContext, FreeSws>;

// SWS_AREA makes a chroma sample the mean of the pixels that it covers. The other flags ask for
// exact rounding and for the chroma of every pixel, which the library skips unless told.
constexpr int kFlags =
    SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT;

bool is_full(AVColorRange range) { return range == AVCOL_RANGE_JPEG; }

// The ranges are options because the library chooses its code by them when it is initialised: if
// they differed only afterwards, a plain copy of the samples would stay chosen.
Sws new_sws(const AVFrame& from, const PixelTarget& to) {
  Sws sws(sws_alloc_context());
  if (!sws) throw std::bad_alloc();
  const struct {
    const char* name;
    int64_t value;
  } options[] = {{"srcw", from.width},        {"srch", from.height},
                 {"src_format", from.format}, {"src_range", is_full(from.color_range)},
                 {"dstw", to.width},          {"dsth", to.height},
                 {"dst_format", to.format},   {"dst_range", is_full(to.range)},
                 {"sws_flags", kFlags}};
  for (const auto& option : options) av_opt_set_int(sws.get(), option.name, option.value, 0);
  if (with_memory(sws_init_context(sws.get(), nullptr, nullptr)) < 0) {
    throw Error("FFmpeg cannot convert these pixels");
  }
  constexpr int kUnity = 1 << 16;  // of contrast and of saturation
  sws_setColorspaceDetails(sws.get(), sws_getCoefficients(from.colorspace),
                           is_full(from.color_range), sws_getCoefficients(to.matrix),
                           is_full(to.range), 0, kUnity, kUnity);
  return sws;
}

void copy_rows(const uint8_t* from, int from_stride, uint8_t* to, size_t to_stride, size_t bytes,
               int rows) {
  for (int y = 0; y < rows; ++y) {
    std::copy_n(from + static_cast<ptrdiff_t>(from_stride) * y, bytes,
                to + to_stride * static_cast<size_t>(y));
  }
}

constexpr PixelTarget kRgb = {AV_PIX_FMT_RGB24};

bool is_grey(const AVFrame& frame) {
  return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format))->nb_components == 1;
}

}  // namespace

AvFrame convert(const AVFrame& from, const PixelTarget& target) {
  PixelTarget to = target;
  if (to.width == 0) to.width = from.width;
  if (to.height == 0) to.height = from.height;
  // The library passes from matrix to matrix through RGB of 8 bits; with 16 bits on the way the
  // chroma of a converted photograph is 4 dB better. RGB itself has no matrix.
  if (from.colorspace != to.matrix) {
    const AvFrame rgb = convert(from, {AV_PIX_FMT_GBRP16, AVCOL_RANGE_JPEG, from.colorspace, 0, 0});
    rgb->colorspace = to.matrix;
    return convert(*rgb, to);
  }
  // Of a grey source the library leaves half of the chroma unwritten when it is interleaved.
  if (is_grey(from) && to.format == AV_PIX_FMT_NV12) {
    return convert(*convert(from, {AV_PIX_FMT_YUV420P, to.range, to.matrix, 0, 0}), to);
  }
  AvFrame result = new_av_frame(to.format, to.width, to.height);
  result->color_range = to.range;
  result->colorspace = to.matrix;
  const Sws sws = new_sws(from, to);
  sws_scale(sws.get(), from.data, from.linesize, 0, from.height, result->data, result->linesize);
  return result;
}

AvFrame to_av(const Frame& frame) {
  const bool u_first = frame.order() == ChromaOrder::kUv;
  AvFrame av =
      new_av_frame(u_first ? AV_PIX_FMT_NV12 : AV_PIX_FMT_NV21, frame.width(), frame.height());
  av->color_range = AVCOL_RANGE_JPEG;
  av->colorspace = AVCOL_SPC_BT470BG;
  av->chroma_location = AVCHROMA_LOC_CENTER;
  const auto stride = static_cast<int>(frame.layout().stride);
  const auto width = static_cast<size_t>(frame.width());
  copy_rows(frame.luma_row(0), stride, av->data[0], static_cast<size_t>(av->linesize[0]), width,
            frame.height());
  copy_rows(frame.chroma_row(0), stride, av->data[1], static_cast<size_t>(av->linesize[1]), width,
            frame.height() / 2);
  return av;
}

AvFrame to_av(const Picture& picture) {
  AvFrame av = new_av_frame(kRgb.format, picture.width, picture.height);
  av->color_range = kRgb.range;
  av->colorspace = kRgb.matrix;
  const size_t bytes = 3 * static_cast<size_t>(picture.width);
  copy_rows(picture.rgb.data(), static_cast<int>(bytes), av->data[0],
            static_cast<size_t>(av->linesize[0]), bytes, picture.height);
  return av;
}

Frame frame_from_av(const AVFrame& from) {
  AVFrame even = from;  // borrows the planes
  even.width &= ~1;
  even.height &= ~1;
  const AvFrame av = convert(even, {AV_PIX_FMT_NV12});
  Frame frame(even.width, even.height);
  const auto width = static_cast<size_t>(even.width);
  copy_rows(av->data[0], av->linesize[0], frame.luma_row(0), width, width, even.height);
  copy_rows(av->data[1], av->linesize[1], frame.chroma_row(0), width, width, even.height / 2);
  return frame;
}

Picture picture_from_av(const AVFrame& from) {
  const AvFrame av = convert(from, kRgb);
  Picture picture(av->width, av->height);
  const size_t bytes = 3 * static_cast<size_t>(av->width);
  copy_rows(av->data[0], av->linesize[0], picture.rgb.data(), bytes, bytes, av->height);
  return picture;
}

Picture shrunk(const Picture& picture, int most_width) {
  if (picture.width <= most_width) return picture;
  PixelTarget target = kRgb;
  target.width = most_width;
  target.height = std::max(1, picture.height * most_width / picture.width);
  return picture_from_av(*convert(*to_av(picture), target));
}

Frame to_frame(const Picture& picture) { return frame_from_av(*to_av(picture)); }

Picture to_picture(const Frame& frame) { return picture_from_av(*to_av(frame)); }

}  // namespace zavri::tools
