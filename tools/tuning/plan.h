#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/console.h"
#include "tools/operations/operation.h"

namespace zavri::tools {

// An axis has the values, as texts, of one setting of an operation.
struct Axis {
  std::string name;  // "thresh-luma"
  std::vector<std::string> values;
};
using Axes = std::vector<Axis>;

// A point of a sweep sets these settings; others keep their defaults.
using Point = std::vector<std::pair<std::string, std::string>>;

// Returns options that take lists of values for the settings of both operations that are swept:
// each adds an axis. Both operations have settings of their own, whose names do not collide.
Settings axis_settings(Axes& axes);

std::unique_ptr<Operation> operation_at(const std::string& operation, const Point& point);

// Makes a row such as {"mode": "whole", "thresh_luma": 20}.
Report row_of(const Point& point);

// Makes options for a shell, such as " --mode whole --thresh-luma 20".
std::string options_of(const Point& point);

// Tells what the operation does to frames of this size: operations with the same text do the same.
std::string effect_of(Operation& operation, const Size& size);

struct Plan {
  std::vector<Point> points;
  size_t repeated = 0;  // combinations that are left out
};

// Plans all combinations of the axes, without those with which the library would do the same to
// frames of this size as with an earlier one. Throws an Error if an axis is no setting of the
// operation, "denoise" or "chroma", or one of its values does not go with others.
Plan make_plan(const std::string& operation, const Axes& axes, const Size& size, int frames);

}  // namespace zavri::tools
