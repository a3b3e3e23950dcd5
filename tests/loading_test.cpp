// These tests show what is taken of a file, and what is refused.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/error_of.h"
#include "tests/support/folder.h"
#include "tests/support/pictures.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

using Loading = TestFolder;

TEST_F(Loading, PaddedDumpsKeepEveryByte) {
  std::mt19937 random(1);
  Bytes dump(80 * 48 * 3 / 2);
  for (uint8_t& byte : dump) byte = static_cast<uint8_t>(random());
  for (const std::string order : {"nv12", "nv21"}) {
    SCOPED_TRACE(order);
    write_file(path("dump.bin"), dump);
    const Frame frame = load_frame(path("dump.bin"), {{"64x32", order, 80, 48}, {}});
    EXPECT_EQ(frame.buffer(), dump);
    EXPECT_EQ(frame.order(), order == "nv12" ? ChromaOrder::kUv : ChromaOrder::kVu);
    EXPECT_EQ(frame.luma_row(31)[63], dump[31 * 80 + 63]);
    EXPECT_EQ(frame.chroma_row(15)[63], dump[(48 + 15) * 80 + 63]);
    const Frame part = frame.crop(2, 4, 60, 26);
    EXPECT_EQ(part.luma_row(25)[59], frame.luma_row(29)[61]);
    EXPECT_EQ(part.chroma_row(12)[59], frame.chroma_row(14)[61]);

    save(frame, path("same." + order));
    save(frame, path("same.yuv"));
    EXPECT_EQ(read_file(path("same." + order)), dump);
    EXPECT_EQ(read_file(path("same.yuv")), dump);
    const std::string other = order == "nv12" ? "nv21" : "nv12";
    save(frame, path("other." + other));
    const Frame swapped = load_frame(path("other." + other), {{"64x32", "", 80, 48}, {}});
    expect_near(swapped, frame, 1000);
    Bytes expected = dump;
    for (size_t y = 48; y < 64; ++y) {
      for (size_t x = 0; x < 64; x += 2) std::swap(expected[80 * y + x], expected[80 * y + x + 1]);
    }
    EXPECT_EQ(swapped.buffer(), expected);
    save(frame, path("tight_64x32.i420"));
    expect_near(load_frame(path("tight_64x32.i420"), {}), frame, 1000);
  }
}

TEST_F(Loading, FramesOfAStreamAreChosenAndCounted) {
  std::vector<Bytes> planes;
  for (const uint8_t level : {10, 20, 30, 40, 50}) planes.emplace_back(16 * 8 * 3 / 2, level);
  write_file(path("five.y4m"), y4m(16, 8, "C420jpeg XCOLORRANGE=FULL", planes));
  struct {
    std::optional<FrameRange> frames;
    int most;
    std::vector<int> levels;
  } const kCases[] = {
      {{}, 1, {10}},       {{}, 4, {10, 20, 30, 40}},   {{}, 9, {10, 20, 30, 40, 50}},
      {{{3, 3}}, 1, {40}}, {{{1, 3}}, 1, {20, 30, 40}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.frames ? c.frames->text() : "none");
    const Loaded loaded = load(path("five.y4m"), {{}, c.frames}, c.most);
    EXPECT_EQ(loaded.total_frames, 5);
    std::vector<int> levels;
    for (const Frame& frame : loaded.frames) levels.push_back(frame.luma_row(3)[7]);
    EXPECT_EQ(levels, c.levels);
  }
  EXPECT_EQ(load_frame(path("five.y4m"), {{}, {{4, 4}}}).luma_row(0)[0], 50);
}

TEST_F(Loading, RefusalsAreOneLineThatNamesTheFile) {
  save(scene(640, 480), path("whole.jpg"));
  Bytes bytes = read_file(path("whole.jpg"));
  bytes.resize(bytes.size() / 2);
  write_file(path("half.jpg"), bytes);
  save(scene(1, 1), path("tiny.ppm"));
  save(scene(64, 48), path("a.png"));
  write_file(path("text.txt"), {'h', 'e', 'l', 'l', 'o'});
  // The list names its file as seen from here.
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  const std::string list = "ffconcat version 1.0\nfile a.png\n";
  write_file(path("list.txt"), {list.begin(), list.end()});
  write_file(path("two.y4m"), y4m(16, 8, "C420jpeg", {Bytes(192), Bytes(192)}));
  write_file(path("short.y4m"), y4m(16, 8, "C420jpeg", {Bytes(60)}));
  struct {
    const char* name;
    InputOptions options;
    const char* part;
  } const kCases[] = {
      {"missing.png", {}, "missing.png: cannot be read: No such file or directory"},
      {"half.jpg", {}, "half.jpg: damaged"},
      {"tiny.ppm", {}, "tiny.ppm: a picture of 1x1; sides of 2 to 32766"},
      {"text.txt", {}, "text.txt: not a picture or a video; for a raw frame give --size WxH"},
      {"list.txt", {}, "list.txt: cannot be read"},
      {"two.y4m", {}, "two.y4m: there are 2 frames in it; --frame N"},
      {"two.y4m", {{}, {{2, 2}}}, "two.y4m has 2 frames, 0 to 1"},
      {"two.y4m", {{}, {{0, 1}}}, "--frames 0:1: one frame is used here"},
      {"a.png", {{}, {{1, 1}}}, "a.png has one frame, 0"},
      {"short.y4m", {}, "short.y4m: there is no whole frame in it"},
      {"a.png", {{"64x48", ""}, {}}, "--size: "},
      {"a.png", {{"", "nv12"}, {}}, "a.png is not raw"},
  };
  for (const auto& c : kCases) {
    const std::string error = error_of([&] { load_frame(path(c.name), c.options); });
    EXPECT_NE(error.find(c.part), std::string::npos) << c.name << ": " << error;
    EXPECT_EQ(error.find('\n'), std::string::npos) << error;
  }
  std::filesystem::current_path(here);
}

}  // namespace
}  // namespace zavri::tools
