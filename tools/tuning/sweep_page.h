#pragma once

#include <string>
#include <vector>

#include "tools/report/page.h"
#include "tools/tuning/plan.h"

namespace zavri::tools {

// A plot of what each point removes of noise and keeps of texture, one of the ghosts that it leaves
// if something moves, and a table of all rows. The rows are in the order of the plan.
ReportPage page_of_sweep(const std::string& operation, const Plan& plan,
                         const std::vector<Report>& rows);

// Rows of scalars with the same keys.
PageTable page_table(const std::string& title, const std::vector<Report>& rows);

}  // namespace zavri::tools
