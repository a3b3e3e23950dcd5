#include "tools/operations/setting.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "tools/error.h"

namespace zavri::tools {
namespace {

std::string range_text(const std::string& low, const std::string& high) {
  return low + ".." + high;
}

std::string text_of(double value) {
  char text[32];
  snprintf(text, sizeof text, "%.10g", value);
  return text;
}

template <class Value>
Setting with_auto(Setting setting, Value& value) {
  setting.form += " or auto";
  setting.assign = [&value, assign = setting.assign](const std::string& text) {
    if (text != "auto") return assign(text);
    value = 0;
    return true;
  };
  setting.text = [&value, text = setting.text] { return value == 0 ? "auto" : text(); };
  return setting;
}

template <class Value>
Setting whole(const char* name, Value& value, Value low, Value high, const char* what) {
  const auto assign = [&value, low, high](const std::string& text) {
    const std::optional<int64_t> number = parse_whole(text, low, high);
    if (number) value = static_cast<Value>(*number);
    return number.has_value();
  };
  return {name, range_text(std::to_string(low), std::to_string(high)), what, assign,
          [&value] { return std::to_string(value); }};
}

}  // namespace

void Setting::set(const std::string& new_text) const {
  if (assign(new_text)) return;
  throw Error("--" + name + ' ' + new_text + ": takes " + (is_flag() ? "true or false" : form));
}

std::optional<int64_t> parse_whole(const std::string& text, int64_t low, int64_t high) {
  const size_t digits = text.find_first_not_of('-');
  if (digits != std::string::npos && text[digits] == '0' && text.size() > 1) return {};
  int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || value < low || value > high) return {};
  return value;
}

std::optional<std::vector<int>> parse_list(const std::string& text, size_t most, int low,
                                           int high) {
  std::vector<int> numbers;
  for (const std::string& part : split(text, ',')) {
    const std::optional<int64_t> number = parse_whole(part, low, high);
    if (!number || numbers.size() == most) return {};
    numbers.push_back(static_cast<int>(*number));
  }
  return numbers;
}

std::string key_of(const std::string& setting) {
  std::string key = setting;
  std::replace(key.begin(), key.end(), '-', '_');
  return key;
}

std::string quoted(const std::string& text) {
  constexpr char kPlain[] =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./:,@%";
  if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos) return text;
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? "'\\''" : std::string(1, c);
  return word + '\'';
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  size_t begin = 0;
  for (size_t end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

Setting whole_number(const char* name, int& value, int low, int high, const char* what) {
  return whole(name, value, low, high, what);
}

Setting whole_number(const char* name, int64_t& value, int64_t low, int64_t high,
                     const char* what) {
  return whole(name, value, low, high, what);
}

Setting real_number(const char* name, double& value, double low, double high, const char* what) {
  const auto assign = [&value, low, high](const std::string& text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    // A range holds no number that is none.
    const bool fits = error == std::errc() && rest == end && number >= low && number <= high;
    if (fits) value = number;
    return fits;
  };
  return {name, range_text(text_of(low), text_of(high)), what, assign,
          [&value] { return text_of(value); }};
}

Setting flag(const char* name, bool& value, const char* what) {
  const auto assign = [&value](const std::string& text) {
    if (text != "true" && text != "false") return false;
    value = text == "true";
    return true;
  };
  return {name, "", what, assign, [&value] { return value ? "true" : "false"; }};
}

Setting word(const char* name, std::string& value, const char* form, const char* what) {
  const auto assign = [&value](const std::string& text) {
    value = text;
    return true;
  };
  return {name, form, what, assign, [&value] { return value; }};
}

Setting or_auto(Setting setting, int& value) { return with_auto(std::move(setting), value); }
Setting or_auto(Setting setting, double& value) { return with_auto(std::move(setting), value); }

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace zavri::tools
