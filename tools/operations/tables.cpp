#include "tools/operations/tables.h"

#include <algorithm>

#include "tools/error.h"
#include "tools/images/storage.h"

namespace zavri::tools {
namespace {

constexpr size_t kMostPoints = 255;
constexpr char kForm[] = "GAIN:THRESH,.. or @FILE";

// What the C definition of this name is initialised with, as JSON; null when there is none.
Report initialiser_in(const std::string& text, const std::string& name) {
  constexpr char kBlanks[] = " \t\r\n";
  for (size_t at = 0; (at = text.find(name + '[', at)) != std::string::npos; ++at) {
    const size_t bound = text.find(']', at);
    const size_t equals = text.find_first_not_of(kBlanks, bound + 1);
    if (bound == std::string::npos || equals == std::string::npos || text[equals] != '=') continue;
    const size_t begin = text.find_first_not_of(kBlanks, equals + 1);
    const size_t end = text.find(';', equals);
    if (begin == std::string::npos || end == std::string::npos) continue;
    std::string list = text.substr(begin, end - begin);
    std::replace(list.begin(), list.end(), '{', '[');
    std::replace(list.begin(), list.end(), '}', ']');
    if (Report::accept(list)) return Report::parse(list);
  }
  return {};
}

bool is_byte(const Report& value) {
  return value.is_number_integer() && value >= 0 && value <= UINT8_MAX;
}

// Says what is wrong with the points, or nothing.
std::string fault_of(const Report& points) {
  const bool well_formed =
      points.is_array() && !points.empty() &&
      std::all_of(points.begin(), points.end(), [](const Report& point) {
        return point.is_array() && point.size() == 2 && is_byte(point[0]) && is_byte(point[1]);
      });
  if (!well_formed) return "points are a gain and a threshold, each 0..255";
  if (points.size() > kMostPoints) {
    return std::to_string(points.size()) + " points, where at most " + std::to_string(kMostPoints) +
           " are taken";
  }
  for (size_t k = 1; k < points.size(); ++k) {
    if (points[k][0] > points[k - 1][0]) continue;
    return "gains ascend, but " + points[k][0].dump() + " stands behind " + points[k - 1][0].dump();
  }
  return "";
}

// "10:0,11:6" as JSON; null when it is not of this form.
Report points_of(const std::string& text) {
  Report points = Report::array();
  for (const std::string& part : split(text, ',')) {
    Report point = Report::array();
    for (const std::string& number : split(part, ':')) {
      const std::optional<int64_t> value = parse_whole(number, INT32_MIN, INT32_MAX);
      if (!value) return {};
      point.push_back(*value);
    }
    points.push_back(point);
  }
  return points;
}

Report read_points(const std::string& path, const TableName& name, const std::string& given) {
  const Bytes bytes = read_file(path);
  Report points = list_in(std::string(bytes.begin(), bytes.end()), name);
  if (!points.is_null()) return points;
  throw Error(given + ": there is no " + name.json + " in JSON and no " + name.c + "[] in C in it");
}

}  // namespace

std::string text_of(const Curve& curve) {
  std::string text;
  for (const T_GainThreshPoint& point : curve) {
    text +=
        (text.empty() ? "" : ",") + std::to_string(point.gain) + ':' + std::to_string(point.value);
  }
  return text;
}

Setting curve_setting(const char* option, Curve& curve, const TableName& name, const char* what) {
  const auto assign = [&curve, name, option](const std::string& text) {
    const std::string given = std::string("--") + option + ' ' + text;
    const bool is_file = !text.empty() && text[0] == '@';
    const Report points = is_file ? read_points(text.substr(1), name, given) : points_of(text);
    const std::string fault = fault_of(points);
    if (!fault.empty()) throw Error(given + ": " + fault + "; an example is 10:0,11:6,15:16,30:20");
    curve.clear();
    for (const Report& point : points) {
      curve.push_back({point[0].get<uint8_t>(), point[1].get<uint8_t>()});
    }
    return true;
  };
  return {option, kForm, what, assign, [&curve] { return text_of(curve); }};
}

Report json_of(const Curve& curve) {
  Report points = Report::array();
  for (const T_GainThreshPoint& point : curve) points.push_back({point.gain, point.value});
  return points;
}

std::string c_initialiser(const Report& list) {
  std::string text = "{";
  for (const Report& item : list) {
    text += (text.size() > 1 ? ", " : "") + (item.is_array() ? c_initialiser(item) : item.dump());
  }
  return text + '}';
}

Report list_in(const std::string& text, const TableName& name) {
  if (!Report::accept(text)) return initialiser_in(text, name.c);
  Report json = Report::parse(text);
  if (json.is_array()) return json;
  return json.is_object() && json.contains(name.json) ? json[name.json] : Report();
}

}  // namespace zavri::tools
