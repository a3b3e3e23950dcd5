// The program `zavri`: the library's operations on files, for people who tune and check them.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

#include "tools/chain.h"
#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/log_lines.h"

namespace zavri::tools {
namespace {

// Command line of one command: its options are bound to the struct that its function takes.
class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(1);
    app_.set_version_flag("--version", ZAVRI_VERSION);
    app_.failure_message(CLI::FailureMessage::simple);
  }

  template <class Options>
  CLI::App* add(const char* name, const char* what, const char* example, Options& options,
                int (*run)(const Options&, const Console&)) {
    CLI::App* const command = app_.add_subcommand(name, what);
    command->footer(std::string("Example: zavri ") + example);
    command->add_flag("--json", console_.json, "print results as JSON");
    command->add_flag("--quiet", console_.quiet, "print errors only");
    command->add_flag("--verbose", console_.verbose, "show the library's log lines");
    command->add_flag("--force", console_.force, "overwrite existing files");
    command->callback([this, &options, run] {
      show_log_lines(console_.verbose);
      run_ = [this, &options, run] { return run(options, console_); };
    });
    return command;
  }

  int parse_and_run(int argc, char** argv) {
    check_command(argc, argv);
    try {
      app_.parse(argc, argv);
    } catch (const CLI::Success& help) {
      return app_.exit(help);
    } catch (const CLI::ParseError& error) {
      std::fprintf(stderr, "zavri: %s\n", error.what());
      return kBadInput;
    }
    return run_();
  }

 private:
  // The parser would only say that a command is required.
  void check_command(int argc, char** argv) {
    const std::string first = argc > 1 ? argv[1] : "";
    std::string names;
    for (const CLI::App* command : app_.get_subcommands(nullptr)) {
      if (command->get_name() == first) return;
      names += (names.empty() ? "" : ", ") + command->get_name();
    }
    if (first.empty()) throw Error("a command is needed: " + names);
    if (first[0] != '-') throw Error(first + ": no such command; there are " + names);
  }

  CLI::App app_{
      "Camera post-processing on files: noisy bursts, the library's operations, comparison.",
      "zavri"};
  Console console_;
  std::function<int()> run_;
};

void add_raw_options(CLI::App* command, RawOptions& raw) {
  command->add_option("--size", raw.size, "WxH of raw input, unless its name carries it");
  command->add_option("--pix", raw.pixel, "nv12 or nv21, unless the extension says it");
  command->add_option("--stride", raw.stride, "bytes from row to row of raw input")
      ->check(CLI::Range(2, 1 << 20));
  command->add_option("--scanlines", raw.scanlines, "luma rows of raw input, with padding")
      ->check(CLI::Range(2, 1 << 20));
}

// After CLI::Range, which lets NaN pass: no comparison holds for it.
std::string refuse_nan(const std::string& text) {
  return std::isnan(std::strtod(text.c_str(), nullptr)) ? "Value " + text + " is not a number" : "";
}

void add_sensor_options(CLI::App* command, Sensor& sensor, uint64_t& seed) {
  command->add_option("--sensor-gain", sensor.gain, "of the simulated sensor, ISO over 100")
      ->check(CLI::Range(0.1, 1000.0))
      ->check(refuse_nan)
      ->capture_default_str();
  command->add_option("--seed", seed, "of the noise")->capture_default_str();
}

// A threshold: 1..100, or `auto` for the library's curve over the gain.
void add_threshold(CLI::App* command, const char* name, int& value, const char* what) {
  command
      ->add_option_function<std::string>(
          name,
          [name, &value](const std::string& text) {
            if (text != "auto" && !CLI::Range(1, 100)(text).empty()) {
              throw CLI::ValidationError(std::string(name) + ' ' + text,
                                         "a threshold is 1..100 or auto");
            }
            value = text == "auto" ? 0 : std::stoi(text);
          },
          what)
      ->type_name("N|auto");
}

// An option whose values have names.
template <class Value>
void add_choice(CLI::App* command, const char* name,
                const std::vector<std::pair<const char*, Value>>& choices, Value& value,
                const char* what) {
  std::string names;
  for (const auto& choice : choices)
    names += (names.empty() ? "" : ", ") + std::string(choice.first);
  command
      ->add_option_function<std::string>(
          name,
          [=, &value](const std::string& text) {
            for (const auto& choice : choices) {
              if (text == choice.first) {
                value = choice.second;
                return;
              }
            }
            throw CLI::ValidationError(std::string(name) + ' ' + text, "there are " + names);
          },
          what + (": " + names))
      ->type_name("NAME");
}

