#include "tools/measure.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {
namespace {

Report row_of(const std::string& name, const Rect& rect, const Measures& measures) {
  return {{"file", name},
          {"rect", rect.text()},
          {"focus", measures.focus},
          {"derivation", measures.derivation},
          {"average", measures.average},
          {"brightness", measures.brightness},
          {"mean", decimals(measures.mean, 2)}};
}

// Marks the frames of the largest focus value. Only rectangles of one size compare, and no frames
// without any detail.
void mark_sharpest(Report& rows, const std::vector<Rect>& rects, bool as_text) {
  const auto same_size = [&](const Rect& rect) {
    return rect.width == rects.front().width && rect.height == rects.front().height;
  };
  if (rows.size() < 2 || !std::all_of(rects.begin(), rects.end(), same_size)) return;
  uint32_t most = 0;
  for (const Report& row : rows) most = std::max(most, row["focus"].get<uint32_t>());
  if (most == 0) return;
  for (Report& row : rows) {
    const bool sharpest = row["focus"] == most;
    row["sharpest"] = as_text ? Report(sharpest ? "*" : "") : Report(sharpest);
  }
}

std::string csv_cell(const Report& value) {
  if (!value.is_string()) return value.dump();
  std::string text = value.get<std::string>();
  for (size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2)
    text.insert(at, 1, '"');
  return text.find_first_of(",\"\n") == std::string::npos ? text : '"' + text + '"';
}

void print_csv(const Report& rows) {
  std::string lines;
  const auto end_line = [&] { lines.back() = '\n'; };
  for (const auto& item : rows.front().items()) lines += csv_cell(item.key()) + ',';
  end_line();
  for (const Report& row : rows) {
    for (const Report& value : row) lines += csv_cell(value) + ',';
    end_line();
  }
  std::fputs(lines.c_str(), stdout);
}

}  // namespace

int run_measure(const MeasureOptions& options, const Console& console) {
  std::optional<Rect> asked;
  if (options.rect) asked = parse_rect(*options.rect);
  Report rows = Report::array();
  std::vector<Rect> rects;
  bool may_wrap = false;
  for (const std::string& input : options.inputs) {
    const std::vector<Frame> frames = load(input, options.raw).frames;
    for (const Frame& frame : frames) {
      const Rect rect = asked ? *asked : default_rect(frame);
      const std::string number = frames.size() > 1 ? '#' + std::to_string(&frame - &frames[0]) : "";
      const std::string name = input + number;
      rows.push_back(row_of(name, rect, measure(name, frame, rect)));
      rects.push_back(rect);
      may_wrap |= rect.may_wrap();
    }
  }
  if (may_wrap) {
    console.say("--rect: the library's sums count modulo 2^32; above " +
                std::to_string(kSafeSamples) +
                " samples they may have wrapped, and no frame is marked");
  } else {
    mark_sharpest(rows, rects, !console.json);
  }
  if (options.csv && !console.quiet) {
    print_csv(rows);
  } else {
    console.print({{"measures", rows}});
  }
  return kDone;
}

}  // namespace zavri::tools
