#include "tools/console.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "tools/error.h"

namespace zavri::tools {
namespace {

bool is_table(const Report& value) {
  return value.is_array() && !value.empty() && value.front().is_object();
}

// Names stand left in a column, numbers right.
bool is_name(const Report& value) { return value.is_string() && value != "inf"; }

std::string label_of(std::string key) {
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

std::string text_of(const Report& value, int digits = -1) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) {
    std::string list;
    for (const Report& item : value) {
      list += (list.empty() ? "" : item.is_string() ? " " : ",") + text_of(item);
    }
    return list;
  }
  if (value.is_object()) {
    std::string list;
    for (const auto& item : value.items()) {
      list += (list.empty() ? "" : ", ") + label_of(item.key()) + ' ' + text_of(item.value());
    }
    return list;
  }
  if (!value.is_number_float()) return value.dump();
  char text[64];
  snprintf(text, sizeof text, digits < 0 ? "%.*g" : "%.*f", digits < 0 ? 10 : digits,
           value.get<double>());
  return text;
}

// Returns the cells of a column under its name, all numbers with as many decimals as one of them
// needs.
std::vector<std::string> column(const Report& rows, const std::string& key) {
  size_t digits = 0;
  for (const Report& row : rows) {
    const std::string text = text_of(row[key]);
    const size_t point = text.find('.');
    if (row[key].is_number_float() && point != std::string::npos) {
      digits = std::max(digits, text.size() - point - 1);
    }
  }
  std::vector<std::string> cells{label_of(key)};
  for (const Report& row : rows) cells.push_back(text_of(row[key], static_cast<int>(digits)));
  return cells;
}

std::string table_text(const Report& rows) {
  std::vector<std::string> lines(rows.size() + 1);
  for (const auto& item : rows.front().items()) {
    const std::vector<std::string> cells = column(rows, item.key());
    size_t width = 0;
    for (const std::string& cell : cells) width = std::max(width, cell.size());
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(width - cells[i].size(), ' ');
      lines[i] +=
          "  " + (is_name(rows.front()[item.key()]) ? cells[i] + padding : padding + cells[i]);
    }
  }
  std::string text;
  for (const std::string& line : lines)
    text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  return text;
}

std::string report_text(const Report& report) {
  std::string text;
  for (const auto& item : report.items()) {
    const bool table = is_table(item.value());
    text += label_of(item.key()) + (table ? ":\n" : ": ");
    text += table ? table_text(item.value()) : text_of(item.value()) + '\n';
  }
  return text;
}

std::string csv_cell(const Report& value) {
  std::string text = value.is_number() || value.is_boolean() ? value.dump() : text_of(value);
  for (size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2) {
    text.insert(at, 1, '"');
  }
  return text.find_first_of(",\"\n") == std::string::npos ? text : '"' + text + '"';
}

}  // namespace

Report decimals(double value, int digits) {
  if (!std::isfinite(value)) return value > 0 ? "inf" : "-inf";
  const double scale = std::pow(10.0, digits);
  return std::round(value * scale) / scale;
}

std::string csv_text(const Report& rows) {
  std::string lines;
  for (const auto& item : rows.front().items()) lines += csv_cell(item.key()) + ',';
  lines.back() = '\n';
  for (const Report& row : rows) {
    for (const Report& value : row) lines += csv_cell(value) + ',';
    lines.back() = '\n';
  }
  return lines;
}

Report value_of(const std::string& text) {
  return Report::accept(text) ? Report::parse(text) : Report(text);
}

void Console::remark(const std::string& text) {
  if (json && !stdout_is_output_) {
    remarks_.push_back(text);
  } else if (!quiet) {
    std::fprintf(stderr, "zavri: %s\n", text.c_str());
  }
}

void Console::progress(const std::string& text) const {
  if (!quiet && isatty(STDERR_FILENO)) std::fprintf(stderr, "%s ...\n", text.c_str());
}

void Console::print(Report report) const {
  if (quiet || stdout_is_output_) return;
  if (json) {
    report["remarks"] = remarks_;
    print_text(report.dump(2, ' ', false, Report::error_handler_t::replace) + '\n');
  } else {
    print_text(csv ? csv_text(report.front()) : report_text(report));
  }
}

void print_text(const std::string& text) {
  if (fwrite(text.data(), 1, text.size(), stdout) == text.size() && fflush(stdout) == 0) return;
  throw Error(std::string("stdout: cannot be written: ") + strerror(errno));
}

}  // namespace zavri::tools
