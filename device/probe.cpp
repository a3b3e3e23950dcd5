#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "device/commands.h"
#include "device/probes.h"

namespace zavri::device {
namespace {

Scale bilinear_of(const Scaler& scaler) {
  return [=](const Picture& a, const Picture& b) {
    return scaler.scale(a.data(), a.width, a.height, a.stride, b.data(), b.width, b.height,
                        b.stride, kInterpolateBilinear);
  };
}

Scale poly_of(const Scaler& scaler) {
  return [=](const Picture& a, const Picture& b) {
    return scaler.scale_up_poly(a.data(), a.width, a.height, a.stride, b.data(), b.width, b.height,
                                b.stride);
  };
}

// Wraps the Gaussian as a scaler that gives a picture of the same size.
Scale gaussian_of(const Scaler& scaler) {
  return [=](const Picture& a, const Picture& b) {
    scaler.gaussian(a.data(), a.width, a.height, b.data(), 1);
    return 0;
  };
}

struct Size {
  uint32_t width, height;
};
struct Sizes {
  Size from, to;
};

constexpr uint8_t kUntouched = 93;

Picture untouched(uint32_t width, uint32_t height, uint32_t stride) {
  Picture picture(width, height, stride);
  picture.fill([](uint32_t, uint32_t) { return kUntouched; });
  return picture;
}

// Counts how two results for the same pictures differ.
struct Agreement {
  size_t samples = 0;
  size_t different = 0;
  int largest = 0;

  void compare(const Picture& a, const Picture& b) {
    for (uint32_t y = 0; y < a.height; ++y) {
      for (uint32_t x = 0; x < a.width; ++x) {
        const int difference = std::abs(a.at(x, y) - b.at(x, y));
        ++samples;
        different += difference != 0;
        largest = std::max(largest, difference);
      }
    }
  }

  std::string text() const {
    if (different == 0) return "the same";
    char text[96];
    snprintf(text, sizeof text, "%.1f %% of the samples differ, by at most %d",
             100. * static_cast<double>(different) / static_cast<double>(samples), largest);
    return text;
  }
};

// Compares what two scalers make of the same pictures. Strides are multiples of `stride_step`; 1
// leaves rows without padding.
Agreement compare(const Scale& one, const Scale& other, const std::vector<Sizes>& pictures,
                  uint32_t stride_step) {
  Agreement agreement;
  const auto stride = [=](uint32_t width) {
    return (width + stride_step - 1) / stride_step * stride_step;
  };
  for (const auto& [from, to] : pictures) {
    const Picture source(from.width, from.height, stride(from.width));
    source.fill(noise);
    const Picture a = untouched(to.width, to.height, stride(to.width));
    const Picture b = untouched(to.width, to.height, stride(to.width));
    one(source, a);
    other(source, b);
    agreement.compare(a, b);
  }
  return agreement;
}

struct Outcome {
  int status;
  bool is_written;
  bool is_copy;  // the result's samples are the source's
};

Outcome try_scale(const Scale& scale, const Sizes& sizes) {
  constexpr uint32_t kStride = 128;  // gives an empty picture a place, too
  const Picture source(sizes.from.width, sizes.from.height, kStride);
  source.fill(noise);
  const Picture target = untouched(sizes.to.width, sizes.to.height, kStride);
  const int status = scale(source, target);
  Agreement unchanged;
  unchanged.compare(target, untouched(sizes.to.width, sizes.to.height, kStride));
  Agreement copied;
  if (source.width == target.width && source.height == target.height) {
    copied.compare(source, target);
  }
  return {status, unchanged.different != 0, copied.samples != 0 && copied.different == 0};
}

// Tries the sizes in a process of its own, since nobody promises that it survives them.
std::string outcome(const Scale& scale, const Sizes& sizes) {
  constexpr unsigned kSecondsToHang = 5;
  int ends[2];
  if (pipe(ends) != 0) return "not known, no pipe";
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kSecondsToHang);
    const Outcome result = try_scale(scale, sizes);
    _exit(write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
  }
  close(ends[1]);
  Outcome result{};
  const bool is_known = child > 0 && read(ends[0], &result, sizeof result) == sizeof result;
  close(ends[0]);
  int status = 0;
  if (child > 0) waitpid(child, &status, 0);
  if (!is_known) {
    return WIFSIGNALED(status) ? "crashes with signal " + std::to_string(WTERMSIG(status))
                               : "not known, no process";
  }
  return "status " + std::to_string(result.status) +
         (result.is_copy      ? ", copied"
          : result.is_written ? ", result written"
                              : ", nothing written");
}

// Hands out each line as soon as it is known, since the next measurement may crash.
class Report {
 public:
  explicit Report(const Sink& sink) : sink_(sink) {}