void add_denoise_settings(CLI::App* command, DenoiseSettings& settings) {
  add_choice<Merge>(command, "--mode",
                    {{"whole", Merge::kWhole},
                     {"edges", Merge::kEdges},
                     {"edges-luma", Merge::kEdgesLuma},
                     {"chroma", Merge::kChroma}},
                    settings.merge, "what is merged, the edges only for a gain below 16");
  add_threshold(command, "--thresh", settings.thresh, "of chroma, scaled by the frame's size");
  add_threshold(command, "--thresh-luma", settings.thresh_luma, "of luma, scaled likewise");
  command->add_option("--gain", settings.gain, "sensor gain of the record")
      ->check(CLI::Range(0, 255))
      ->capture_default_str();
  command->add_option("--ref", settings.reference, "index of the frame that is denoised")
      ->check(CLI::Range(0, 3))
      ->capture_default_str();
}

void add_radial_settings(CLI::App* command, RadialSettings& settings) {
  command->add_option("--radius", settings.radius, "where the blur is full, % of a corner's")
      ->check(CLI::Range(1, 400))
      ->capture_default_str();
  command->add_option("--strength", settings.strength, "of the blur there, %")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
}

void add_compose_settings(CLI::App* command, ComposeSettings& settings) {
  add_choice<Pad>(command, "--pad",
                  {{"left", Pad::kLeft},
                   {"right", Pad::kRight},
                   {"center", Pad::kCenter},
                   {"both", Pad::kBoth}},
                  settings.pad, "where the padding stands, center unless given");
  command->add_option("--padding", settings.padding, "columns of padding, both bands together")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
}

void add_chroma_settings(CLI::App* command, ChromaOptions& options) {
  ChromaSettings& settings = options.settings;
  command->add_option("--taps", settings.taps, "samples of the window: 7, 11, 15 or 19")
      ->capture_default_str();
  CLI::Option* const threshold =
      command->add_option("--threshold", settings.threshold, "differences below this one count")
          ->check(CLI::Range(1, 127))
          ->capture_default_str();
  CLI::Option* const weights = command->add_option(
      "--weights", options.weights, "file with the weights of the differences 0, 1, 2 ..");
  CLI::Option* const falloff =
      command
          ->add_option("--falloff", settings.falloff,
                       "sigma of weights that fall as a Gaussian; half the threshold unless given")
          ->check(CLI::Range(0.1, 1000.0))
          ->check(refuse_nan)
          ->excludes(weights);
  command->add_flag("--legacy", settings.legacy, "the older filter with its fixed tolerance")
      ->excludes(threshold)
      ->excludes(weights)
      ->excludes(falloff);
  command->add_flag("--parallel", settings.parallel, "all strips at once, on the library's pool");
}

