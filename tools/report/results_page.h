#pragma once

#include "tools/console.h"
#include "tools/report/page.h"

namespace zavri::tools {

// A page of what a command found out: each table of the report as one, with plots of the columns
// that are known. Rows with a score, such as a sweep's, give texture and ghosts against noise
// removed; rows with a gain give what else they have over the gain.
ReportPage page_of(const Report& results);

}  // namespace zavri::tools
