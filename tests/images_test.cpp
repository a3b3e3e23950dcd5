// These tests take one picture through files of all formats.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/support/folder.h"
#include "tests/support/pictures.h"
#include "tools/images/convert.h"
#include "tools/images/files.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

namespace zavri::tools {
namespace {

using Images = TestFolder;

// Converts to BT.601 of full range with each chroma sample the mean of its four pixels.
Frame frame_by_hand(const Picture& picture) {
  Frame frame(picture.width, picture.height);
  for (int y = 0; y < frame.height(); y += 2) {
    for (int x = 0; x < frame.width(); x += 2) {
      double u = 128;
      double v = 128;
      for (int k = 0; k < 4; ++k) {
        const size_t at = static_cast<size_t>(y + k / 2) * picture.width + x + k % 2;
        const uint8_t* const rgb = &picture.rgb[3 * at];
        const double luma = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
        frame.luma_row(y + k / 2)[x + k % 2] = static_cast<uint8_t>(std::lround(luma));
        u += (rgb[2] - luma) / 1.772 / 4;
        v += (rgb[0] - luma) / 1.402 / 4;
      }
      frame.chroma_row(y / 2)[x] = static_cast<uint8_t>(std::lround(u));
      frame.chroma_row(y / 2)[x + 1] = static_cast<uint8_t>(std::lround(v));
    }
  }
  return frame;
}

Bytes bytes_of(const AVFrame& frame) {
  const auto format = static_cast<AVPixelFormat>(frame.format);
  const int size = av_image_get_buffer_size(format, frame.width, frame.height, 1);
  Bytes bytes(static_cast<size_t>(size));
  av_image_copy_to_buffer(bytes.data(), size, frame.data, frame.linesize, format, frame.width,
                          frame.height, 1);
  return bytes;
}

// FFmpeg makes this of the picture when nobody asks for exactness.
Bytes planes_by_ffmpeg(const Picture& picture, AVPixelFormat format) {
  const AvFrame from = to_av(picture);
  const AvFrame to = new_av_frame(format, picture.width, picture.height);
  SwsContext* const sws =
      sws_getContext(picture.width, picture.height, AV_PIX_FMT_RGB24, picture.width, picture.height,
                     format, SWS_BICUBIC, nullptr, nullptr, nullptr);
  sws_scale(sws, from->data, from->linesize, 0, picture.height, to->data, to->linesize);
  sws_freeContext(sws);
  return bytes_of(*to);
}

// A video of this size without a matrix would be taken for BT.709.
TEST_F(Images, OnePictureIsTheSameInEveryFormat) {
  constexpr int kWidth = 1290;
  constexpr int kHeight = 722;
  const Picture picture = scene(kWidth, kHeight);
  const Frame expected = frame_by_hand(picture);
  for (const char* name : {"a.png", "a.PPM", "a.bmp", "a.tif", "a.y4m", "a_1290x722.nv12",
                           "b_1290x722.NV21", "a_1290x722.i420", "a_1290x722.yv12"}) {
    SCOPED_TRACE(name);
    save(picture, path(name));
    const Loaded loaded = load(path(name), {});
    expect_near(loaded.frames.front(), expected, 48);
    save(expected, path(name));
    expect_near(load_frame(path(name), {}), expected, 48);
  }
  EXPECT_EQ(load_frame(path("b_1290x722.NV21"), {}).order(), ChromaOrder::kVu);
  EXPECT_EQ(load_picture(path("a.bmp")).rgb, to_picture(expected).rgb);
  for (const char* name : {"a.jpg", "a.webp"}) {
    SCOPED_TRACE(name);
    save(picture, path(name));
    expect_near(load_frame(path(name), {}), expected, 38);
  }
  // Readers go by the bytes, not by the name.
  for (const auto& [name, first] : {std::pair("a.png", "\x89PNG"),
                                    {"a.jpg", "\xff\xd8"},
                                    {"a.webp", "RIFF"},
                                    {"a.PPM", "P6"},
                                    {"a.bmp", "BM"},
                                    {"a.tif", "II*"},
                                    {"a.y4m", "YUV4MPEG2"}}) {
    const Bytes bytes = read_file(path(name));
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + strlen(first)), first) << name;
  }