int run_program(int argc, char** argv) {
  CommandLine line;

  BurstOptions burst;
  burst.sensor.gain = 32;
  CLI::App* command = line.add("burst", "make noisy frames of a photograph",
                               "burst photo.jpg --sensor-gain 32 -o frames", burst, run_burst);
  command->add_option("PHOTO", burst.photograph, "PNG, JPEG or PPM")->required();
  command->add_option("-o", burst.folder, "folder of the frames")->required();
  command->add_option("--frames", burst.frames, "how many")
      ->check(CLI::Range(1, 4))
      ->capture_default_str();
  command->add_option("--pix", burst.pixel, "nv12 or nv21")->capture_default_str();
  add_sensor_options(command, burst.sensor, burst.seed);

  DenoiseOptions denoise;
  command = line.add("denoise", "merge one to four frames of a scene",
                     "denoise frames/frame?_4000x3000.nv12 --thresh 20 --thresh-luma 20 -o out.png",
                     denoise, run_denoise);
  command->add_option("IN", denoise.inputs, "frames; the first is denoised unless --ref says so")
      ->required();
  command->add_option("-o", denoise.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  command->add_flag("--smooth", denoise.settings.smooth, "smooth the chroma afterwards");
  add_denoise_settings(command, denoise.settings);
  add_raw_options(command, denoise.raw);

  ResizeOptions resize;
  command = line.add("resize", "enlarge a frame",
                     "resize frame_1920x1080.nv12 --to 3840x2160 -o out.png", resize, run_resize);
  command->add_option("IN", resize.input, "frame")->required();
  command->add_option("-o", resize.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  command->add_option("--to", resize.size, "WxH of the result, not below the input's")->required();
  add_choice<Scaling>(command, "--mode",
                      {{"poly", Scaling::kPoly}, {"bilinear", Scaling::kBilinear}}, resize.scaling,
                      "the scaler, poly unless given");
  add_raw_options(command, resize.raw);

  RnrOptions rnr;
  command = line.add("rnr", "blur the luma the more, the farther from the centre",
                     "rnr frame_4000x3000.nv12 --radius 90 --strength 70 -o out.png", rnr, run_rnr);
  command->add_option("IN", rnr.input, "frame")->required();
  command->add_option("-o", rnr.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  add_radial_settings(command, rnr.settings);
  add_raw_options(command, rnr.raw);

  ComposeOptions compose;
  command =
      line.add("compose", "two frames side by side at half their size",
               "compose a.png b.png --pad center --padding 32 -o both.png", compose, run_compose);
  command->add_option("A", compose.a, "frame on the left")->required();
  command->add_option("B", compose.b, "frame of the same size")->required();
  command->add_option("-o", compose.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  add_compose_settings(command, compose.settings);
  add_raw_options(command, compose.raw);

  ChromaOptions chroma;
  command = line.add("chroma", "denoise the chroma of one frame",
                     "chroma frame_4000x3000.nv12 --taps 19 --threshold 20 -o out.png", chroma,
                     run_chroma);
  command->add_option("IN", chroma.input, "frame")->required();
  command->add_option("-o", chroma.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  add_chroma_settings(command, chroma);
  add_raw_options(command, chroma.raw);

  MeasureOptions measure;
  command =
      line.add("measure", "focus value, derivation, average and brightness of the luma",
               "measure sweep/*_4000x3000.nv12 --rect 1600,1200,800,600", measure, run_measure);
  command->add_option("IN", measure.inputs, "frames; of several the sharpest is marked")
      ->required();
  command->add_option("--rect", measure.rect,
                      "x,y,width,height; without it all but the last column and row, which is the "
                      "largest there is, or of frames above 8 megapixels its middle");
  command->add_flag("--csv", measure.csv, "print results as comma-separated values")
      ->excludes("--json");
  add_raw_options(command, measure.raw);

  ReplayOptions replay;
  command = line.add(
      "replay", "load dumps through the library and run operations on them, one after the other",
      "replay zvcfixedyuvprefix_4000x3000_?_suffix.yuv --then denoise:20,30 --then chroma:19 "
      "-o out.png",
      replay, run_replay);
  command
      ->add_option("IN", replay.inputs,
                   "dumps in any folder: the program shows each to the library where that expects "
                   "it, in /data/misc/camera, and only for reading. A file 0.yuv is a fixed dump")
      ->required();
  command->add_option("-o", replay.output, "result, by its extension; - for Y4M on stdout")
      ->required();
  command->add_option("--then", replay.steps, "next step, one of " + step_names())
      ->type_name("STEP")
      ->allow_extra_args(false);
  command->add_option("--meta", replay.meta, "bytes in front of luma and chroma, such as 64,0")
      ->delimiter(',')
      ->allow_extra_args(false);
  add_raw_options(command, replay.raw);

  ViewOptions view;
  command = line.add("view", "turn a frame into a picture, or one format into another",
                     "view dump_4000x3000.nv21 -o dump.png", view, run_view);
  command->add_option("IN", view.input, "frame")->required();
  command->add_option("-o", view.output, "result, by its extension")->required();
  add_raw_options(command, view.raw);

  CompareOptions compare;
  command = line.add("compare", "PSNR and SSIM (over 8x8 windows) of two frames, plane by plane",
                     "compare clean.png out.png --min-psnr 30", compare, run_compare);
  command->add_option("A", compare.a, "frame")->required();
  command->add_option("B", compare.b, "frame of the same size")->required();
  command->add_option("--min-psnr", compare.min_psnr, "exit status 1 where a plane is below (dB)");
  command->add_option("--diff", compare.difference, "picture of the differences, eightfold");
  add_raw_options(command, compare.raw);

  InfoOptions info;
  command = line.add("info", "the library, this processor, and what files hold",
                     "info frame0_4000x3000.nv12", info, run_info);
  command->add_option("FILE", info.inputs, "frames");
  add_raw_options(command, info.raw);

  DemoOptions demo;
  demo.sensor.gain = 32;
  demo.settings.thresh = 28;
  demo.settings.thresh_luma = 40;
  command = line.add("demo", "a noisy burst of a photograph made clean", "demo photo.jpg -o out",
                     demo, run_demo);
  command->add_option("PHOTO", demo.photograph, "photograph; without one, a packaged one");
  command->add_option("-o", demo.folder, "folder of the results")->capture_default_str();
  command->add_flag("--smooth", demo.settings.smooth, "smooth the chroma afterwards");
  add_denoise_settings(command, demo.settings);
  add_sensor_options(command, demo.sensor, demo.seed);

  return line.parse_and_run(argc, argv);
}

}  // namespace
}  // namespace zavri::tools

int main(int argc, char** argv) {
  try {
    return zavri::tools::run_program(argc, argv);
  } catch (const zavri::tools::Error& error) {
    std::fprintf(stderr, "zavri: %s\n", error.what());
    return error.status;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zavri: %s\n", error.what());
    return zavri::tools::kBadInput;
  }
}
