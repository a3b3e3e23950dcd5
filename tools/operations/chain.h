#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/operations/operation.h"

// Steps are the library's operations by their names, run one after the other.
namespace zavri::tools {

// A step is an operation with the settings of its text, "NAME" or "NAME:VALUE,VALUE,setting=VALUE":
// values without a name come first and belong to the settings in the order of the operation's
// table.
struct Step {
  std::string text;
  std::unique_ptr<Operation> operation;
};

// Throws an Error that begins with "--then" and the text.
Step parse_step(const std::string& text);

// Tells people what all steps are called and take.
std::string step_usages();

// Throws an Error unless every step can run on what the one before it leaves of so many frames of
// this size. Returns how many frames are left at the end.
int check_steps(const std::vector<Step>& steps, Size size, int frames);

// Holds what a step made of frames: one if it joins them, otherwise one of each.
struct StepResult {
  Frames frames;
  double seconds = 0;  // in the library, of all frames
  std::vector<std::string> remarks;
};
StepResult run_step(const Step& step, const Frames& frames);

}  // namespace zavri::tools
