#include "tools/images/ffmpeg.h"

#include <new>

namespace zavri::tools {
namespace {

template <class Owner, class Pointer>
Owner owned(Pointer pointer) {
  if (pointer == nullptr) throw std::bad_alloc();
  return Owner(pointer);
}

}  // namespace

AvFrame new_av_frame() { return owned<AvFrame>(av_frame_alloc()); }

AvFrame new_av_frame(AVPixelFormat format, int width, int height) {
  AvFrame frame = new_av_frame();
  frame->format = format;
  frame->width = width;
  frame->height = height;
  if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
  return frame;
}

AvPacket new_av_packet() { return owned<AvPacket>(av_packet_alloc()); }

AvCodec new_av_codec(const AVCodec* codec) { return owned<AvCodec>(avcodec_alloc_context3(codec)); }

int with_memory(int code) {
  if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
  return code;
}

Error av_error(const std::string& path, const std::string& what, int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = "";
  av_strerror(code, text, sizeof text);
  return Error(path + ": " + what + ": " + text);
}

void silence_av_log() {
  av_log_set_callback([](void*, int, const char*, va_list) {});
}

}  // namespace zavri::tools
