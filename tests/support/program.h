#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tools/images/frame.h"

namespace zavri::tools {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// The program, run in a folder of its own.
class Zavri : public TestFolder {
 protected:
  // `arguments` may lead stdout elsewhere.
  Outcome run(const std::string& arguments) { return run_command(ZAVRI_COMMAND " " + arguments); }
  Outcome run_command(const std::string& command);

  // photo.png and, made of it, clean and frame0 to frame3.
  void make_burst_files(int width, int height);

  // Everything in the folder but the two streams.
  std::vector<std::string> files() const;
  std::string text_of(const std::string& name) const;
};

// Fails unless keys are lower-case words and there is no null.
void expect_plain(const nlohmann::json& report);

Frame random_frame(int width, int height, unsigned seed);

// A smooth scene, as a photograph is.
Picture gradient(int width, int height);

}  // namespace zavri::tools
