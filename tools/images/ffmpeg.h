#pragma once

#include <memory>
#include <new>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include "tools/error.h"

// These types own what FFmpeg's structures hold.
namespace zavri::tools {

struct FreeAv {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
using AvFrame = std::unique_ptr<AVFrame, FreeAv>;
using AvPacket = std::unique_ptr<AVPacket, FreeAv>;
using AvCodec = std::unique_ptr<AVCodecContext, FreeAv>;

// All of these throw std::bad_alloc when there is no memory.
AvFrame new_av_frame();
AvFrame new_av_frame(AVPixelFormat format, int width, int height);
AvPacket new_av_packet();
AvCodec new_av_codec(const AVCodec* codec);

// Passes on what one of FFmpeg's functions returned, unless it says that there is no memory.
int with_memory(int code);

// Makes the text "path: what: FFmpeg's text of the code".
Error av_error(const std::string& path, const std::string& what, int code);

// Keeps FFmpeg from writing to stderr.
void silence_av_log();

// Runs a function that calls FFmpeg for the file at `path`. Want of memory is told of with its
// name.
template <class Function>
auto with_ffmpeg(const std::string& path, Function function) {
  silence_av_log();
  try {
    return function();
  } catch (const std::bad_alloc&) {
    throw Error(path + ": there is not enough memory for it");
  }
}

}  // namespace zavri::tools
