#include "tools/operations/chain.h"

#include <algorithm>
#include <cctype>

#include "tools/error.h"
#include "tools/operations/chroma.h"
#include "tools/operations/compose.h"
#include "tools/operations/denoise.h"
#include "tools/operations/resize.h"
#include "tools/operations/rnr.h"

namespace zavri::tools {
namespace {

struct Entry {
  const char* name;
  std::unique_ptr<Operation> (*make)();
};

template <class AnyOperation>
constexpr Entry entry() {
  return {AnyOperation::kName,
          [] { return std::unique_ptr<Operation>(std::make_unique<AnyOperation>()); }};
}

constexpr Entry kOperations[] = {entry<Denoise>(), entry<Smooth>(), entry<Chroma>(),
                                 entry<Rnr>(),     entry<Resize>(), entry<Compose>()};

// Tells what a step may say, such as "rnr[:RADIUS,STRENGTH]".
std::string usage_of(const Entry& entry) {
  std::vector<std::string> names;
  for (const Setting& setting : entry.make()->settings()) {
    std::string name = setting.name;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(toupper(c)); });
    names.push_back(name);
  }
  std::string usage = entry.name + std::string("[:");
  for (const std::string& name : names) {
    usage += name;
    usage += &name == &names.back() ? ']' : ',';
  }
  return usage;
}

// Names the step in front of the text; in a step settings have no dashes.
Error error_of_step(const std::string& text, const Error& error) {
  const std::string what = error.what();
  return Error("--then " + text + ": " + what.substr(what.rfind("--", 0) == 0 ? 2 : 0),
               error.status);
}

const Setting& setting_named(const Settings& settings, const std::string& name,
                             const std::string& usage) {
  const auto found = std::find_if(settings.begin(), settings.end(),
                                  [&](const Setting& setting) { return setting.name == name; });
  if (found == settings.end()) throw Error(name + ": no setting of " + usage);
  return *found;
}

// A part without a name goes on with the list that the named one before it began:
// "20,thresh-luma-table=10:0,11:6" is 20 and the table.
void set_values(Operation& operation, const std::vector<std::string>& parts,
                const std::string& usage) {
  const Settings settings = operation.settings();
  const Setting* named = nullptr;
  std::string value;
  for (size_t i = 0; i < parts.size(); ++i) {
    const size_t equals = parts[i].find('=');
    if (equals != std::string::npos) {
      if (named != nullptr) named->set(value);
      named = &setting_named(settings, parts[i].substr(0, equals), usage);
      value = parts[i].substr(equals + 1);
    } else if (named != nullptr) {
      value += ',' + parts[i];
    } else {
      if (i >= settings.size()) throw Error("too much for " + usage);
      if (!parts[i].empty()) settings[i].set(parts[i]);
    }
  }
  if (named != nullptr) named->set(value);
}

// Tells whether an operation makes one frame of several, as opposed to one of each.
bool joins(const Operation& operation) { return operation.takes().most > 1; }

}  // namespace

Step parse_step(const std::string& text) {
  const size_t colon = text.find(':');
  const std::string name = text.substr(0, colon);
  const auto* const entry = std::find_if(std::begin(kOperations), std::end(kOperations),
                                         [&](const Entry& e) { return e.name == name; });
  if (entry == std::end(kOperations)) {
    throw Error("--then " + text + ": the steps are " + step_usages());
  }
  Step step{text, entry->make()};
  if (colon == std::string::npos) return step;
  try {
    set_values(*step.operation, split(text.substr(colon + 1), ','), usage_of(*entry));
  } catch (const Error& error) {
    throw error_of_step(text, error);
  }
  return step;
}

std::string step_usages() {
  std::vector<std::string> usages;
  for (const Entry& entry : kOperations) usages.push_back(usage_of(entry));
  return joined(usages);
}

int check_steps(const std::vector<Step>& steps, Size size, int frames) {
  for (const Step& step : steps) {
    try {
      step.operation->check(size, joins(*step.operation) ? frames : 1);
    } catch (const Error& error) {
      throw error_of_step(step.text, error);
    }
    if (joins(*step.operation)) frames = 1;
    size = step.operation->result_size(size);
  }
  return frames;
}

StepResult run_step(const Step& step, const Frames& frames) try {
  StepResult made;
  const auto run = [&](const Frames& taken) {
    Result result = step.operation->run(taken);
    made.frames.push_back(std::move(result.frame));
    made.seconds += result.seconds;
    made.remarks = result.remarks;
  };
  if (joins(*step.operation)) {
    run(frames);
  } else {
    for (const Frame& frame : frames) run({frame});
  }
  return made;
} catch (const Error& error) {
  throw error_of_step(step.text, error);
}

}  // namespace zavri::tools
