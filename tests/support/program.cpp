#include "tests/support/program.h"

#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <random>

#include "tools/error.h"
#include "tools/images/files.h"

namespace zavri::tools {

namespace fs = std::filesystem;

Outcome Zavri::run_command(const std::string& command) {
  const char* const out = command.find('>') == std::string::npos ? " >stdout.txt" : "";
  const int status =
      system(("cd '" + folder_.string() + "' && " + command + out + " 2>stderr.txt").c_str());
  return {WEXITSTATUS(status), text_of("stdout.txt"), text_of("stderr.txt")};
}

void Zavri::make_burst_files(int width, int height) {
  save(gradient(width, height), path("photo.png"));
  const Outcome outcome = run("burst photo.png -o .");
  ASSERT_EQ(outcome.status, kDone) << outcome.err;
}

std::vector<std::string> Zavri::files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
    const std::string name = fs::relative(entry.path(), folder_);
    if (entry.is_regular_file() && name != "stdout.txt" && name != "stderr.txt") {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string Zavri::text_of(const std::string& name) const {
  std::ifstream in(path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void expect_plain(const nlohmann::json& report) {
  EXPECT_FALSE(report.is_null());
  if (!report.is_structured()) return;
  for (const auto& item : report.items()) {
    if (report.is_object()) {
      EXPECT_EQ(item.key().find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), std::string::npos)
          << item.key();
    }
    expect_plain(item.value());
  }
}

Frame random_frame(int width, int height, unsigned seed) {
  std::mt19937 random(seed);
  Frame frame(width, height);
  for (uint8_t& byte : frame.buffer()) byte = static_cast<uint8_t>(random());
  return frame;
}

Picture gradient(int width, int height) {
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* const rgb = &picture.rgb[3 * (static_cast<size_t>(y) * width + x)];
      rgb[0] = static_cast<uint8_t>(40 + 180 * x / width);
      rgb[1] = static_cast<uint8_t>(60 + 150 * y / height);
      rgb[2] = static_cast<uint8_t>(90 + 60 * (x + y) / (width + height));
    }
  }
  return picture;
}

}  // namespace zavri::tools
