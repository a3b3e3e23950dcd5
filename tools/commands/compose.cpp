#include "tools/compose.h"

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_compose(const ComposeOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  const Frame a = load_frame(options.a, options.raw);
  const Frame b = load_frame(options.b, options.raw);
  const Composed composed = compose(a, b, options.settings);
  write_file(options.output, encode(composed.frame, options.output));
  const std::string inexact = remark(a, options.settings);
  if (!inexact.empty()) console.say(inexact);
  // stdout may be the output itself.
  if (options.output != "-") {
    console.print({{"output", options.output},
                   {"size", composed.frame.size()},
                   {"padding", options.settings.padding},
                   {"milliseconds", decimals(1e3 * composed.seconds, 2)}});
  }
  return kDone;
}

}  // namespace zavri::tools
