#pragma once

#include <string>
#include <vector>

#include "tools/console.h"

// Files of rows are CSV with the columns' names in the first line, or JSON lines, an object each.
// The rows of one file have the same keys, whose values are scalars.
namespace zavri::tools {

// Tells whether the file has comma-separated values, by its extension, .csv or .jsonl. Throws for
// others.
bool is_csv(const std::string& path);

// Reads the rows of a file in either format. A last line that does not end was not written to its
// end, and does not count.
std::vector<Report> read_rows(const std::string& path);

// Returns the rows as a file has them. CSV begins with the names of the columns.
std::string rows_text(const std::vector<Report>& rows, bool csv);

// A RowFile grows by a row at a time, each of which is there for good when add() returns.
class RowFile {
 public:
  // Replaces what is there by these rows; "-" is stdout.
  RowFile(const std::string& path, const std::vector<Report>& rows);
  void add(const Report& row);

 private:
  void write(const std::string& text);

  std::string path_;
  bool csv_;
  bool empty_;
};

}  // namespace zavri::tools
