#include "tools/tuning/rows.h"

#include <cstring>
#include <fstream>

#include "tools/error.h"
#include "tools/images/raw_format.h"
#include "tools/images/storage.h"
#include "tools/operations/setting.h"

namespace zavri::tools {
namespace {

// Reads the cells of a line that csv_text() made.
std::vector<std::string> csv_cells(const std::string& line) {
  std::vector<std::string> cells(1);
  bool quoted = false;
  for (size_t k = 0; k < line.size(); ++k) {
    if (line[k] == '"' && quoted && line[k + 1] == '"') {
      cells.back() += line[k++];
    } else if (line[k] == '"') {
      quoted = !quoted;
    } else if (line[k] == ',' && !quoted) {
      cells.emplace_back();
    } else {
      cells.back() += line[k];
    }
  }
  return cells;
}

Report row_of_cells(const std::vector<std::string>& names, const std::vector<std::string>& cells,
                    const std::string& path) {
  if (names.size() != cells.size()) {
    throw Error(path + ": a line has " + std::to_string(cells.size()) +
                " cells, where the first has " + std::to_string(names.size()));
  }
  Report row;
  for (size_t k = 0; k < names.size(); ++k) {
    row[names[k]] = value_of(cells[k]);
  }
  return row;
}

}  // namespace

bool is_csv(const std::string& path) {
  const std::string extension = extension_of(path);
  if (extension == ".csv") return true;
  if (extension == ".jsonl" || path == "-") return false;
  throw Error("-o " + path + ": takes a name in .csv or .jsonl, or - for JSON lines on stdout");
}

std::vector<Report> read_rows(const std::string& path) {
  const Bytes bytes = read_file(path);
  std::vector<std::string> lines = split(std::string(bytes.begin(), bytes.end()), '\n');
  lines.pop_back();
  std::vector<Report> rows;
  std::vector<std::string> names;
  for (const std::string& line : lines) {
    if (line.empty()) continue;
    if (line[0] == '{' && names.empty()) {
      if (!Report::accept(line)) throw Error(path + ": a line is no JSON: " + line.substr(0, 40));
      rows.push_back(Report::parse(line));
    } else if (names.empty()) {
      names = csv_cells(line);
    } else {
      rows.push_back(row_of_cells(names, csv_cells(line), path));
    }
  }
  return rows;
}

std::string rows_text(const std::vector<Report>& rows, bool csv) {
  if (csv) return rows.empty() ? "" : csv_text(rows);
  std::string text;
  for (const Report& row : rows) text += row.dump() + '\n';
  return text;
}

RowFile::RowFile(const std::string& path, const std::vector<Report>& rows)
    : path_(path), csv_(is_csv(path)), empty_(rows.empty()) {
  const std::string text = rows_text(rows, csv_);
  if (path == "-") {
    print_text(text);
  } else {
    write_file(path, Bytes(text.begin(), text.end()));
  }
}

void RowFile::add(const Report& row) {
  const std::string text = rows_text({row}, csv_);
  const size_t names_end = csv_ && !empty_ ? text.find('\n') + 1 : 0;
  write(text.substr(names_end));
  empty_ = false;
}

void RowFile::write(const std::string& text) {
  if (path_ == "-") return print_text(text);
  std::ofstream file(path_, std::ios::app | std::ios::binary);
  file << text;
  file.close();
  if (!file) throw Error(path_ + ": cannot be written: " + strerror(errno));
}

}  // namespace zavri::tools