  void head(const char* name) const { sink_(std::string(name) + '\n'); }

  void line(const char* name, std::string text) const {
    // Lines after the first are indented like that one.
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += kIndent) {
      text.insert(++at, std::string(kIndent, ' '));
    }
    std::string start = std::string("  ") + name;
    start.resize(kIndent, ' ');
    sink_(start + text + '\n');
  }

  // Prints whether a workstation does the same; the verdict names what it does otherwise.
  void agreement(const char* name, const Agreement& found) {
    line("portable one", found.text());
    sink_("\n");
    if (found.different != 0) others_ += (others_.empty() ? "" : ", ") + std::string(name);
  }

  void verdict() const {
    sink_("pictures of a workstation: " +
          (others_.empty() ? "those of this device" : "not those of this device: " + others_) +
          '\n');
  }

 private:
  static constexpr size_t kIndent = 18;
  const Sink& sink_;
  std::string others_;
};

void report_scale(Report& report, const char* name, const Scale& loaded, const Scale& portable) {
  // The sizes have exact and odd ratios, and enlarge either axis alone.
  static const std::vector<Sizes> enlargements = {{{64, 48}, {128, 96}},  {{64, 48}, {96, 72}},
                                                  {{100, 60}, {161, 91}}, {{320, 40}, {400, 50}},
                                                  {{64, 32}, {64, 47}},   {{40, 32}, {73, 32}}};
  report.line("mapping", scale_mapping(loaded));
  report.line("taps", scale_taps(loaded));
  report.line("equal sizes", outcome(loaded, {{64, 48}, {64, 48}}));
  report.line("source 0 wide", outcome(loaded, {{0, 16}, {32, 32}}));
  report.line("source 0 high", outcome(loaded, {{16, 0}, {32, 32}}));
  report.line("result 0 wide", outcome(loaded, {{16, 16}, {0, 32}}));
  report.line("result 0 high", outcome(loaded, {{16, 16}, {32, 0}}));
  report.agreement(name, compare(loaded, portable, enlargements, 64));
}

void report_gaussian(Report& report, const Scaler& loaded, const Scaler& portable) {
  static const std::vector<Sizes> planes = {
      {{64, 48}, {64, 48}}, {{101, 37}, {101, 37}}, {{16, 8}, {16, 8}}, {{500, 20}, {500, 20}}};
  report.line("impulse of 255", gaussian_response(loaded.gaussian));
  report.line("arithmetic", gaussian_rounding(loaded.gaussian));
  report.line("border 1", gaussian_border(loaded.gaussian, 1));
  report.line("border 0", gaussian_border(loaded.gaussian, 0));
  report.line("0 wide", outcome(gaussian_of(loaded), {{0, 16}, {0, 16}}));
  report.line("0 high", outcome(gaussian_of(loaded), {{16, 0}, {16, 0}}));
  report.agreement("radial noise reduction (fcvFilterGaussian5x5u8)",
                   compare(gaussian_of(loaded), gaussian_of(portable), planes, 1));
}

}  // namespace

void probe(const Scaler& scaler, const Sink& sink) {
  const Scaler portable = portable_scaler();
  Report report(sink);
  report.head("fcvFilterGaussian5x5u8");
  report_gaussian(report, scaler, portable);
  report.head("fcvScaleu8, interpolation 1 (bilinear)");
  report_scale(report, "bilinear resize (fcvScaleu8)", bilinear_of(scaler), bilinear_of(portable));
  report.head("fcvScaleUpPolyu8");
  report_scale(report, "poly resize (fcvScaleUpPolyu8)", poly_of(scaler), poly_of(portable));
  report.verdict();
}

int probe() {
  probe(loaded_scaler(), [](const std::string& line) {
    fputs(line.c_str(), stdout);
    fflush(stdout);
  });
  return 0;
}

}  // namespace zavri::device
