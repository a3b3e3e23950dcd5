#include <dlfcn.h>
#include <zavricustpro.h>

#include <algorithm>

#include "tools/command_line.h"
#include "tools/error.h"
#include "tools/tuning/used_thresholds.h"

namespace zavri::tools {
namespace {

std::string library_file() {
  Dl_info found{};
  const auto address = reinterpret_cast<void*>(&zavri_mp_3D_YUV_denoise);
  return dladdr(address, &found) != 0 && found.dli_fname != nullptr ? found.dli_fname : "unknown";
}

// The library chooses its vector length by this.
const char* processor() {
#if defined(__x86_64__)
  return __builtin_cpu_supports("avx2") ? "x86-64 with AVX2" : "x86-64 without AVX2";
#elif defined(__aarch64__)
  return "AArch64";
#elif defined(__arm__)
  return "ARMv7 with NEON";
#else
  return "other";
#endif
}

class Info : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;

  int run(Console& console) override {
    if (thresholds_) return print_thresholds(console);
    if (!curves_.curve.empty() || !curves_.curve_luma.empty() || !gains_.empty()) {
      throw Error("--thresholds: is needed for --gain and for tables of thresholds");
    }
    Report report{{"version", ZAVRI_VERSION},
                  {"library", library_file()},
                  {"processor", processor()},
                  {"pointer_bits", 8 * sizeof(void*)}};
    const std::string raw_option = input_.options.raw.first_given();
    if (input_.paths.empty() && !raw_option.empty()) {
      throw Error(raw_option + ": goes with raw frames, or --size with --thresholds");
    }
    Report files = Report::array();
    const std::vector<Loaded> all = load_all(input_.paths, input_.options);
    for (size_t k = 0; k < all.size(); ++k) {
      const Frame& first = all[k].frames.front();
      files.push_back({{"file", input_.paths[k]},
                       {"format", all[k].format},
                       {"size", first.size()},
                       {"megapixels", decimals(first.megapixels(), 2)},
                       {"stride", first.layout().stride},
                       {"bytes", first.layout().bytes},
                       {"frames", all[k].total_frames}});
    }
    if (!files.empty()) report["files"] = files;
    console.print(report);
    return kDone;
  }

 private:
  int print_thresholds(Console& console) const;
  std::vector<Size> threshold_sizes() const;

  Input input_;
  bool thresholds_ = false;
  Denoise curves_;
  std::vector<int> gains_;
};

// Of phones' frames, where neither a size nor a file is given.
constexpr Size kCommonSizes[] = {{1920, 1080}, {2592, 1944}, {3264, 2448},
                                 {4000, 3000}, {5312, 2988}, {5344, 4016}};

void Info::declare(Options& options) {
  input_.declare(options, "frames", false);
  const auto parse_gains = [this](const std::string& text) {
    const std::vector<std::string> parts = split(text, ':');
    const std::optional<int64_t> first = parse_whole(parts.front(), 0, UINT8_MAX);
    const std::optional<int64_t> last = parse_whole(parts.back(), 0, UINT8_MAX);
    if (parts.size() > 2 || !first || !last || *first > *last) return false;
    gains_ = {static_cast<int>(*first), static_cast<int>(*last)};
    return true;
  };
  options.add(
      {flag("thresholds", thresholds_,
            "the thresholds that the multi-frame denoise uses by gain, for frames of "
            "--size, of the files, or of common sizes, and which requests become one"),
       {"gain", "A or A:B, within 0..255", "of --thresholds", parse_gains, [] { return ""; }}});
  for (const Setting& setting : curves_.settings()) {
    if (setting.name == "thresh-table" || setting.name == "thresh-luma-table") options.add(setting);
  }
}

std::vector<Size> Info::threshold_sizes() const {
  if (input_.paths.empty()) {
    const std::string& size = input_.options.raw.size;
    if (size.empty()) return {std::begin(kCommonSizes), std::end(kCommonSizes)};
    const auto [width, height] = parse_size(size, "--size");
    return {{width, height}};
  }
  std::vector<Size> sizes;
  for (const Loaded& file : load_all(input_.paths, input_.options)) {
    const Size size = size_of(file.frames.front());
    if (std::find(sizes.begin(), sizes.end(), size) == sizes.end()) sizes.push_back(size);
  }
  return sizes;
}

int Info::print_thresholds(Console& console) const {
  constexpr int kMostCommonGain = 40;
  const auto told = [&](const Curve& curve) {
    if (curve.empty()) return Report("built-in");
    return console.json ? json_of(curve) : Report(text_of(curve));
  };
  const int first = gains_.empty() ? 0 : gains_.front();
  const int last = gains_.empty() ? kMostCommonGain : gains_.back();
  Report report{{"chroma_curve", told(curves_.curve)}, {"luma_curve", told(curves_.curve_luma)}};
  report.update(used_thresholds(curves_, threshold_sizes(), first, last));
  console.print(report);
  return kDone;
}

Info g_info("info", "the library, this processor, and what files hold",
            "info frame0_4000x3000.nv12");

}  // namespace
}  // namespace zavri::tools
