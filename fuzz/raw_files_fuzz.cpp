// Fuzzes what the program reads of raw frames and dumps: names, sizes, padding and bytes.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "fuzz/fuzzing.h"
#include "tools/error.h"
#include "tools/images/files.h"
#include "tools/images/storage.h"
#include "tools/operations/dump.h"

using namespace zavri::fuzzing;
using namespace zavri::tools;

namespace {

struct Folder {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("zavri_fuzz" + std::to_string(getpid()));
  Folder() { std::filesystem::create_directories(path); }
  ~Folder() { std::filesystem::remove_all(path); }
};

std::string word(Input& input, const char* letters) {
  const std::string all = letters;
  std::string text;
  for (uint32_t left = input.below(16); left > 0; --left) text += all[input.below(all.size())];
  return text;
}

std::string number(uint32_t value) { return std::to_string(value); }

// Half of these are sizes.
std::string size_text(Input& input) {
  if (input.flag()) return word(input, "0123456789x_-+ ");
  const uint32_t width = 2 + 2 * input.below(40);
  return number(width) + 'x' + number(2 + 2 * input.below(40));
}

std::string name_text(Input& input) {
  constexpr const char* kExtensions[] = {".nv12", ".NV21", ".yuv", ".i420", ".yv12", ".raw", ""};
  const std::string stem = word(input, "0123456789x_.n");
  const std::string size = input.flag() ? "_" + size_text(input) : "";
  return 'f' + stem + size + kExtensions[input.below(7)];
}

RawOptions read_options(Input& input) {
  constexpr const char* kPixels[] = {"",          "nv12",        "nv21",    "i420",   "yv12",
                                     "yuv422p",   "p010le",      "rgb24",   "gray",   "pal8",
                                     "monowhite", "bayer_rggb8", "yuyv422", "yuv410p"};
  RawOptions options;
  if (input.flag()) options.size = size_text(input);
  options.pixel =
      input.below(8) == 0 ? word(input, "abcdeginpuvxyz0124") : kPixels[input.below(14)];
  if (input.flag()) options.stride = static_cast<int>(input.byte());
  if (input.flag()) options.scanlines = static_cast<int>(input.byte());
  return options;
}

void check_raw(const std::string& name, const RawOptions& options, const Bytes& bytes) {
  const RawFormat format = raw_format(name, options, bytes.size());
  if (format.bytes != bytes.size()) abort();
  const Frame frame = decode_raw(bytes, format);
  if (frame.width() != format.width || frame.height() != format.height) abort();
  for (const char* extension : {".nv12", ".nv21", ".i420", ".yv12"}) encode(frame, extension);
  if (format.is_semi_planar() && encode(frame, ".yuv") != bytes) abort();
}

void check_dump(const std::string& path, const RawOptions& options, const DumpMeta& meta,
                const Bytes& bytes) {
  const Frame frame = load_dump(path, options, meta);
  if (!std::equal(frame.luma_row(0), frame.luma_row(0) + frame.width(), &bytes[meta.luma])) abort();
}

// Returns the bytes that such a file has, or 0: the refusal of an empty file names them.
size_t bytes_of(const std::string& name, const RawOptions& options) try {
  raw_format(name, options, 0);
  return 0;
} catch (const Error& error) {
  const std::string text = error.what();
  const size_t at = text.rfind(" bytes, but ");
  if (at == std::string::npos) return 0;
  return std::stoul(text.substr(text.rfind(' ', at - 1) + 1));
}

void check(Input& input, const std::filesystem::path& folder) try {
  const std::string name = input.below(8) == 0 ? "0.yuv" : name_text(input);
  const RawOptions options = read_options(input);
  DumpMeta meta;
  if (input.flag()) meta.luma = input.byte();
  if (input.flag()) meta.chroma = input.byte();
  (void)name_without_size(name);
  const auto front = static_cast<size_t>(meta.luma + meta.chroma);
  const size_t expected = bytes_of(name, options);
  if (expected == 0 || expected > 1 << 20) return;
  zavri::fuzzing::Picture picture(input);
  const size_t size = input.below(8) == 0 ? input.byte() : expected;
  const std::string path = folder / name;
  const Bytes bytes = picture.plane(size + front);
  write_file(path, bytes);
  check_raw(name, options, Bytes(bytes.begin() + static_cast<ptrdiff_t>(front), bytes.end()));
  check_dump(path, options, meta, bytes);
  std::filesystem::remove(path);
} catch (const Error&) {
  // Most inputs are refused.
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  static const Folder folder;
  check(input, folder.path);
  return 0;
}
