#include <dlfcn.h>
#include <zavricustpro.h>

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {
namespace {

std::string library_file() {
  Dl_info found{};
  const auto address = reinterpret_cast<void*>(&zavri_mp_3D_YUV_denoise);
  return dladdr(address, &found) != 0 && found.dli_fname != nullptr ? found.dli_fname : "unknown";
}

// What the library's choice of vector length goes by.
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

}  // namespace

int run_info(const InfoOptions& options, const Console& console) {
  Report report{{"version", ZAVRI_VERSION},
                {"library", library_file()},
                {"processor", processor()},
                {"pointer bits", 8 * sizeof(void*)}};
  Report files = Report::array();
  for (const std::string& input : options.inputs) {
    const Loaded loaded = load(input, options.raw);
    const Frame& first = loaded.frames.front();
    files.push_back({{"file", input},
                     {"format", loaded.format},
                     {"size", first.size()},
                     {"megapixels", decimals(first.megapixels(), 2)},
                     {"luma bytes", first.luma.size()},
                     {"chroma bytes", first.chroma.size()},
                     {"frames", loaded.frames.size()}});
  }
  if (!files.empty()) report["files"] = files;
  console.print(report);
  return kDone;
}

}  // namespace zavri::tools
