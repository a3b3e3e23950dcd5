#include "tools/tuning/sweep_page.h"

#include <algorithm>
#include <numeric>

namespace zavri::tools {
namespace {

// The points of one plane, whose rows have both numbers.
PageSeries series_of(const std::string& plane, const std::string& number, const Plan& plan,
                     const std::vector<Report>& rows) {
  PageSeries series{plane, PageMark::kPoints, {}, {}};
  for (size_t k = 0; k < rows.size(); ++k) {
    const Report x = rows[k].value(plane + "_noise_removed", Report());
    const Report y = rows[k].value(plane + number, Report());
    if (!x.is_number() || !y.is_number()) continue;
    series.x.push_back(x);
    series.y.push_back(y);
    series.labels.push_back(options_of(plan.points[k]));
  }
  return series;
}

PagePlot plot_of(const std::string& title, const PageAxis& y, const std::string& number,
                 const Plan& plan, const std::vector<Report>& rows) {
  PagePlot plot{title, "", {"noise removed", "dB"}, y, {}};
  for (const char* const plane : {"luma", "chroma"}) {
    PageSeries series = series_of(plane, number, plan, rows);
    if (!series.x.empty()) plot.series.push_back(series);
  }
  return plot;
}

}  // namespace

PageTable page_table(const std::string& title, const std::vector<Report>& rows) {
  PageTable table;
  table.title = title;
  for (const auto& item : rows.front().items()) {
    std::string name = item.key();
    std::replace(name.begin(), name.end(), '_', ' ');
    const bool is_whole = std::all_of(rows.begin(), rows.end(), [&](const Report& row) {
      return !row[item.key()].is_number_float();
    });
    table.columns.push_back({name, "", is_whole ? 0 : 2});
  }
  for (const Report& row : rows) {
    std::vector<PageCell> cells;
    for (const Report& value : row) {
      if (value.is_number()) {
        cells.emplace_back(value.get<double>());
      } else {
        cells.emplace_back(value.is_string() ? value.get<std::string>() : value.dump());
      }
    }
    table.rows.push_back(cells);
  }
  return table;
}

ReportPage page_of_sweep(const std::string& operation, const Plan& plan,
                         const std::vector<Report>& rows) {
  ReportPage page;
  page.title = "Sweep of zavri " + operation;
  page.summary = std::to_string(rows.size()) +
                 " settings of one burst. Good ones lie to the upper right of the first plot and "
                 "low in the second; what each sets is told under the cursor.";
  page.plots.push_back(plot_of("What is removed and what is kept", {"texture kept", "dB"},
                               "_texture_psnr", plan, rows));
  const PagePlot ghosts =
      plot_of("Ghosts", {"ghost error", "levels", true}, "_ghost_error", plan, rows);
  if (!ghosts.series.empty()) page.plots.push_back(ghosts);
  page.tables.push_back(page_table("All points", rows));
  return page;
}

}  // namespace zavri::tools
