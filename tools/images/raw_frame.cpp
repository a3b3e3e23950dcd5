#include "tools/images/raw_frame.h"

#include <utility>

#include "tools/images/convert.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace zavri::tools {

Frame decode_raw(Bytes bytes, const RawFormat& format) {
  if (format.is_semi_planar()) {
    return Frame(format.width, format.height, format.order(), format.layout(), std::move(bytes));
  }
  const bool v_first = format.pixel == "yv12";
  const AVPixelFormat pixel = v_first ? AV_PIX_FMT_YUV420P : av_get_pix_fmt(format.pixel.c_str());
  uint8_t* planes[4];
  int strides[4];
  av_image_fill_arrays(planes, strides, bytes.data(), pixel, format.width, format.height, 1);
  if (v_first) std::swap(planes[1], planes[2]);
  const AvFrame av = new_av_frame(pixel, format.width, format.height);
  av->color_range = AVCOL_RANGE_JPEG;
  av->colorspace = AVCOL_SPC_BT470BG;
  av_image_copy(av->data, av->linesize, const_cast<const uint8_t**>(planes), strides, pixel,
                format.width, format.height);
  return frame_from_av(*av);
}

Bytes encode_raw(const Frame& frame, const std::string& extension) {
  if (extension == ".yuv") return frame.buffer();
  if (extension == ".nv12") return frame.with_order(ChromaOrder::kUv).buffer();
  if (extension == ".nv21") return frame.with_order(ChromaOrder::kVu).buffer();
  const AvFrame av = convert(*to_av(frame), {AV_PIX_FMT_YUV420P});
  if (extension == ".yv12") {
    std::swap(av->data[1], av->data[2]);
    std::swap(av->linesize[1], av->linesize[2]);
  }
  const int size = av_image_get_buffer_size(AV_PIX_FMT_YUV420P, frame.width(), frame.height(), 1);
  Bytes bytes(static_cast<size_t>(size));
  av_image_copy_to_buffer(bytes.data(), size, av->data, av->linesize, AV_PIX_FMT_YUV420P,
                          frame.width(), frame.height(), 1);
  return bytes;
}

}  // namespace zavri::tools
