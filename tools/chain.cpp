#include "tools/chain.h"

#include <algorithm>
#include <cstdio>

#include "tools/chroma.h"
#include "tools/compose.h"
#include "tools/denoise.h"
#include "tools/error.h"
#include "tools/radial.h"
#include "tools/raw_format.h"
#include "tools/resize.h"

namespace zavri::tools {
namespace {

using Arguments = std::vector<std::string>;

// Argument `index`, or `value` where it is not given or `auto`.
int number(const Arguments& arguments, size_t index, int low, int high, int value) {
  if (index >= arguments.size() || arguments[index].empty() || arguments[index] == "auto") {
    return value;
  }
  const std::string& text = arguments[index];
  int used = 0;
  if (sscanf(text.c_str(), "%6d%n", &value, &used) != 1 ||
      static_cast<size_t>(used) != text.size() || value < low || value > high) {
    throw Error("'" + text + "' is no number from " + std::to_string(low) + " to " +
                std::to_string(high));
  }
  return value;
}

StepResult merge(const Frames& frames, const Arguments& arguments) {
  const auto count = static_cast<int>(frames.size());
  if (count < 2 || count > 4) {
    throw Error("two to four frames are merged, here are " + std::to_string(count));
  }
  DenoiseSettings settings;
  settings.thresh = number(arguments, 0, 1, 100, 0);
  settings.thresh_luma = number(arguments, 1, 1, 100, 0);
  DenoiseResult result = denoise(frames, settings);
  const std::vector<std::string> told = remarks(result, settings, count);
  return {{std::move(result.frame)}, result.seconds, told};
}

// A remark as a list, which is empty without it.
std::vector<std::string> told_of(const std::string& remark) {
  return remark.empty() ? std::vector<std::string>() : std::vector<std::string>{remark};
}

// Runs operation(frame) -> {frame, seconds, ..} on every frame.
template <class Operation>
StepResult each(const Frames& frames, Operation operation) {
  StepResult step;
  for (const Frame& frame : frames) {
    auto result = operation(frame);
    step.frames.push_back(std::move(result.frame));
    step.seconds += result.seconds;
  }
  return step;
}

StepResult smooth(const Frames& frames, const Arguments& arguments) {
  DenoiseSettings settings;
  settings.thresh = number(arguments, 0, 1, 100, 0);
  settings.smooth = true;
  std::vector<std::string> told;
  StepResult step = each(frames, [&](const Frame& frame) {
    DenoiseResult result = denoise({frame}, settings);
    told = remarks(result, settings, 1);
    return result;
  });
  step.remarks = told;
  return step;
}

StepResult filter_chroma(const Frames& frames, const Arguments& arguments) {
  ChromaSettings settings;
  settings.taps = number(arguments, 0, 7, 19, settings.taps);
  settings.threshold = number(arguments, 1, 1, 127, settings.threshold);
  return each(frames, [&](const Frame& frame) { return denoise_chroma(frame, settings); });
}

StepResult blur_radially(const Frames& frames, const Arguments& arguments) {
  RadialSettings settings;
  settings.radius = number(arguments, 0, 1, 400, settings.radius);
  settings.strength = number(arguments, 1, 0, 100, settings.strength);
  return each(frames, [&](const Frame& frame) { return reduce_radially(frame, settings); });
}

StepResult enlarge(const Frames& frames, const Arguments& arguments) {
  if (arguments.empty()) throw Error("a size is needed, such as resize:3840x2160");
  const auto [width, height] = parse_size(arguments[0], "size");
  const ResizeSettings settings{width, height};
  StepResult step = each(frames, [&](const Frame& frame) { return resize(frame, settings); });
  step.remarks = told_of(remark(frames.front(), settings));
  return step;
}

StepResult put_side_by_side(const Frames& frames, const Arguments& arguments) {
  if (frames.size() != 2) {
    throw Error("two frames are composed, here are " + std::to_string(frames.size()));
  }
  ComposeSettings settings;
  settings.padding = number(arguments, 0, 0, 65535, settings.padding);
  Composed composed = compose(frames[0], frames[1], settings);
  return {{std::move(composed.frame)}, composed.seconds, told_of(remark(frames[0], settings))};
}

struct Operation {
  const char* name;
  const char* usage;
  size_t most_arguments;
  RunStep run;
  bool joins;  // all frames into one
};

constexpr Operation kOperations[] = {
    {"denoise", "denoise[:THRESH[,THRESH_LUMA]]", 2, merge, true},
    {"smooth", "smooth[:THRESH]", 1, smooth, false},
    {"chroma", "chroma[:TAPS[,THRESHOLD]]", 2, filter_chroma, false},
    {"rnr", "rnr[:RADIUS[,STRENGTH]]", 2, blur_radially, false},
    {"resize", "resize:WxH", 1, enlarge, false},
    {"compose", "compose[:PADDING]", 1, put_side_by_side, true},
};

Arguments split(const std::string& text) {
  Arguments parts;
  size_t begin = 0;
  for (size_t end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(',', begin);
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

}  // namespace

StepResult run_step(const Step& step, const Frames& frames) try {
  return step.run(frames, step.arguments);
} catch (const Error& error) {
  throw Error("--then " + step.text + ": " + error.what(), error.status);
}

Step parse_step(const std::string& text) {
  const size_t colon = text.find(':');
  const std::string name = text.substr(0, colon);
  const auto* const found = std::find_if(std::begin(kOperations), std::end(kOperations),
                                         [&](const Operation& o) { return o.name == name; });
  if (found == std::end(kOperations)) {
    throw Error("--then " + text + ": the steps are " + step_names());
  }
  Arguments arguments;
  if (colon != std::string::npos) arguments = split(text.substr(colon + 1));
  if (arguments.size() > found->most_arguments) {
    throw Error("--then " + text + ": too much for " + found->usage);
  }
  return {text, found->run, std::move(arguments), found->joins};
}

std::string step_names() {
  std::string names;
  for (const Operation& operation : kOperations) {
    names += (names.empty() ? "" : ", ") + std::string(operation.usage);
  }
  return names;
}

}  // namespace zavri::tools
