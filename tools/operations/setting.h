#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zavri::tools {

// A setting is a value that people choose, bound to the variable that holds it: an option of the
// command line or an argument of a step. Its form, its range and its default stand in it alone.
struct Setting {
  std::string name;  // "thresh-luma"
  std::string form;  // shows what its text looks like, such as "1..100 or auto"; a flag has none
  std::string what;
  // Returns false, and leaves the variable as it is, for a text without this form.
  std::function<bool(const std::string&)> assign;
  // Returns the text that would assign today's value.
  std::function<std::string()> text;
  bool repeats = false;  // assigns once for each time that it is given

  bool is_flag() const { return form.empty(); }
  // Throws an Error that names the setting and its form.
  void set(const std::string& new_text) const;
};

using Settings = std::vector<Setting>;

// Reads a decimal number without leading zeros and without a sign other than '-'.
std::optional<int64_t> parse_whole(const std::string& text, int64_t low, int64_t high);

// Reads at most `most` such numbers with commas between them.
std::optional<std::vector<int>> parse_list(const std::string& text, size_t most, int low, int high);

// Makes a key of reports and rows of a name, such as "thresh_luma".
std::string key_of(const std::string& setting);

// Makes one word of a shell's command line of a text.
std::string quoted(const std::string& text);

std::vector<std::string> split(const std::string& text, char separator);

Setting whole_number(const char* name, int& value, int low, int high, const char* what);
Setting whole_number(const char* name, int64_t& value, int64_t low, int64_t high, const char* what);
Setting real_number(const char* name, double& value, double low, double high, const char* what);
Setting flag(const char* name, bool& value, const char* what);
Setting word(const char* name, std::string& value, const char* form, const char* what);

// Lets the word `auto` stand for the value 0.
Setting or_auto(Setting setting, int& value);
Setting or_auto(Setting setting, double& value);

// Makes a text that lists what there is, such as "nv12, nv21".
std::string joined(const std::vector<std::string>& names);

// Makes the setting of one of several values that have names.
template <class Value>
Setting choice(const char* name, Value& value, std::vector<std::pair<std::string, Value>> choices,
               const std::string& what) {
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
