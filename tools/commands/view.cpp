#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_view(const ViewOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  const Frame frame = load_frame(options.input, options.raw);
  write_file(options.output, encode(frame, options.output));
  if (options.output != "-") {
    console.print({{"output", options.output}, {"size", frame.size()}});
  }
  return kDone;
}

}  // namespace zavri::tools
