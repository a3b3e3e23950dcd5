#include "tools/images/encode.h"

#include <algorithm>
#include <new>

#include "tools/images/convert.h"
#include "tools/images/raw_format.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
}

namespace zavri::tools {
namespace {

constexpr AVRational kFrameTime = {1, 25};

struct PictureFormat {
  const char* extension;
  AVCodecID codec;
  PixelTarget pixels;
  int quality = 0;  // of lossy codecs: of JPEG 1 is the best, of WebP 100
};
constexpr PictureFormat kJpeg = {".jpg", AV_CODEC_ID_MJPEG, {AV_PIX_FMT_YUVJ420P}, 2};
constexpr PictureFormat kTiff = {".tif", AV_CODEC_ID_TIFF, {AV_PIX_FMT_RGB24}};
constexpr PictureFormat kPictureFormats[] = {
    {".png", AV_CODEC_ID_PNG, {AV_PIX_FMT_RGB24}},
    kJpeg,
    {".jpeg", kJpeg.codec, kJpeg.pixels, kJpeg.quality},
    kTiff,
    {".tiff", kTiff.codec, kTiff.pixels},
    {".webp", AV_CODEC_ID_WEBP, {AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG}, 95},
    {".bmp", AV_CODEC_ID_BMP, {AV_PIX_FMT_BGR24}},
    {".ppm", AV_CODEC_ID_PPM, {AV_PIX_FMT_RGB24}},
    {".pgm", AV_CODEC_ID_PGM, {AV_PIX_FMT_GRAY8}},
};
constexpr char kStream[] = ".y4m";

const PictureFormat* picture_format(const std::string& extension) {
  const auto* const found =
      std::find_if(std::begin(kPictureFormats), std::end(kPictureFormats),
                   [&](const PictureFormat& format) { return extension == format.extension; });
  return found == std::end(kPictureFormats) ? nullptr : found;
}

void check(int code) {
  if (with_memory(code) < 0) throw av_error("FFmpeg", "cannot encode", code);
}

// A picture's packet is its file.
AvPacket encode_packet(AVFrame& frame, AVCodecID id, int quality) {
  const AVCodec* const encoder = avcodec_find_encoder(id);
  if (encoder == nullptr) {
    throw Error(std::string("FFmpeg has no encoder of ") + avcodec_get_name(id));
  }
  AvCodec codec = new_av_codec(encoder);
  codec->width = frame.width;
  codec->height = frame.height;
  codec->pix_fmt = static_cast<AVPixelFormat>(frame.format);
  codec->color_range = frame.color_range;
  codec->time_base = kFrameTime;
  // Noise hardly compresses: a deeper search costs seconds and saves a few percent.
  codec->compression_level = 1;
  // Only the encoder of PNG has this option: each byte is predicted from its left neighbour, which
  // takes less time than no prediction, since there is less left to compress.
  av_opt_set(codec->priv_data, "pred", "sub", 0);
  if (quality > 0) {
    codec->flags |= AV_CODEC_FLAG_QSCALE;
    frame.quality = codec->global_quality = quality * FF_QP2LAMBDA;
  }
  check(avcodec_open2(codec.get(), encoder, nullptr));
  check(avcodec_send_frame(codec.get(), &frame));
  check(avcodec_send_frame(codec.get(), nullptr));
  AvPacket packet = new_av_packet();
  check(avcodec_receive_packet(codec.get(), packet.get()));
  return packet;
}

struct FreeMuxer {
  void operator()(AVFormatContext* context) const {
    uint8_t* bytes = nullptr;
    if (context->pb != nullptr) avio_close_dyn_buf(context->pb, &bytes);
    av_free(bytes);
    avformat_free_context(context);
  }
};

Bytes encode_stream(const Frame& frame) {
  const AvFrame planes = convert(*to_av(frame), {AV_PIX_FMT_YUV420P});
  AVFormatContext* context = nullptr;
  check(avformat_alloc_output_context2(&context, nullptr, "yuv4mpegpipe", nullptr));
  const std::unique_ptr<AVFormatContext, FreeMuxer> muxer(context);
  check(avio_open_dyn_buf(&muxer->pb));
  AVStream* const stream = avformat_new_stream(muxer.get(), nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  stream->time_base = stream->avg_frame_rate = kFrameTime;
  std::swap(stream->avg_frame_rate.num, stream->avg_frame_rate.den);
  AVCodecParameters& parameters = *stream->codecpar;
  parameters.codec_type = AVMEDIA_TYPE_VIDEO;
  parameters.codec_id = AV_CODEC_ID_WRAPPED_AVFRAME;
  parameters.format = planes->format;
  parameters.width = planes->width;
  parameters.height = planes->height;
  parameters.color_range = planes->color_range;
  parameters.chroma_location = AVCHROMA_LOC_CENTER;
  check(avformat_write_header(muxer.get(), nullptr));
  check(av_write_frame(muxer.get(), encode_packet(*planes, AV_CODEC_ID_WRAPPED_AVFRAME, 0).get()));
  check(av_write_trailer(muxer.get()));
  uint8_t* bytes = nullptr;
  const int size = avio_close_dyn_buf(muxer->pb, &bytes);
  muxer->pb = nullptr;
  const std::unique_ptr<uint8_t, decltype(&av_free)> owner(bytes, av_free);
  return {bytes, bytes + size};
}

Bytes encode_picture(const AVFrame& source, const PictureFormat& format) {
  const AvFrame frame = convert(source, format.pixels);
  const AvPacket packet = encode_packet(*frame, format.codec, format.quality);
  return {packet->data, packet->data + packet->size};
}

Bytes encode_raw(const Frame& frame, const std::string& extension) {
  if (extension == ".nv12") return frame.with_order(ChromaOrder::kUv).buffer();
  if (extension == ".nv21") return frame.with_order(ChromaOrder::kVu).buffer();
  const bool v_first = extension == ".yv12";
  if (!v_first && extension != ".i420") return frame.buffer();
  const AvFrame av = convert(*to_av(frame), {AV_PIX_FMT_YUV420P});
  if (v_first) {
    std::swap(av->data[1], av->data[2]);
    std::swap(av->linesize[1], av->linesize[2]);
  }
  const int size = av_image_get_buffer_size(AV_PIX_FMT_YUV420P, frame.width(), frame.height(), 1);
  Bytes bytes(static_cast<size_t>(size));
  av_image_copy_to_buffer(bytes.data(), size, av->data, av->linesize, AV_PIX_FMT_YUV420P,
                          frame.width(), frame.height(), 1);
  return bytes;
}

std::vector<std::string> output_extensions() {
  std::vector<std::string> names;
  for (const PictureFormat& format : kPictureFormats) names.push_back(format.extension);
  names.push_back(kStream);
  for (const std::string& raw : raw_extensions()) names.push_back(raw);
  return names;
}

template <class Image>
void save_as(const Image& image, const std::string& path) {
  const std::string extension = path == "-" ? kStream : extension_of(path);
  write_file(path, with_ffmpeg(path, [&] { return encode(image, extension); }));
}

}  // namespace

void check_output(const std::string& path, bool force) {
  const std::vector<std::string> known = output_extensions();
  if (path != "-" && std::find(known.begin(), known.end(), extension_of(path)) == known.end()) {
    std::string text = path + ": an output ends in " + known.front();
    for (size_t k = 1; k < known.size(); ++k) {
      text += (k + 1 == known.size() ? " or " : ", ") + known[k];
    }
    throw Error(text);
  }
  check_file(path, force);
}

void save(const Frame& frame, const std::string& path) { save_as(frame, path); }

void save(const Picture& picture, const std::string& path) { save_as(picture, path); }

Bytes encode(const Frame& frame, const std::string& extension) {
  if (const PictureFormat* const format = picture_format(extension)) {
    return encode_picture(*to_av(frame), *format);
  }
  return extension == kStream ? encode_stream(frame) : encode_raw(frame, extension);
}

Bytes encode(const Picture& picture, const std::string& extension) {
  if (const PictureFormat* const format = picture_format(extension)) {
    return encode_picture(*to_av(picture), *format);
  }
  return encode(to_frame(picture), extension);
}

}  // namespace zavri::tools
