// These tests write files, and tell how raw ones are described.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "tests/support/error_of.h"
#include "tests/support/folder.h"
#include "tools/images/files.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;
using Storage = TestFolder;

size_t count_entries(const fs::path& folder) {
  return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
}

TEST_F(Storage, OutputsReplaceOnlyWhatTheyName) {
  const Bytes bytes{1, 2, 3};
  fs::create_directory(path("far"));
  write_file(path("far/target"), {9});
  fs::permissions(path("far/target"), fs::perms(0640));
  fs::create_symlink("far/target", path("link"));
  fs::create_symlink(path("link"), path("chain"));
  write_file(path("chain"), bytes);
  EXPECT_EQ(read_file(path("far/target")), bytes);
  EXPECT_TRUE(fs::is_symlink(path("chain")) && fs::is_symlink(path("link")));
  EXPECT_EQ(fs::status(path("far/target")).permissions(), fs::perms(0640));
  fs::create_symlink("far/new", path("dangling"));
  write_file(path("dangling"), bytes);
  EXPECT_EQ(read_file(path("far/new")), bytes);
  EXPECT_EQ(count_entries(path("far")), 2u);

  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  Bytes got;
  std::thread reader([&] { got = read_file(path("pipe")); });
  write_file(path("pipe"), bytes);
  reader.join();
  EXPECT_EQ(got, bytes);
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(Storage, AFileThatCannotBeWholeIsNotThere) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit;
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{1000, limit.rlim_max};
  write_file(path("old"), {7});
  setrlimit(RLIMIT_FSIZE, &small);
  const std::string error = error_of([&] { write_file(path("old"), Bytes(5000)); });
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_EQ(error, path("old") + ": cannot be written: File too large");
  EXPECT_EQ(read_file(path("old")), Bytes{7});
  EXPECT_EQ(count_entries(folder_), 1u);
}

TEST_F(Storage, OutputsAreCheckedBeforeTheWork) {
  write_file(path("old.png"), {7});
  const auto check = [&](const std::string& name, bool force) {
    return error_of([&] { check_output(path(name), force); });
  };
  EXPECT_EQ(check("new.JPEG", false), "no error");
  EXPECT_EQ(check("old.png", true), "no error");
  EXPECT_EQ(error_of([] { check_output("-", false); }), "no error");
  EXPECT_NE(check("old.png", false).find("old.png: exists; --force overwrites it"),
            std::string::npos);
  EXPECT_NE(check("new.gif", false).find("an output ends in .png, .jpg"), std::string::npos);
  EXPECT_NE(check("none/new.png", true).find("there is no folder"), std::string::npos);
}

TEST(RawFormat, ComesFromTheNameOrTheOptions) {
  struct {
    const char* path;
    RawOptions options;
    size_t bytes;
    RawFormat expected;
  } const kCases[] = {
      {"a/dump_4000x2250.nv21", {}, 13500000, {4000, 2250, "nv21", 4000, 2250, 13500000}},
      {"4000x2250_dump.nv12", {}, 13500000, {4000, 2250, "nv12", 4000, 2250, 13500000}},
      {"DUMP_64x32.NV21", {}, 3072, {64, 32, "nv21", 64, 32, 3072}},
      {"x_64x32.yuv", {"", "nv21"}, 3072, {64, 32, "nv21", 64, 32, 3072}},
      {"x_64x32.yuv", {"32x64", ""}, 3072, {32, 64, "nv12", 32, 64, 3072}},
      {"x_64x32.i420", {}, 3072, {64, 32, "yuv420p", 64, 32, 3072}},
      {"x_64x32", {"", "yuv422p10le"}, 8192, {64, 32, "yuv422p10le", 64, 32, 8192}},
      {"dump.yuv", {"64x32", "nv12", 80, 48}, 5760, {64, 32, "nv12", 80, 48, 5760}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.path);
    const RawFormat format = raw_format(c.path, c.options, c.bytes);
    EXPECT_EQ(format.width, c.expected.width);
    EXPECT_EQ(format.height, c.expected.height);
    EXPECT_EQ(format.pixel, c.expected.pixel);
    EXPECT_EQ(format.stride, c.expected.stride);
    EXPECT_EQ(format.scanlines, c.expected.scanlines);
    EXPECT_EQ(format.bytes, c.expected.bytes);
  }
}

TEST(RawFormat, RefusalsSayWhatWouldBeRight) {
  struct {
    const char* path;
    RawOptions options;
    size_t bytes;
    const char* part;
  } const kCases[] = {
      {"dump_4000x3000.nv12", {}, 13500000, "13500000 bytes is 4000x2250 nv12"},
      {"dump_100x100.nv21", {}, 3110400, "3110400 bytes is 1920x1080 nv21"},
      {"dump_64x32.nv12", {}, 3071, "the file has 3071"},
      {"dump_64x32.nv12", {}, 5760, "5760 bytes is 64x32 nv12 with --stride 120"},
      {"dump_64x32.nv12",
       {"", "", 72, 48},
       5760,
       "64x32 nv12 with --stride 72 and --scanlines 48 is 5184 bytes, but 5760 bytes is 64x32 "
       "nv12 with --stride 80 and --scanlines 48"},
      {"dump_64x32.nv12", {"", "", 80}, 3072, "64x32 nv12 without padding"},
      {"dump_64x32.i420", {}, 3071, "64x32 yuv420p is 3072 bytes"},
      {"dump.nv12", {}, 3072, "--size WxH"},
      {"dump.nv12", {"64", ""}, 3072, "--size 64: a size is WxH"},
      {"dump.nv12", {"63x32", ""}, 3072, "both even"},
      {"dump.nv12", {"0x32", ""}, 3072, "--size 0x32"},
      {"dump_64x32.nv12", {"", "nv13"}, 3072, "--pix nv13: the formats are nv12, nv21, i420"},
      {"dump_64x32.nv12", {"", "", 60}, 3072, "--stride 60: at least the width, 64"},
      {"dump_64x32.nv12", {"", "", 64, 30}, 3072, "--scanlines 30"},
      {"dump_64x32.i420", {"", "", 80}, 3072, "--stride: frames of yuv420p have no padding"},
  };
  for (const auto& c : kCases) {
    const std::string error = error_of([&] { raw_format(c.path, c.options, c.bytes); });
    EXPECT_NE(error.find(c.part), std::string::npos) << c.path << ": " << error;
  }
}

}  // namespace
}  // namespace zavri::tools
