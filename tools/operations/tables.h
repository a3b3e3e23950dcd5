#pragma once

#include <zavricustpro.h>

#include <string>
#include <vector>

#include "tools/console.h"
#include "tools/operations/setting.h"

// These are the tables that the library's records take, and their forms as text.
namespace zavri::tools {

// A curve has thresholds over the sensor gain, which ascends.
using Curve = std::vector<T_GainThreshPoint>;

// Writes a curve as "10:0,11:6".
std::string text_of(const Curve& curve);

// Says what a table is called in files.
struct TableName {
  const char* json;
  const char* c;
};
constexpr TableName kThreshTable{"thresh_table", "thresh_table"};
constexpr TableName kThreshLumaTable{"thresh_luma_table", "threshY_table"};
constexpr TableName kWeightTable{"weight_table", "weight_table"};

// Takes "10:0,11:6", or "@FILE" with the table of that name in JSON or C.
Setting curve_setting(const char* option, Curve& curve, const TableName& name, const char* what);

// Writes a curve as [[10, 0], [11, 6]].
Report json_of(const Curve& curve);

// Returns what a C source has behind the "=" of an array's definition: "{{10, 0}, {11, 6}}".
std::string c_initialiser(const Report& list);

// Finds the table of that name in the text, which is a JSON object, the list itself in JSON, or C
// with a definition such as "name[] = {{10, 0}, {11, 6}};". Null when there is none.
Report list_in(const std::string& text, const TableName& name);

}  // namespace zavri::tools
