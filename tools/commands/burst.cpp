#include "tools/burst.h"

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"

namespace zavri::tools {

int run_burst(const BurstOptions& options, const Console& console) {
  parse_order(options.pixel);
  const Picture picture = load_picture(options.photograph);
  console.progress("making " + std::to_string(options.frames) + " noisy frames");
  const BurstFrames burst = make_burst(picture, options.sensor, options.seed, options.frames);
  const std::vector<NamedFrame> named = name_frames(burst, options.folder, options.pixel);
  for (const NamedFrame& frame : named) check_output(frame.path, console.force);

  make_folder(options.folder);
  Report files = Report::array();
  for (const NamedFrame& frame : named) {
    write_file(frame.path, encode(*frame.frame, frame.path));
    Report row{{"file", frame.path}};
    for (const PlaneDifference& plane : compare(*frame.frame, burst.clean)) {
      row["PSNR " + plane.plane] = decimals(plane.psnr, 2);
    }
    files.push_back(row);
  }
  console.print({{"gain", options.sensor.gain}, {"seed", options.seed}, {"frames", files}});
  return kDone;
}

}  // namespace zavri::tools
