#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/tuning/judge.h"
#include "tools/tuning/plan.h"
#include "tools/tuning/progress.h"
#include "tools/tuning/rows.h"

namespace zavri::tools {

// Makes a row of a sweep: the burst, the point's settings, the three numbers of luma and of chroma,
// the thresholds that the multi-frame denoise used, and the milliseconds in the library.
Report row_of(const std::string& burst, const Point& point, const Verdict& verdict);

// Names the three numbers of a score as rows do: "luma_noise_removed" and so on. There is no ghost
// error where nothing is known to move.
Report row_of(const Score& score);

// Sorts the rows of files by the points that they belong to, in the order of the plan; rows of
// points that are in none are null. Throws an Error that begins with `argument` if a row belongs to
// no point, so that its file is of another sweep.
std::vector<Report> rows_by_point(const std::vector<Report>& rows, const std::string& burst,
                                  const Plan& plan, const std::string& argument);

// Judges all points whose row is null and fills that in; `done` gets each new row.
void run_points(const std::string& operation, const Plan& plan, const std::string& burst,
                Judge& judge, std::vector<Report>& rows, Progress& progress,
                const std::function<void(const Report&)>& done);

}  // namespace zavri::tools
