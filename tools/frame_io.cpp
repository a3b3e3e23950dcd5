#include "tools/frame_io.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "tools/error.h"
#include "tools/picture_codec.h"

namespace zavri::tools {
namespace {

constexpr char kY4mMagic[] = "YUV4MPEG2 ";
constexpr size_t kLongestHeader = 200;

std::string extension_of(const std::string& path) {
  std::string extension = path == "-" ? ".y4m" : std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(tolower(c)); });
  return extension;
}

bool is_raw_extension(const std::string& extension) {
  return extension == ".nv12" || extension == ".nv21" || extension == ".yuv";
}

bool is_picture_extension(const std::string& extension) {
  return extension == ".png" || extension == ".jpg" || extension == ".jpeg" || extension == ".ppm";
}

// The line that begins at `at`, without its end; moves `at` behind it.
std::string header_line(const Bytes& bytes, size_t& at) {
  const size_t limit = std::min(bytes.size(), at + kLongestHeader);
  const auto begin = bytes.begin() + static_cast<ptrdiff_t>(at);
  const auto end = std::find(begin, bytes.begin() + static_cast<ptrdiff_t>(limit), '\n');
  at += static_cast<size_t>(end - begin) + 1;
  return {begin, end};
}

std::vector<Frame> decode_y4m(const Bytes& bytes, const std::string& name) {
  size_t at = 0;
  std::istringstream header(header_line(bytes, at));
  int width = 0;
  int height = 0;
  std::string space = "420";
  for (std::string word; header >> word;) {
    if (word[0] == 'W') width = atoi(word.c_str() + 1);
    if (word[0] == 'H') height = atoi(word.c_str() + 1);
    if (word[0] == 'C') space = word.substr(1);
  }
  if (space.rfind("420", 0) != 0 || space.find('p', 3) == 3) {
    throw Error(name + ": C" + space + "; of Y4M streams only 8-bit 4:2:0 is read");
  }
  parse_size(std::to_string(width) + 'x' + std::to_string(height), name + ':');

  std::vector<Frame> frames;
  while (at < bytes.size()) {
    const std::string line = header_line(bytes, at);
    Frame frame(width, height);
    const size_t quarter = frame.luma.size() / 4;
    if (line.rfind("FRAME", 0) != 0 || bytes.size() < at + frame.luma.size() + 2 * quarter) {
      throw Error(name + ": the stream ends within frame " + std::to_string(frames.size()));
    }
    std::copy_n(&bytes[at], frame.luma.size(), frame.luma.begin());
    const uint8_t* const u = &bytes[at + frame.luma.size()];
    for (size_t i = 0; i < quarter; ++i) {
      frame.chroma[2 * i] = u[i];
      frame.chroma[2 * i + 1] = u[quarter + i];
    }
    at += frame.luma.size() + 2 * quarter;
    frames.push_back(std::move(frame));
  }
  if (frames.empty()) throw Error(name + ": a Y4M stream without a frame");
  return frames;
}

Bytes encode_y4m(const Frame& frame) {
  const Frame planes = frame.with_u_first();
  std::string header = kY4mMagic;
  header += 'W' + std::to_string(frame.width) + " H" + std::to_string(frame.height) +
            " F25:1 Ip A1:1 C420jpeg\nFRAME\n";
  Bytes bytes(header.begin(), header.end());
  bytes.insert(bytes.end(), planes.luma.begin(), planes.luma.end());
  for (const size_t first : {0, 1}) {
    for (size_t i = first; i < planes.chroma.size(); i += 2) bytes.push_back(planes.chroma[i]);
  }
  return bytes;
}

Bytes encode_raw(const Frame& frame, ChromaOrder order) {
  Frame planes = frame;
  if (frame.order != order) {
    for (size_t i = 0; i < planes.chroma.size(); i += 2) {
      std::swap(planes.chroma[i], planes.chroma[i + 1]);
    }
  }
  Bytes bytes = std::move(planes.luma);
  bytes.insert(bytes.end(), planes.chroma.begin(), planes.chroma.end());
  return bytes;
}

}  // namespace

void check_extension(const std::string& path) {
  const std::string extension = extension_of(path);
  if (!is_raw_extension(extension) && !is_picture_extension(extension) && extension != ".y4m") {
    throw Error(path + ": an output ends in .png, .jpg, .ppm, .y4m, .nv12, .nv21 or .yuv");
  }
}

Frame decode_raw(const Bytes& bytes, const RawFormat& format) {
  Frame frame(format.width, format.height, format.order);
  const auto copy_rows = [&](const uint8_t* from, std::vector<uint8_t>& to, int rows) {
    for (int y = 0; y < rows; ++y) {
      std::copy_n(from + static_cast<size_t>(y) * format.stride, format.width,
                  to.begin() + static_cast<ptrdiff_t>(y) * format.width);
    }
  };
  copy_rows(bytes.data(), frame.luma, format.height);
  copy_rows(bytes.data() + static_cast<size_t>(format.stride) * format.scanlines, frame.chroma,
            format.height / 2);
  return frame;
}

Loaded load(const std::string& path, const RawOptions& raw) {
  const Bytes bytes = read_file(path);
  const size_t magic = strlen(kY4mMagic);
  if (bytes.size() > magic && memcmp(bytes.data(), kY4mMagic, magic) == 0) {
    return {"Y4M", decode_y4m(bytes, path)};
  }
  // Only stdin is judged by its bytes: a raw frame may begin like a picture.
  if (path == "-" ? is_picture(bytes) : is_picture_extension(extension_of(path))) {
    return {"picture", {to_frame(decode_picture(bytes, path))}};
  }
  const RawFormat format = raw_format(path, raw, bytes.size());
  return {name_of(format.order), {decode_raw(bytes, format)}};
}

Frame load_frame(const std::string& path, const RawOptions& raw) {
  return std::move(load(path, raw).frames.front());
}

Picture load_picture(const std::string& path) { return decode_picture(read_file(path), path); }

Bytes encode(const Frame& frame, const std::string& path) {
  const std::string extension = extension_of(path);
  if (is_picture_extension(extension)) return encode(to_picture(frame), path);
  if (extension == ".y4m") return encode_y4m(frame);
  if (extension == ".yuv") return encode_raw(frame, frame.order);
  return encode_raw(frame, extension == ".nv21" ? ChromaOrder::kVu : ChromaOrder::kUv);
}

Bytes encode(const Picture& picture, const std::string& path) {
  const std::string extension = extension_of(path);
  if (extension == ".png") return encode_png(picture);
  return extension == ".ppm" ? encode_ppm(picture) : encode_jpeg(picture);
}

}  // namespace zavri::tools
