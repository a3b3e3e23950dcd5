#pragma once

#include <string>

#include "tools/console.h"
#include "tools/operations/chroma.h"
#include "tools/operations/denoise.h"

namespace zavri::tools {

// These are tables for the records of the library, as --thresh-table @FILE and --weights FILE read
// them. In C, the fields of the record beside the tables stand in a comment.
struct FoundTables {  // NOLINT(bugprone-exception-escape): JSON values move without throwing.
  Report json;
  std::string c;
};

// Writes thresholds for a mode. There is no table of luma for one that merges none.
FoundTables threshold_tables(Merge mode, const Curve& chroma, const Curve& luma);

FoundTables weight_tables(const Chroma& chroma);

}  // namespace zavri::tools
