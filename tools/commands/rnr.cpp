#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/radial.h"

namespace zavri::tools {

int run_rnr(const RnrOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  const Frame frame = load_frame(options.input, options.raw);
  const RadialResult result = reduce_radially(frame, options.settings);
  write_file(options.output, encode(result.frame, options.output));
  // stdout may be the output itself.
  if (options.output != "-") {
    console.print({{"output", options.output},
                   {"size", frame.size()},
                   {"radius", options.settings.radius},
                   {"strength", options.settings.strength},
                   {"milliseconds of the tables", decimals(1e3 * result.tables_seconds, 2)},
                   {"milliseconds", decimals(1e3 * result.seconds, 2)}});
  }
  return kDone;
}

}  // namespace zavri::tools
