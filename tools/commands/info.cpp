#include <dlfcn.h>
#include <zavricustpro.h>

#include "tools/command_line.h"
#include "tools/error.h"

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

class Info : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override { input_.declare(options, "frames", false); }

  int run(Console& console) override {
    Report report{{"version", ZAVRI_VERSION},
                  {"library", library_file()},
                  {"processor", processor()},
                  {"pointer_bits", 8 * sizeof(void*)}};
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
  Input input_;
};

Info g_info("info", "the library, this processor, and what files hold",
            "info frame0_4000x3000.nv12");

}  // namespace
}  // namespace zavri::tools
