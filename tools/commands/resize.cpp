#include "tools/resize.h"

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_resize(const ResizeOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  const auto [width, height] = parse_size(options.size, "--to");
  const ResizeSettings settings{width, height, options.scaling};
  const Frame frame = load_frame(options.input, options.raw);
  const ResizeResult result = resize(frame, settings);
  const std::string shifted = remark(frame, settings);
  if (!shifted.empty()) console.say(shifted);
  write_file(options.output, encode(result.frame, options.output));
  // stdout may be the output itself.
  if (options.output != "-") {
    console.print({{"output", options.output},
                   {"from", frame.size()},
                   {"to", result.frame.size()},
                   {"milliseconds", decimals(1e3 * result.seconds, 2)}});
  }
  return kDone;
}

}  // namespace zavri::tools
