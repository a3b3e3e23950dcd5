#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/chroma.h"
#include "tools/compose.h"
#include "tools/denoise.h"
#include "tools/noise.h"
#include "tools/radial.h"
#include "tools/raw_format.h"
#include "tools/report.h"
#include "tools/resize.h"

// The commands of the program. Each has its options, filled in by the command line, and a function
// that returns the exit status.
namespace zavri::tools {

struct BurstOptions {
  std::string photograph;
  std::string folder;
  int frames = 4;
  Sensor sensor;
  uint64_t seed = 1;
  std::string pixel = "nv12";
};
int run_burst(const BurstOptions& options, const Console& console);

struct DenoiseOptions {
  std::vector<std::string> inputs;
  std::string output;
  RawOptions raw;
  DenoiseSettings settings;
};
int run_denoise(const DenoiseOptions& options, const Console& console);

struct ChromaOptions {
  std::string input;
  std::string output;
  std::string weights;  // file
  RawOptions raw;
  ChromaSettings settings;
};
int run_chroma(const ChromaOptions& options, const Console& console);

struct ResizeOptions {
  std::string input;
  std::string output;
  RawOptions raw;
  std::string size;  // WxH of the result
  Scaling scaling = Scaling::kPoly;
};
int run_resize(const ResizeOptions& options, const Console& console);

struct RnrOptions {
  std::string input;
  std::string output;
  RawOptions raw;
  RadialSettings settings;
};
int run_rnr(const RnrOptions& options, const Console& console);

struct ComposeOptions {
  std::string a;
  std::string b;
  std::string output;
  RawOptions raw;
  ComposeSettings settings;
};
int run_compose(const ComposeOptions& options, const Console& console);

struct MeasureOptions {
  std::vector<std::string> inputs;
  RawOptions raw;
  std::optional<std::string> rect;  // x,y,width,height; the largest when empty
  bool csv = false;
};
int run_measure(const MeasureOptions& options, const Console& console);

struct ReplayOptions {
  std::vector<std::string> inputs;
  std::string output;
  RawOptions raw;
  std::vector<uint32_t> meta;      // bytes in front of the luma, and of the chroma
  std::vector<std::string> steps;  // of the chain, in order
};
int run_replay(const ReplayOptions& options, const Console& console);

struct ViewOptions {
  std::string input;
  std::string output;
  RawOptions raw;
};
int run_view(const ViewOptions& options, const Console& console);

struct CompareOptions {
  std::string a;
  std::string b;
  RawOptions raw;
  double min_psnr = 0;
  std::string difference;  // picture to write
};
int run_compare(const CompareOptions& options, const Console& console);

struct InfoOptions {
  std::vector<std::string> inputs;
  RawOptions raw;
};
int run_info(const InfoOptions& options, const Console& console);

struct DemoOptions {
  std::string photograph;  // the default one when empty
  std::string folder = "zavri-demo";
  Sensor sensor;
  uint64_t seed = 1;
  DenoiseSettings settings;
};
int run_demo(const DemoOptions& options, const Console& console);

}  // namespace zavri::tools
