#include "tools/report/page_json.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

namespace zavri::tools {
namespace {

using Json = nlohmann::ordered_json;

std::string base64(const std::vector<uint8_t>& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t triple = 0;
    for (size_t k = 0; k < 3; ++k) {
      triple = triple << 8 | (i + k < bytes.size() ? bytes[i + k] : 0);
    }
    for (int shift = 18; shift >= 0; shift -= 6) text += kDigits[triple >> shift & 63];
  }
  // One digit of padding for each byte that the last triple lacks.
  const size_t missing = (3 - bytes.size() % 3) % 3;
  text.replace(text.size() - missing, missing, missing, '=');
  return text;
}

Json picture(const std::vector<uint8_t>& bytes) {
  if (bytes.empty()) return nullptr;
  const bool jpeg = bytes.front() == 0xFF;
  return (jpeg ? "data:image/jpeg;base64," : "data:image/png;base64,") + base64(bytes);
}

// JSON knows neither infinity nor NaN: the page shows the former's sign and leaves the latter out.
Json number(double value) {
  if (std::isnan(value)) return nullptr;
  if (std::isinf(value)) return value > 0 ? "\u221e" : "\u2212\u221e";
  return value;
}

Json number(const std::optional<double>& value) { return value ? number(*value) : Json(nullptr); }

template <class Item, class Convert>
Json list(const std::vector<Item>& items, Convert convert) {
  Json all = Json::array();
  for (const Item& item : items) all.push_back(convert(item));
  return all;
}

Json numbers(const std::vector<double>& values) {
  return list(values, [](double value) { return number(value); });
}

Json score(const PageScore& score) {
  return {{"name", score.name},
          {"unit", score.unit},
          {"meaning", score.meaning},
          {"value", number(score.value)},
          {"digits", score.digits},
          {"higher_is_better", score.higher_is_better},
          {"baseline", number(score.baseline)},
          {"baseline_name", score.baseline_name},
          {"low", number(score.low)},
          {"high", number(score.high)}};
}

Json comparison(const PageComparison& comparison) {
  const PageRegion& region = comparison.region;
  return {{"caption", comparison.caption},
          {"before", picture(comparison.before)},
          {"after", picture(comparison.after)},
          {"clean", picture(comparison.clean)},
          {"width", comparison.width},
          {"height", comparison.height},
          {"scale", comparison.scale},
          {"region", {region.x, region.y, region.width, region.height}},
          {"gained", number(comparison.gained)}};
}

Json comparisons(std::vector<PageComparison> all) {
  const auto parts = std::stable_partition(
      all.begin(), all.end(), [](const PageComparison& one) { return one.scale == 0; });
  // What shows one part at several scales stays together.
  std::map<std::string, double> worst;
  for (const PageComparison& one : all) {
    double& gained = worst.emplace(one.caption, 1e9).first->second;
    gained = std::min(gained, one.gained.value_or(0));
  }
  std::stable_sort(parts, all.end(), [&](const PageComparison& a, const PageComparison& b) {
    return worst[a.caption] < worst[b.caption];
  });
  return list(all, comparison);
}

Json agreement(const PageAgreement& agreement) {
  return {{"caption", agreement.caption},
          {"map", picture(agreement.map)},
          {"width", agreement.width},
          {"height", agreement.height},
          {"shares", numbers(agreement.shares)}};
}

const char* name_of(PageMark mark) {
  switch (mark) {
    case PageMark::kSteps:
      return "steps";
    case PageMark::kPoints:
      return "points";
    case PageMark::kBars:
      return "bars";
    case PageMark::kLine:
      break;
  }
  return "line";
}

Json series(const PageSeries& series) {
  return {{"name", series.name},     {"mark", name_of(series.mark)}, {"x", numbers(series.x)},
          {"y", numbers(series.y)},  {"low", numbers(series.low)},   {"high", numbers(series.high)},
          {"labels", series.labels}, {"baseline", series.baseline},  {"follows", series.follows}};
}

Json axis(const PageAxis& axis) {
  return {{"label", axis.label},
          {"unit", axis.unit},
          {"from_zero", axis.from_zero},
          {"doubling", axis.doubling}};
}

Json plot(const PagePlot& plot) {
  return {{"title", plot.title},
          {"note", plot.note},
          {"x", axis(plot.x)},
          {"y", axis(plot.y)},
          {"series", list(plot.series, series)}};
}

Json cell(const PageCell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  return number(std::get<double>(cell));
}

Json table(const PageTable& table) {
  return {
      {"title", table.title},
      {"note", table.note},
      {"columns",
       list(table.columns,
            [](const PageColumn& column) -> Json {
              return {{"name", column.name}, {"unit", column.unit}, {"digits", column.digits}};
            })},
      {"rows", list(table.rows, [](const std::vector<PageCell>& row) { return list(row, cell); })},
      {"marked", table.marked ? Json(*table.marked) : Json(nullptr)}};
}

// In JSON a '<' stands inside strings only. Escaped, none of them can end the script element.
std::string without_tags(const std::string& json) {
  std::string text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string to_json(const ReportPage& page) {
  const Json all = {{"title", page.title},
                    {"summary", page.summary},
                    {"command", page.command},
                    {"program", page.program},
                    {"remarks", page.remarks},
                    {"scores", list(page.scores, score)},
                    {"comparisons", comparisons(page.comparisons)},
                    {"agreements", list(page.agreements, agreement)},
                    {"plots", list(page.plots, plot)},
                    {"tables", list(page.tables, table)},
                    {"log_lines", page.log_lines}};
  // File names and log lines may hold any bytes; those that are no UTF-8 are shown as U+FFFD.
  return without_tags(all.dump(-1, ' ', true, Json::error_handler_t::replace));
}

}  // namespace zavri::tools
