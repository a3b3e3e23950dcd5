#include "tools/images/files.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>
#include <utility>

#include "tools/error.h"
#include "tools/images/convert.h"
#include "tools/images/decode.h"
#include "tools/images/encode.h"
#include "tools/images/raw_frame.h"
#include "tools/images/upright.h"

namespace zavri::tools {
namespace {

// Frames [first, end) of a file.
struct Range {
  int64_t first;
  int64_t end;
  std::string text;  // as it was given, with its option
};

std::optional<int> parse_index(const std::string& text) {
  int index = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, index);
  if (error != std::errc() || rest != end || index < 0) return std::nullopt;
  return index;
}

Range parse_range(const std::string& text, int most) {
  if (text.empty()) return {0, most, ""};
  const size_t colon = text.find(':');
  const bool is_one = colon == std::string::npos;
  const std::string option = (is_one ? "--frame " : "--frames ") + text;
  const std::optional<int> first = parse_index(text.substr(0, colon));
  const std::optional<int> last = is_one ? first : parse_index(text.substr(colon + 1));
  if (!first || !last || *last < *first) {
    throw Error(option + ": a number from 0, or two such as 0:3");
  }
  return {*first, int64_t{*last} + 1, option};
}

[[noreturn]] void refuse_range(const std::string& path, const Range& range, int64_t total) {
  throw Error(range.text + ": " + path + " has " +
              (total == 1 ? "one frame, 0"
                          : std::to_string(total) + " frames, 0 to " + std::to_string(total - 1)));
}

Loaded load_raw(Source& source, const RawOptions& options, const Range& range) {
  Bytes bytes = source.take_bytes();
  const RawFormat format = raw_format(source.path(), options, bytes.size());
  if (!range.text.empty() && range.end != 1) refuse_range(source.path(), range, 1);
  Loaded loaded{"raw " + format.pixel, true, 1, {}};
  loaded.frames.push_back(decode_raw(std::move(bytes), format));
  return loaded;
}

void check_size(const std::string& path, const AVFrame& frame) {
  const int least = std::min(frame.width, frame.height);
  const int most = std::max(frame.width, frame.height);
  if (least >= 2 && most <= kLargestSide) return;
  throw Error(path + ": a picture of " + std::to_string(frame.width) + 'x' +
              std::to_string(frame.height) + "; sides of 2 to " + std::to_string(kLargestSide) +
              " are read");
}

Loaded load_decoded(Source& source, const Probe& found, const Range& range) {
  Decoder decoder(source, found);
  Loaded loaded;
  for (int64_t k = 0; k < range.end; ++k) {
    const AvFrame frame = decoder.next();
    if (frame == nullptr) {
      if (k == 0) throw Error(source.path() + ": there is no whole frame in it");
      if (!range.text.empty()) refuse_range(source.path(), range, k);
      break;
    }
    if (k < range.first) continue;
    check_size(source.path(), *frame);
    loaded.frames.push_back(upright(frame_from_av(*frame), orientation_of(*frame)));
  }
  loaded.format = decoder.format();
  loaded.total_frames = decoder.count_all();
  return loaded;
}

// Whether the file is a raw frame. A name that says so is believed, since a raw frame may begin
// like a picture by chance. Other names tell by the bytes, and where these leave doubt, by whether
// there is a size and the extension is none that FFmpeg knows.
bool is_raw(const std::string& path, const RawOptions& options, const Probe& found) {
  if (has_raw_extension(path)) return true;
  if (found.is_sure() || !has_raw_size(path, options)) return false;
  return av_guess_format(nullptr, path.c_str(), nullptr) == nullptr;
}

[[noreturn]] void refuse_raw_options(const RawOptions& raw, const std::string& path) {
  throw Error(raw.first_given() + ": " + path + " is not raw and says this itself");
}

// Runs a function whose want of memory is then told of with the file's name.
template <class Function>
auto with_name(const std::string& path, Function function) {
  silence_av_log();
  try {
    return function();
  } catch (const std::bad_alloc&) {
    throw Error(path + ": there is not enough memory for it");
  }
}

template <class Image>
void save_as(const Image& image, const std::string& path) {
  const Bytes bytes =
      with_name(path, [&] { return encode(image, path == "-" ? ".y4m" : extension_of(path)); });
  write_file(path, bytes);
}

}  // namespace

Loaded load(const std::string& path, const InputOptions& options, int most) {
  return with_name(path, [&] {
    const Range range = parse_range(options.frames, most);
    Source source(path);
    const Probe found = has_raw_extension(path) ? Probe{} : probe(source);
    if (is_raw(path, options.raw, found)) return load_raw(source, options.raw, range);
    if (found.format == nullptr) {
      throw Error(path + ": not a picture or a video; for a raw frame give --size WxH");
    }
    return load_decoded(source, found, range);
  });
}

std::vector<Loaded> load_all(const std::vector<std::string>& paths, const InputOptions& options,
                             int most) {
  std::vector<Loaded> all;
  bool any_raw = options.raw.first_given().empty();
  for (const std::string& path : paths) {
    all.push_back(load(path, options, most));
    any_raw |= all.back().is_raw;
  }
  if (!any_raw) refuse_raw_options(options.raw, paths.front());
  return all;
}

std::vector<Frame> load_frames(const std::vector<std::string>& paths, const InputOptions& options,
                               int most) {
  std::vector<Loaded> all = load_all(paths, options, most);
  std::vector<Frame> frames;
  for (size_t k = 0; k < all.size(); ++k) {
    if (options.frames.empty() && all[k].total_frames > most) {
      throw Error(paths[k] + ": there are " + std::to_string(all[k].total_frames) +
                  " frames in it; --frame N" +
                  (most > 1 ? " or --frames A:B names some" : " names one") + ", counted from 0");
    }
    for (Frame& frame : all[k].frames) frames.push_back(std::move(frame));
  }
  return frames;
}

Frame load_frame(const std::string& path, const InputOptions& options) {
  std::vector<Frame> frames = load_frames({path}, options, 1);
  if (frames.size() > 1) throw Error("--frames " + options.frames + ": one frame is used here");
  return std::move(frames.front());
}

Picture load_picture(const std::string& path) {
  return with_name(path, [&] {
    Source source(path);
    const Probe found = probe(source);
    if (found.format == nullptr) throw Error(path + ": not a picture or a video");
    const AvFrame frame = Decoder(source, found).next();
    if (frame == nullptr) throw Error(path + ": there is no whole frame in it");
    check_size(path, *frame);
    return upright(picture_from_av(*frame), orientation_of(*frame));
  });
}

void check_output(const std::string& path, bool force) {
  if (path != "-" && !is_output_extension(extension_of(path))) {
    throw Error(path + ": an output ends in " + output_extensions());
  }
  check_file(path, force);
}

void save(const Frame& frame, const std::string& path) { save_as(frame, path); }

void save(const Picture& picture, const std::string& path) { save_as(picture, path); }

}  // namespace zavri::tools
