#include "tools/tuning/plan.h"

#include <algorithm>
#include <set>

#include "tools/error.h"
#include "tools/operations/chroma.h"
#include "tools/operations/denoise.h"

namespace zavri::tools {
namespace {

constexpr size_t kMostPoints = 100000;

std::unique_ptr<Operation> make_operation(const std::string& name) {
  if (name == "denoise") return std::make_unique<Denoise>();
  if (name == "chroma") return std::make_unique<Chroma>();
  throw Error(name + ": takes denoise or chroma");
}

// The first frame of a burst is the one that is judged, and strips at once race.
bool is_swept(const Setting& setting) {
  return setting.name != "ref" && setting.name != "parallel";
}

bool is_curve(const std::string& name) {
  return name == "thresh-table" || name == "thresh-luma-table";
}

// Reads "4:20:8" as 4, 12 and 20; the step is 1 unless there is one. Returns nothing for a text
// that is no such range.
std::vector<std::string> range(const std::string& text) {
  std::vector<int64_t> numbers;
  for (const std::string& part : split(text, ':')) {
    const std::optional<int64_t> number = parse_whole(part, 0, UINT8_MAX);
    if (!number) return {};
    numbers.push_back(*number);
  }
  if (numbers.size() == 2) numbers.push_back(1);
  if (numbers.size() != 3 || numbers[2] == 0) return {};
  std::vector<std::string> values;
  for (int64_t value = numbers[0]; value <= numbers[1]; value += numbers[2]) {
    values.push_back(std::to_string(value));
  }
  return values;
}

// A curve has commas of its own.
std::vector<std::string> values_in(const std::string& name, const std::string& text) {
  if (is_curve(name)) return {text};
  std::vector<std::string> values;
  for (const std::string& part : split(text, ',')) {
    const std::vector<std::string> numbers = range(part);
    if (numbers.empty()) values.push_back(part);
    values.insert(values.end(), numbers.begin(), numbers.end());
  }
  return values;
}

void add_values(Axes& axes, const std::string& name, const std::vector<std::string>& values) {
  const auto same = [&](const Axis& axis) { return axis.name == name; };
  auto axis = std::find_if(axes.begin(), axes.end(), same);
  if (axis == axes.end()) axis = axes.insert(axes.end(), {name, {}});
  axis->values.insert(axis->values.end(), values.begin(), values.end());
}

const Setting& setting_named(const Settings& settings, const std::string& name) {
  const auto setting = std::find_if(settings.begin(), settings.end(),
                                    [&](const Setting& s) { return s.name == name; });
  if (setting == settings.end()) throw Error("--" + name + ": is no setting of this operation");
  return *setting;
}

// Goes on to the next combination of indices, the last axis first; returns false after the last
// one.
bool advance(std::vector<size_t>& at, const Axes& axes) {
  for (size_t k = axes.size(); k-- > 0;) {
    if (++at[k] < axes[k].values.size()) return true;
    at[k] = 0;
  }
  return false;
}

}  // namespace

Settings axis_settings(Axes& axes) {
  Settings options;
  for (const char* const operation : {"denoise", "chroma"}) {
    for (const Setting& setting : make_operation(operation)->settings()) {
      if (!is_swept(setting)) continue;
      const std::string form = is_curve(setting.name) ? setting.form
                               : setting.is_flag()    ? "true,false"
                                                      : "LIST of " + setting.form;
      const auto assign = [&axes, operation, name = setting.name](const std::string& text) {
        // The values are tried on an operation that nobody runs.
        const std::unique_ptr<Operation> trial = make_operation(operation);
        const std::vector<std::string> values = values_in(name, text);
        for (const std::string& value : values) setting_named(trial->settings(), name).set(value);
        add_values(axes, name, values);
        return true;
      };
      const std::string what = operation + std::string(": ") + setting.what;
      options.push_back({setting.name, form, what, assign, [] { return ""; }, true});
    }
  }
  return options;
}

std::unique_ptr<Operation> operation_at(const std::string& operation, const Point& point) {
  std::unique_ptr<Operation> made = make_operation(operation);
  const Settings settings = made->settings();
  for (const auto& [name, text] : point) setting_named(settings, name).set(text);
  return made;
}

Report row_of(const Point& point) {
  Report row = Report::object();
  for (const auto& [name, text] : point) row[key_of(name)] = value_of(text);
  return row;
}

std::string options_of(const Point& point) {
  std::string options;
  for (const auto& [name, text] : point) options += " --" + name + ' ' + quoted(text);
  return options;
}

std::string effect_of(Operation& operation, const Size& size) {
  if (const auto* const denoise = dynamic_cast<const Denoise*>(&operation)) {
    return denoise->effect(size);
  }
  std::string effect;
  for (const Setting& setting : operation.settings()) effect += setting.text() + '\n';
  return effect;
}

Plan make_plan(const std::string& operation, const Axes& axes, const Size& size, int frames) {
  Plan plan;
  std::set<std::string> effects;
  std::vector<size_t> at(axes.size());
  do {
    Point point;
    for (size_t k = 0; k < axes.size(); ++k) point.push_back({axes[k].name, axes[k].values[at[k]]});
    const std::unique_ptr<Operation> made = operation_at(operation, point);
    made->check(size, made->takes().most == 1 ? 1 : frames);
    if (effects.insert(effect_of(*made, size)).second) {
      plan.points.push_back(point);
    } else {
      ++plan.repeated;
    }
    if (plan.points.size() > kMostPoints) {
      throw Error("more than " + std::to_string(kMostPoints) + " points; fewer values are needed");
    }
  } while (advance(at, axes));
  return plan;
}

}  // namespace zavri::tools
