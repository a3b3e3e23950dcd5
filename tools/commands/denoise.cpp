#include "tools/denoise.h"

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_denoise(const DenoiseOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  std::vector<Frame> frames;
  for (const std::string& input : options.inputs) {
    for (Frame& frame : load(input, options.raw).frames) frames.push_back(std::move(frame));
  }
  const auto count = static_cast<int>(frames.size());
  if (count > 4) {
    throw Error(std::to_string(count) + " frames: one to four can be merged");
  }
  if (options.settings.reference >= count) {
    throw Error("--ref " + std::to_string(options.settings.reference) +
                ": below the number of frames, " + std::to_string(count));
  }
  if (count == 1 && !options.settings.smooth) {
    throw Error("IN: a single frame is only smoothed; give --smooth or more frames");
  }

  const DenoiseResult result = denoise(frames, options.settings);
  write_file(options.output, encode(result.frame, options.output));
  for (const std::string& line : remarks(result, options.settings, count)) console.say(line);
  // stdout may be the output itself.
  if (options.output != "-") {
    console.print({{"output", options.output},
                   {"size", result.frame.size()},
                   {"frames", count},
                   {"thresh", result.thresh},
                   {"threshY", result.thresh_luma},
                   {"milliseconds", decimals(1e3 * result.seconds, 2)}});
  }
  return kDone;
}

}  // namespace zavri::tools
