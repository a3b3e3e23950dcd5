#include "tools/images/files.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/imgutils.h>
}

#include "tools/error.h"
#include "tools/images/convert.h"
#include "tools/images/decode.h"
#include "tools/images/upright.h"

namespace zavri::tools {
namespace {

std::string option_of(const FrameRange& range) {
  return (range.first == range.last ? "--frame " : "--frames ") + range.text();
}

[[noreturn]] void refuse_range(const std::string& path, const FrameRange& range, int64_t total) {
  throw Error(option_of(range) + ": " + path + " has " +
              (total == 1 ? "one frame, 0"
                          : std::to_string(total) + " frames, 0 to " + std::to_string(total - 1)));
}

Loaded load_raw(Source& source, const InputOptions& options) {
  Bytes bytes = source.take_bytes();
  const RawFormat format = raw_format(source.path(), options.raw, bytes.size());
  if (options.frames && options.frames->last > 0) refuse_range(source.path(), *options.frames, 1);
  Loaded loaded{"raw " + format.pixel, true, 1, {}};
  loaded.frames.push_back(decode_raw(std::move(bytes), format));
  return loaded;
}

void check_size(const std::string& path, const AVFrame& frame) {
  const int least = std::min(frame.width, frame.height);
  const int most = std::max(frame.width, frame.height);
  if (least >= 2 && most <= kLargestSide) return;
  throw Error(path + ": a picture of " + std::to_string(frame.width) + 'x' +
              std::to_string(frame.height) + "; sides of 2 to " + std::to_string(kLargestSide) +
              " are read");
}

Loaded load_decoded(Source& source, const Probe& found, const InputOptions& options, int most) {
  Decoder decoder(source, found);
  Loaded loaded;
  const FrameRange range = options.frames.value_or(FrameRange{0, most - 1});
  for (int64_t k = 0; k <= range.last; ++k) {
    const AvFrame frame = decoder.next();
    if (frame == nullptr) {
      if (k == 0) throw Error(source.path() + ": there is no whole frame in it");
      if (options.frames) refuse_range(source.path(), range, k);
      break;
    }
    if (k < range.first) continue;
    check_size(source.path(), *frame);
    loaded.frames.push_back(upright(frame_from_av(*frame), orientation_of(*frame)));
  }
  loaded.format = decoder.format();
  loaded.total_frames = decoder.count_all();
  return loaded;
}

// Tells whether the file is a raw frame. A name that says so is believed, since a raw frame may
// begin like a picture by chance. Other names tell by the bytes, and where these leave doubt, by
// whether there is a size and the extension is none that FFmpeg knows.
bool is_raw(const std::string& path, const RawOptions& options, const Probe& found) {
  if (has_raw_extension(path)) return true;
  if (found.is_sure() || !has_raw_size(path, options)) return false;
  return av_guess_format(nullptr, path.c_str(), nullptr) == nullptr;
}

[[noreturn]] void refuse_raw_options(const RawOptions& raw, const std::string& path) {
  throw Error(raw.first_given() + ": " + path + " is not raw and says this itself");
}

}  // namespace

std::string FrameRange::text() const {
  const std::string end = first == last ? "" : ':' + std::to_string(last);
  return std::to_string(first) + end;
}

Loaded load(const std::string& path, const InputOptions& options, int most) {
  return with_ffmpeg(path, [&] {
    Source source(path);
    const Probe found = has_raw_extension(path) ? Probe{} : probe(source);
    if (is_raw(path, options.raw, found)) return load_raw(source, options);
    if (found.format == nullptr) {
      throw Error(path + ": not a picture or a video; for a raw frame give --size WxH");
    }
    return load_decoded(source, found, options, most);
  });
}

std::vector<Loaded> load_all(const std::vector<std::string>& paths, const InputOptions& options,
                             int most) {
  std::vector<Loaded> all;
  bool any_raw = options.raw.first_given().empty();
  for (const std::string& path : paths) {
    all.push_back(load(path, options, most));
    any_raw |= all.back().is_raw;
  }
  if (!any_raw) refuse_raw_options(options.raw, paths.front());
  return all;
}

std::vector<Frame> load_frames(const std::vector<std::string>& paths, const InputOptions& options,
                               int most) {
  std::vector<Loaded> all = load_all(paths, options, most);
  std::vector<Frame> frames;
  for (size_t k = 0; k < all.size(); ++k) {
    if (!options.frames && all[k].total_frames > most) {
      throw Error(paths[k] + ": there are " + std::to_string(all[k].total_frames) +
                  " frames in it; --frame N" +
                  (most > 1 ? " or --frames A:B names some" : " names one") + ", counted from 0");
    }
    for (Frame& frame : all[k].frames) frames.push_back(std::move(frame));
  }
  return frames;
}

Frame load_frame(const std::string& path, const InputOptions& options) {
  std::vector<Frame> frames = load_frames({path}, options, 1);
  if (frames.size() > 1) throw Error(option_of(*options.frames) + ": one frame is used here");
  return std::move(frames.front());
}

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

Picture load_picture(const std::string& path) {
  return with_ffmpeg(path, [&] {
    Source source(path);
    const Probe found = probe(source);
    if (found.format == nullptr) throw Error(path + ": not a picture or a video");
    const AvFrame frame = Decoder(source, found).next();
    if (frame == nullptr) throw Error(path + ": there is no whole frame in it");
    check_size(path, *frame);
    return upright(picture_from_av(*frame), orientation_of(*frame));
  });
}

Mask load_mask(const std::string& path, const std::string& size) {
  const Picture picture = load_picture(path);
  const std::string own = std::to_string(picture.width) + 'x' + std::to_string(picture.height);
  if (own != size) throw Error(path + ": a mask has the frames' size, " + size);
  return Mask(picture);
}

}  // namespace zavri::tools
