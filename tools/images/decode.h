#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "tools/images/ffmpeg.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// FFmpeg reads a file through its source. A regular file is read as far as FFmpeg asks for it,
// stdin and pipes wholly at once, since pictures and films cannot be read without seeking.
class Source {
 public:
  explicit Source(const std::string& path);

  const std::string& path() const { return path_; }
  AVIOContext* io() { return io_.get(); }

  // Returns all bytes; afterwards io() is not to be used.
  Bytes take_bytes();

 private:
  struct Close {
    void operator()(FILE* file) const { fclose(file); }
    void operator()(AVIOContext* io) const;
  };

  std::string path_;
  Bytes bytes_;  // when it is no regular file
  bool is_regular_;
  std::unique_ptr<FILE, Close> file_;
  std::unique_ptr<AVIOContext, Close> io_;
};

// Says what FFmpeg takes the bytes for.
struct Probe {
  const AVInputFormat* format = nullptr;
  int score = 0;

  // Tells whether the format was found by marks that hardly occur by chance.
  bool is_sure() const { return score > AVPROBE_SCORE_EXTENSION; }
};
Probe probe(Source& source);

// Gives the frames of a picture, which has one, or of the video in a stream, in order.
class Decoder {
 public:
  // The source outlives the decoder.
  Decoder(Source& source, const Probe& probe);

  // Returns the next frame, with its range and its matrix set, or null at the end.
  AvFrame next();

  // Counts how many frames there are. No frame can be had afterwards.
  int64_t count_all();

  // Names the codec and the pixel format of the first frame.
  const std::string& format() const { return format_; }

 private:
  struct Close {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
  };

  void open_codec();
  // Gives the decoder the next packet of the video, or the end.
  void feed();
  // Notes the format of the frames.
  void check_pixels(AVPixelFormat pixel);
  // Gives a frame the orientation that a film has as a whole.
  void add_display_matrix(AVFrame& frame);
  // Returns the next packet of the video, or null at the end.
  AvPacket read_packet();

  std::string path_;
  std::unique_ptr<AVFormatContext, Close> context_;
  AvCodec codec_;
  int stream_ = 0;
  bool is_still_;
  int64_t packets_ = 0;  // read
  int64_t frames_ = 0;   // decoded
  std::string format_;
};

}  // namespace zavri::tools
