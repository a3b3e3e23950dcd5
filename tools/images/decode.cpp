#include "tools/images/decode.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include "tools/images/colour_tags.h"

namespace zavri::tools {
namespace {

constexpr int kIoBytes = 1 << 16;

int read_io(void* file, uint8_t* to, int bytes) {
  auto* const from = static_cast<FILE*>(file);
  const size_t got = fread(to, 1, static_cast<size_t>(bytes), from);
  if (got > 0) return static_cast<int>(got);
  return ferror(from) ? AVERROR(EIO) : AVERROR_EOF;
}

int64_t seek_io(void* file, int64_t offset, int whence) {
  auto* const in = static_cast<FILE*>(file);
  const int64_t at = ftello(in);
  const bool asks_size = (whence & AVSEEK_SIZE) != 0;
  if (fseeko(in, asks_size ? 0 : offset, asks_size ? SEEK_END : whence & ~AVSEEK_FORCE) != 0) {
    return AVERROR(errno);
  }
  const int64_t reached = ftello(in);
  if (asks_size) fseeko(in, at, SEEK_SET);
  return reached;
}

bool is_regular_file(const std::string& path) {
  struct stat status;
  return path != "-" && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Pictures have demuxers of their own, such as png_pipe. A JPEG with further pictures behind the
// first one, as phones write it, is taken for a stream of mjpeg.
bool is_still(const AVInputFormat& format) {
  const std::string name = format.name;
  const std::string pipe = "_pipe";
  return name == "mjpeg" || (name.size() > pipe.size() &&
                             name.compare(name.size() - pipe.size(), pipe.size(), pipe) == 0);
}

}  // namespace

void Source::Close::operator()(AVIOContext* io) const {
  av_freep(&io->buffer);
  avio_context_free(&io);
}

Source::Source(const std::string& path) : path_(path), is_regular_(is_regular_file(path)) {
  if (!is_regular_) {
    bytes_ = read_file(path);
    if (bytes_.empty()) throw Error(path + ": there are no bytes in it");
  }
  file_.reset(is_regular_ ? fopen(path.c_str(), "rb")
                          : fmemopen(bytes_.data(), bytes_.size(), "rb"));
  if (!file_) throw Error(path + ": cannot be read: " + strerror(errno));
  auto* const buffer = static_cast<uint8_t*>(av_malloc(kIoBytes));
  if (buffer == nullptr) throw std::bad_alloc();
  io_.reset(avio_alloc_context(buffer, kIoBytes, 0, file_.get(), read_io, nullptr, seek_io));
  if (!io_) {
    av_free(buffer);
    throw std::bad_alloc();
  }
}

Bytes Source::take_bytes() { return is_regular_ ? read_file(path_) : std::move(bytes_); }

Probe probe(Source& source) {
  Probe found;
  // The path stays unknown here, since some formats go by the name instead of the bytes.
  const int score = av_probe_input_buffer2(source.io(), &found.format, "", nullptr, 0, 0);
  found.score = std::max(0, with_memory(score));
  return found;
}

Decoder::Decoder(Source& source, const Probe& probe)
    : path_(source.path()), is_still_(is_still(*probe.format)) {
  AVFormatContext* context = avformat_alloc_context();
  if (context == nullptr) throw std::bad_alloc();
  context->pb = source.io();
  // A list of files, or of addresses in a network, is not to be followed.
  av_opt_set(context, "protocol_whitelist", "none", 0);
  // When this fails, it frees the context.
  int code = with_memory(avformat_open_input(&context, "", probe.format, nullptr));
  if (code < 0) throw av_error(path_, "cannot be read", code);
  context_.reset(context);
  // Without this search, which decodes frames, pictures and Y4M say all that is needed.
  if (!is_still_ && strcmp(probe.format->name, "yuv4mpegpipe") != 0) {
    with_memory(avformat_find_stream_info(context, nullptr));
  }
  open_codec();
}

void Decoder::open_codec() {
  const AVCodec* codec = nullptr;
  stream_ = av_find_best_stream(context_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
  if (stream_ < 0 || codec == nullptr) throw Error(path_ + ": there is no video in it");
  codec_ = new_av_codec(codec);
  with_memory(avcodec_parameters_to_context(codec_.get(), context_->streams[stream_]->codecpar));
  // Other decoders refuse half a picture anyway; this one would fill the rest with grey. Of a
  // damaged film it may show what it can.
  if (is_still_ && codec->id == AV_CODEC_ID_MJPEG) codec_->err_recognition = AV_EF_EXPLODE;
  const int code = with_memory(avcodec_open2(codec_.get(), codec, nullptr));
  if (code < 0) throw av_error(path_, "cannot be decoded", code);
}

AvPacket Decoder::read_packet() {
  AvPacket packet = new_av_packet();
  for (;;) {
    const int code = with_memory(av_read_frame(context_.get(), packet.get()));
    if (code == AVERROR_EOF) return nullptr;
    if (code < 0) throw av_error(path_, "damaged", code);
    if (packet->stream_index == stream_) break;
    av_packet_unref(packet.get());
  }
  ++packets_;
  return packet;
}

void Decoder::feed() {
  const AvPacket packet = read_packet();
  const int code = with_memory(avcodec_send_packet(codec_.get(), packet.get()));
  if (code < 0) throw av_error(path_, "damaged", code);
}

AvFrame Decoder::next() {
  if (is_still_ && frames_ == 1) return nullptr;
  AvFrame frame = new_av_frame();
  int code = with_memory(avcodec_receive_frame(codec_.get(), frame.get()));
  for (; code == AVERROR(EAGAIN);
       code = with_memory(avcodec_receive_frame(codec_.get(), frame.get()))) {
    feed();
  }
  if (code == AVERROR_EOF) return nullptr;
  if (code < 0) throw av_error(path_, "damaged", code);
  if (frames_++ == 0) check_pixels(static_cast<AVPixelFormat>(frame->format));
  tag_colours(*frame, is_still_);
  add_display_matrix(*frame);
  return frame;
}

void Decoder::check_pixels(AVPixelFormat pixel) {
  const char* const name = av_get_pix_fmt_name(pixel);
  format_ = std::string(codec_->codec->name) + ' ' + (name == nullptr ? "unknown" : name);
  if (sws_isSupportedInput(pixel) == 0) throw Error(path_ + ": cannot be converted: " + format_);
}

void Decoder::add_display_matrix(AVFrame& frame) {
  constexpr size_t kMatrixBytes = 9 * sizeof(int32_t);
  size_t bytes = 0;
  const uint8_t* const matrix =
      av_stream_get_side_data(context_->streams[stream_], AV_PKT_DATA_DISPLAYMATRIX, &bytes);
  if (matrix == nullptr || bytes < kMatrixBytes) return;
  if (av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX) != nullptr) return;
  AVFrameSideData* const copy =
      av_frame_new_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX, kMatrixBytes);
  if (copy == nullptr) throw std::bad_alloc();
  memcpy(copy->data, matrix, kMatrixBytes);
}

int64_t Decoder::count_all() {
  if (is_still_) return 1;
  const int64_t stated = context_->streams[stream_]->nb_frames;
  if (stated > 0) return std::max(stated, frames_);
  while (read_packet() != nullptr) {
  }
  return std::max(packets_, frames_);
}

}  // namespace zavri::tools
