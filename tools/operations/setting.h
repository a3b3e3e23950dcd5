#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zavri::tools {

// A value that people choose, bound to the variable that holds it: an option of the command line or
// an argument of a step. Its form, its range and its default stand here and nowhere else.
struct Setting {
  std::string name;  // "thresh-luma"
  std::string form;  // what its text looks like, such as "1..100 or auto"; a flag has none
  std::string what;
  // Returns false, and leaves the variable as it is, for a text without this form.
  std::function<bool(const std::string&)> assign;
  // The text that would assign today's value.
  std::function<std::string()> text;
  bool repeats = false;  // assigns once for each time that it is given

  bool is_flag() const { return form.empty(); }
  // Throws an Error that names the setting and its form.
  void set(const std::string& new_text) const;
};

using Settings = std::vector<Setting>;

// A number in the decimal system without a sign other than '-' and without leading zeros.
std::optional<int64_t> parse_whole(const std::string& text, int64_t low, int64_t high);

// Such numbers with commas between them, at most `most` of them.
std::optional<std::vector<int>> parse_list(const std::string& text, size_t most, int low, int high);

std::vector<std::string> split(const std::string& text, char separator);

Setting whole_number(const char* name, int& value, int low, int high, const char* what);
Setting whole_number(const char* name, int64_t& value, int64_t low, int64_t high, const char* what);
Setting real_number(const char* name, double& value, double low, double high, const char* what);
Setting flag(const char* name, bool& value, const char* what);
Setting word(const char* name, std::string& value, const char* form, const char* what);

// The word `auto` for the value 0.
Setting or_auto(Setting setting, int& value);
Setting or_auto(Setting setting, double& value);

// "nv12, nv21": for texts that list what there is.
std::string joined(const std::vector<std::string>& names);

// One of several values that have names.
template <class Value>
Setting choice(const char* name, Value& value, std::vector<std::pair<std::string, Value>> choices,
               const char* what) {
  std::vector<std::string> names;
  names.reserve(choices.size());
  for (const auto& [choice_name, chosen] : choices) names.push_back(choice_name);
  const auto assign = [&value, choices](const std::string& text) {
    for (const auto& [choice_name, chosen] : choices) {
      if (text != choice_name) continue;
      value = chosen;
      return true;
    }
    return false;
  };
  const auto text = [&value, choices] {
    for (const auto& [choice_name, chosen] : choices) {
      if (value == chosen) return choice_name;
    }
    return std::string();
  };
  return {name, joined(names), what, assign, text};
}

}  // namespace zavri::tools
