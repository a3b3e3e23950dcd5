#include "tools/report.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zavri::tools {
namespace {

std::string text_of(const Report& value, int digits = -1) {
  if (value.is_null()) return "inf";
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_number_float()) return value.dump();
  char text[64];
  snprintf(text, sizeof text, digits < 0 ? "%.*g" : "%.*f", digits < 0 ? 10 : digits,
           value.get<double>());
  return text;
}

// The cells of a column under its name, all numbers with as many decimals as one of them needs.
std::vector<std::string> column(const Report& rows, const std::string& key) {
  size_t digits = 0;
  for (const Report& row : rows) {
    const std::string text = text_of(row[key]);
    const size_t point = text.find('.');
    if (row[key].is_number_float() && point != std::string::npos) {
      digits = std::max(digits, text.size() - point - 1);
    }
  }
  std::vector<std::string> cells{key};
  for (const Report& row : rows) cells.push_back(text_of(row[key], static_cast<int>(digits)));
  return cells;
}

void print_table(const Report& rows) {
  std::vector<std::string> lines(rows.size() + 1);
  for (const auto& item : rows.front().items()) {
    const std::vector<std::string> cells = column(rows, item.key());
    size_t width = 0;
    for (const std::string& cell : cells) width = std::max(width, cell.size());
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(width - cells[i].size(), ' ');
      // Names stand left, numbers right.
      lines[i] +=
          "  " + (rows.front()[item.key()].is_string() ? cells[i] + padding : padding + cells[i]);
    }
  }
  for (const std::string& line : lines) {
    std::printf("%s\n", line.substr(0, line.find_last_not_of(' ') + 1).c_str());
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
    std::printf("%s\n", report.dump(2, ' ', false, Report::error_handler_t::replace).c_str());
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
