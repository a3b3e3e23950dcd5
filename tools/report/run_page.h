#pragma once

#include "tools/images/mask.h"
#include "tools/operations/denoise.h"
#include "tools/report/page.h"

namespace zavri::tools {

// A denoise of a burst, and the truth where it is known.
struct DenoiseRun {
  const Frames& frames;
  const Denoise& denoise;
  const Result& result;
  const Frame* clean = nullptr;
  const Mask* moving = nullptr;
};

// Everything but the command, the program and the log lines. Without a clean frame the numbers come
// from leaving frames out, of which there must be three; if not, a remark says so.
ReportPage page_of(const DenoiseRun& run);

}  // namespace zavri::tools
