#include "tools/chroma.h"

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_chroma(const ChromaOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  ChromaSettings settings = options.settings;
  if (settings.legacy && settings.taps != 11) {
    throw Error("--taps " + std::to_string(settings.taps) + ": --legacy has 11");
  }
  if (!options.weights.empty()) settings.weights = read_weights(options.weights);
  const Frame frame = load_frame(options.input, options.raw);
  const ChromaResult result = denoise_chroma(frame, settings);
  write_file(options.output, encode(result.frame, options.output));
  if (settings.parallel) {
    console.say("--parallel: the rows where strips meet depend on timing");
  }
  // stdout may be the output itself.
  if (options.output != "-") {
    console.print({{"output", options.output},
                   {"size", frame.size()},
                   {"window", settings.legacy ? "11 taps, fixed tolerance"
                                              : std::to_string(settings.taps) + " taps"},
                   {"strips", settings.parallel ? "at once" : "in order"},
                   {"milliseconds", decimals(1e3 * result.seconds, 2)}});
  }
  return kDone;
}

}  // namespace zavri::tools
