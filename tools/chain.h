#pragma once

#include <string>
#include <vector>

#include "tools/frame.h"

// The library's operations as steps of a chain: each takes the frames that the one before it left.
namespace zavri::tools {

using Frames = std::vector<Frame>;

// What a step made, of all frames together.
struct StepResult {
  Frames frames;
  double seconds = 0;  // in the library
  std::vector<std::string> remarks;
};

using RunStep = StepResult (*)(const Frames& frames, const std::vector<std::string>& arguments);

struct Step {
  std::string text;  // as it was given
  RunStep run;
  std::vector<std::string> arguments;
  bool joins;  // all frames into one
};

// Throws an Error that names the step.
StepResult run_step(const Step& step, const Frames& frames);

// "NAME" or "NAME:ARGUMENT,ARGUMENT". Throws an Error that says which steps there are.
Step parse_step(const std::string& text);

// All steps with their arguments, for people.
std::string step_names();

}  // namespace zavri::tools