  struct {
    const char* tags;
    AVPixelFormat format;
    AVColorRange range;
    AVColorSpace matrix;
  } const kStreams[] = {
      {"C420jpeg", AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG, AVCOL_SPC_BT470BG},
      {"C420jpeg XCOLORRANGE=LIMITED", AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG, AVCOL_SPC_BT470BG},
      {"C420mpeg2", AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG, AVCOL_SPC_BT709},
      {"C420mpeg2 XCOLORRANGE=FULL", AV_PIX_FMT_YUV420P, AVCOL_RANGE_JPEG, AVCOL_SPC_BT470BG},
      {"C420p10 XYSCSS=420P10", AV_PIX_FMT_YUV420P10, AVCOL_RANGE_MPEG, AVCOL_SPC_BT709},
      {"C444 XYSCSS=444", AV_PIX_FMT_YUV444P, AVCOL_RANGE_MPEG, AVCOL_SPC_BT709},
  };
  for (const auto& stream : kStreams) {
    SCOPED_TRACE(stream.tags);
    const Bytes planes =
        bytes_of(*convert(*to_av(picture), {stream.format, stream.range, stream.matrix}));
    write_file(path("b.y4m"), y4m(kWidth, kHeight, stream.tags, {planes}));
    expect_near(load_frame(path("b.y4m"), {}), expected, 48);
  }
  const Picture tall = scene(66, 578);  // is high definition by its height
  write_file(path("b.y4m"),
             y4m(66, 578, "C420mpeg2",
                 {bytes_of(*convert(*to_av(tall),
                                    {AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG, AVCOL_SPC_BT709}))}));
  expect_near(load_frame(path("b.y4m"), {}), to_frame(tall), 48);
  write_file(path("c.y4m"),
             y4m(kWidth, kHeight, "C420jpeg", {planes_by_ffmpeg(picture, AV_PIX_FMT_YUV420P)}));
  expect_near(load_frame(path("c.y4m"), {}), expected, 48);

  for (const char* pixel : {"yuvj420p", "yuv422p", "yuv444p10le", "p010le", "rgb24", "gbrp",
                            "rgba64be", "yuyv422", "yuva420p"}) {
    SCOPED_TRACE(pixel);
    write_file(path("d.raw"), bytes_of(*convert(*to_av(picture), {av_get_pix_fmt(pixel)})));
    expect_near(load_frame(path("d.raw"), {{"1290x722", pixel}, {}}), expected, 48);
  }
}

// The first stored row and the first stored column show these sides of the upright picture.
struct StoredSides {
  const char* row;
  const char* column;
};
constexpr StoredSides kSides[] = {{"top", "left"},     {"top", "right"},  {"bottom", "right"},
                                  {"bottom", "left"},  {"left", "top"},   {"right", "top"},
                                  {"right", "bottom"}, {"left", "bottom"}};

Picture stored(const Picture& picture, const StoredSides& sides) {
  const std::string row = sides.row;
  const std::string column = sides.column;
  const bool lies = row == "left" || row == "right";
  const bool from_right = row == "right" || column == "right";
  const bool from_bottom = row == "bottom" || column == "bottom";
  Picture result = lies ? Picture(picture.height, picture.width) : picture;
  for (int y = 0; y < result.height; ++y) {
    for (int x = 0; x < result.width; ++x) {
      int from_x = lies ? y : x;
      int from_y = lies ? x : y;
      if (from_right) from_x = picture.width - 1 - from_x;
      if (from_bottom) from_y = picture.height - 1 - from_y;
      std::copy_n(&picture.rgb[3 * (static_cast<size_t>(from_y) * picture.width + from_x)], 3,
                  &result.rgb[3 * (static_cast<size_t>(y) * result.width + x)]);
    }
  }
  return result;
}

TEST_F(Images, PhotographsComeUpright) {
  const Picture picture = scene(120, 80);
  const Frame expected = frame_by_hand(picture);
  for (uint8_t orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(int{orientation});
    save(stored(picture, kSides[orientation - 1]), path("plain.jpg"));
    Bytes jpeg = read_file(path("plain.jpg"));
    const Bytes exif{0xff, 0xe1, 0, 34, 'E', 'x',         'i', 'f', 0, 0,  'M', 'M',
                     0,    42,   0, 0,  0,   8,           0,   1,   1, 18, 0,   3,
                     0,    0,    0, 1,  0,   orientation, 0,   0,   0, 0,  0,   0};
    jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
    write_file(path("turned.jpg"), jpeg);
    expect_near(load_frame(path("turned.jpg"), {}), expected, 35);
    expect_near(to_frame(load_picture(path("turned.jpg"))), expected, 35);
  }
}

TEST_F(Images, GreyPicturesHaveNeutralChroma) {
  Frame grey = frame_by_hand(scene(66, 50));
  for (int y = 0; y < 25; ++y) std::fill_n(grey.chroma_row(y), 66, 128);
  save(grey, path("a.pgm"));
  expect_near(load_frame(path("a.pgm"), {}), grey, 1000);
}

TEST_F(Images, OddSizesLoseTheirLastRowAndColumn) {
  const Picture odd = scene(61, 47);
  for (const char* name : {"odd.png", "odd.y4m"}) {
    save(odd, path(name));
    expect_near(load_frame(path(name), {}), to_frame(odd), 48);
  }
  EXPECT_EQ(to_frame(odd).size(), "60x46");
  EXPECT_EQ(load_picture(path("odd.png")).rgb, odd.rgb);
}

}  // namespace
}  // namespace zavri::tools
