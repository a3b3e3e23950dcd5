#include "tools/report/results_page.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

namespace zavri::tools {
namespace {

constexpr char kNoiseRemoved[] = "_noise_removed";
constexpr char kTexture[] = "_texture_psnr";
constexpr char kGhosts[] = "_ghost_error";

bool ends_with(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string words(std::string key) {
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

std::string text_of(const Report& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

double number_of(const Report& row, const std::string& key) {
  const auto found = row.find(key);
  if (found == row.end() || !found->is_number()) return std::numeric_limits<double>::quiet_NaN();
  return found->get<double>();
}

bool is_table(const Report& value) {
  return value.is_array() && !value.empty() && value.front().is_object();
}

PageCell cell_of(const Report& value) {
  if (value.is_number()) return value.get<double>();
  return value.is_null() ? std::string() : text_of(value);
}

// The keys of all rows, in the order of their first appearance: a row may lack some.
std::vector<std::string> keys_of(const Report& rows) {
  std::vector<std::string> keys;
  for (const Report& row : rows) {
    for (const auto& item : row.items()) {
      if (std::find(keys.begin(), keys.end(), item.key()) == keys.end()) keys.push_back(item.key());
    }
  }
  return keys;
}

bool is_score(const std::string& key) {
  return ends_with(key, kNoiseRemoved) || ends_with(key, kTexture) || ends_with(key, kGhosts);
}

const char* unit_of(const std::string& key) {
  if (ends_with(key, kGhosts)) return "levels";
  return is_score(key) ? "dB" : "";
}

// Keys with more than one value, the scores and what was measured left out: what was tried.
std::vector<std::string> varied(const Report& rows, const std::vector<std::string>& keys) {
  std::vector<std::string> names;
  for (const std::string& key : keys) {
    if (is_score(key) || key == "milliseconds") continue;
    std::set<std::string> values;
    for (const Report& row : rows) values.insert(row.contains(key) ? row[key].dump() : "");
    if (values.size() > 1) names.push_back(key);
  }
  return names;
}

// One point a row, the rows of one mode, or of settings that have a name, as one series.
PagePlot trade_off(const std::string& title, const Report& rows,
                   const std::vector<std::string>& keys, const std::string& plane,
                   const std::string& against) {
  const bool is_ghosts = against == kGhosts;
  PagePlot plot{
      title + ", " + plane + (is_ghosts ? ": ghosts against noise" : ": texture against noise"),
      is_ghosts ? "Best is at the right and low." : "Best is at the right and high.",
      {"Noise removed", "dB"},
      {is_ghosts ? "Ghost error" : "Texture kept", unit_of(against)},
      {}};
  const std::vector<std::string> tried = varied(rows, keys);
  std::map<std::string, PageSeries> series;
  for (const Report& row : rows) {
    const double x = number_of(row, plane + kNoiseRemoved);
    const double y = number_of(row, plane + against);
    if (std::isnan(x) || std::isnan(y)) continue;
    const char* const naming = row.contains("mode") ? "mode" : "settings";
    const std::string name = row.contains(naming) ? text_of(row[naming]) : plane;
    PageSeries& one = series[name];
    one.name = name;
    one.mark = PageMark::kPoints;
    one.x.push_back(x);
    one.y.push_back(y);
    std::string label;
    for (const std::string& key : tried) {
      if (row.contains(key)) {
        label += (label.empty() ? "" : ", ") + words(key) + ' ' + text_of(row[key]);
      }
    }
    one.labels.push_back(label);
  }
  for (const auto& [name, one] : series) plot.series.push_back(one);
  return plot;
}

// Each other numeric column over the gain, as curves hold from one gain to the next.
PagePlot over_gain(const std::string& title, const Report& rows,
                   const std::vector<std::string>& keys) {
  PagePlot plot{title, "", {"Gain", "", false, true}, {"", "", true}, {}};
  for (const std::string& key : keys) {
    if (key == "gain") continue;
    PageSeries series{words(key), PageMark::kSteps, {}, {}};
    for (const Report& row : rows) {
      const double gain = number_of(row, "gain");
      const double value = number_of(row, key);
      if (!(gain > 0) || std::isnan(value)) continue;
      series.x.push_back(gain);
      series.y.push_back(value);
    }
    if (!series.x.empty()) plot.series.push_back(series);
  }
  return plot;
}

void add_plots(const std::string& title, const Report& rows, const std::vector<std::string>& keys,
               std::vector<PagePlot>& plots) {
  const auto add = [&plots](const PagePlot& plot) {
    if (!plot.series.empty()) plots.push_back(plot);
  };
  bool has_scores = false;
  for (const std::string& key : keys) {
    if (!ends_with(key, kNoiseRemoved)) continue;
    has_scores = true;
    const std::string plane = key.substr(0, key.size() - std::string(kNoiseRemoved).size());
    add(trade_off(title, rows, keys, plane, kTexture));
    add(trade_off(title, rows, keys, plane, kGhosts));
  }
  // Of a curve: one row a gain.
  if (!has_scores && !keys.empty() && keys.front() == "gain") add(over_gain(title, rows, keys));
}

PageTable table_of(const std::string& title, const Report& rows,
                   const std::vector<std::string>& keys) {
  PageTable table{title, "", {}, {}, {}};
  for (const std::string& key : keys) {
    const bool is_whole = std::all_of(rows.begin(), rows.end(), [&](const Report& row) {
      const double value = number_of(row, key);
      return std::isnan(value) || value == std::round(value);
    });
    table.columns.push_back({words(key), unit_of(key), is_whole ? 0 : 3});
  }
  for (const Report& row : rows) {
    std::vector<PageCell> cells;
    cells.reserve(keys.size());
    for (const std::string& key : keys) {
      cells.push_back(row.contains(key) ? cell_of(row[key]) : PageCell(std::string()));
    }
    table.rows.push_back(cells);
  }
  return table;
}

}  // namespace

ReportPage page_of(const Report& results) {
  ReportPage page;
  PageTable single{"Results", "", {{"Name", "", 0}, {"Value", "", 3}}, {}, {}};
  for (const auto& item : results.items()) {
    if (item.key() == "remarks") {
      for (const Report& remark : item.value()) page.remarks.push_back(text_of(remark));
    } else if (is_table(item.value())) {
      const std::vector<std::string> keys = keys_of(item.value());
      page.tables.push_back(table_of(words(item.key()), item.value(), keys));
      add_plots(words(item.key()), item.value(), keys, page.plots);
    } else {
      single.rows.push_back({words(item.key()), cell_of(item.value())});
    }
  }
  if (!single.rows.empty()) page.tables.insert(page.tables.begin(), single);
  return page;
}

}  // namespace zavri::tools
