#include "tools/report.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace zavri::tools {
namespace {

std::string text_of(const Report& value) {
  if (value.is_null()) return "inf";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

void print_table(const Report& rows) {
  std::vector<std::string> keys;
  for (const auto& item : rows.front().items()) keys.push_back(item.key());
  std::map<std::string, size_t> widths;
  for (const std::string& key : keys) {
    widths[key] = key.size();
    for (const Report& row : rows) widths[key] = std::max(widths[key], text_of(row[key]).size());
  }
  const auto print_cell = [&](const std::string& key, const std::string& text) {
    const int width = static_cast<int>(widths[key]);
    std::printf(key == keys.front() ? "  %-*s" : "  %*s", width, text.c_str());
  };
  for (const std::string& key : keys) print_cell(key, key);
  std::printf("\n");
  for (const Report& row : rows) {
    for (const std::string& key : keys) print_cell(key, text_of(row[key]));
    std::printf("\n");
  }
}

}  // namespace

Report decimals(double value, int digits) {
  if (!std::isfinite(value)) return nullptr;
  const double scale = std::pow(10.0, digits);
  return std::round(value * scale) / scale;
}

void Console::print(const Report& report) const {
  if (quiet) return;
  if (json) {
    std::printf("%s\n", report.dump(2).c_str());
    return;
  }
  for (const auto& item : report.items()) {
    const bool table = item.value().is_array() && !item.value().empty();
    std::printf(table ? "%s:\n" : "%s: ", item.key().c_str());
    if (table) {
      print_table(item.value());
    } else {
      std::printf("%s\n", text_of(item.value()).c_str());
    }
  }
}

void Console::say(const std::string& text) const {
  if (!quiet) std::fprintf(stderr, "zavri: %s\n", text.c_str());
}

void Console::progress(const std::string& text) const {
  if (!quiet && isatty(STDERR_FILENO)) std::fprintf(stderr, "%s ...\n", text.c_str());
}

}  // namespace zavri::tools
