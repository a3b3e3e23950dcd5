#include "tools/tuning/sweep.h"

#include <map>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr char kFirstResult[] = "luma_noise_removed";

Report settings_row(const std::string& burst, const Point& point) {
  Report row{{"burst", burst}};
  row.update(row_of(point));
  return row;
}

// Returns what stands in front of the results: the burst and the settings.
std::string settings_in(const Report& row) {
  Report settings = Report::object();
  for (const auto& item : row.items()) {
    if (item.key() == kFirstResult) break;
    settings[item.key()] = item.value();
  }
  return settings.dump();
}

}  // namespace

Report row_of(const Score& score) {
  Report row = Report::object();
  const auto add = [&row](const std::string& plane, const PlaneScore& part) {
    row[plane + "_noise_removed"] = decimals(part.noise_removed, 3);
    row[plane + "_texture_psnr"] = decimals(part.texture_psnr, 3);
    if (part.ghost_error) row[plane + "_ghost_error"] = decimals(*part.ghost_error, 3);
  };
  add("luma", score.luma);
  add("chroma", score.chroma);
  return row;
}

Report row_of(const std::string& burst, const Point& point, const Verdict& verdict) {
  Report row = settings_row(burst, point);
  row.update(row_of(verdict.score));
  if (verdict.thresholds) {
    row["used_thresh"] = verdict.thresholds->chroma;
    row["used_thresh_luma"] = verdict.thresholds->luma;
  }
  row["milliseconds"] = decimals(1e3 * verdict.seconds, 2);
  return row;
}

std::vector<Report> rows_by_point(const std::vector<Report>& rows, const std::string& burst,
                                  const Plan& plan, const std::string& argument) {
  std::map<std::string, size_t> places;
  for (size_t k = 0; k < plan.points.size(); ++k) {
    places[settings_row(burst, plan.points[k]).dump()] = k;
  }
  std::vector<Report> placed(plan.points.size());
  for (const Report& row : rows) {
    const auto place = places.find(settings_in(row));
    if (place == places.end()) {
      throw Error(argument + ": has rows of another sweep; --force replaces it, and another name " +
                  "keeps it");
    }
    placed[place->second] = row;
  }
  return placed;
}

void run_points(const std::string& operation, const Plan& plan, const std::string& burst,
                Judge& judge, std::vector<Report>& rows, Progress& progress,
                const std::function<void(const Report&)>& done) {
  for (size_t k = 0; k < rows.size(); ++k) {
    if (!rows[k].is_null()) continue;
    const Point& point = plan.points[k];
    rows[k] = row_of(burst, point, judge.judge(*operation_at(operation, point)));
    done(rows[k]);
    progress.step();
  }
}

}  // namespace zavri::tools
