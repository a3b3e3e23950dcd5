#include "device/conditions.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>

namespace zavri::device {
namespace {

// Returns the first line of a file, or "" when there is none or it may not be read.
std::string first_line(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  return line;
}

long number_in(const std::string& path) { return strtol(first_line(path).c_str(), nullptr, 10); }

}  // namespace

long Conditions::clock_file(int processor, const char* name) const {
  return number_in(root_ + "/devices/system/cpu/cpu" + std::to_string(processor) + "/cpufreq/" +
                   name);
}

std::vector<int> Conditions::fastest_first(std::vector<int> processors) const {
  std::stable_sort(processors.begin(), processors.end(), [this](int a, int b) {
    return clock_file(a, "cpuinfo_max_freq") > clock_file(b, "cpuinfo_max_freq");
  });
  return processors;
}

int Conditions::megahertz(const std::vector<int>& processors) const {
  long kilohertz = 0;
  for (const int processor : processors) {
    kilohertz = std::max(kilohertz, clock_file(processor, "scaling_cur_freq"));
  }
  return static_cast<int>(kilohertz / 1000);
}

std::vector<Conditions::Temperature> Conditions::temperatures() const {
  std::vector<Temperature> temperatures;
  for (int i = 0;; ++i) {
    const std::string zone = root_ + "/class/thermal/thermal_zone" + std::to_string(i);
    std::string type = first_line(zone + "/type");
    if (type.empty()) return temperatures;
    for (char& c : type) {
      if (isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    // Some kernels count degrees and others thousandths; sensors that are off show what no phone
    // survives.
    double degrees = static_cast<double>(number_in(zone + "/temp"));
    if (std::abs(degrees) >= 1000) degrees /= 1000;
    if (degrees > 0 && degrees < 150) temperatures.push_back({type, degrees});
  }
}

}  // namespace zavri::device
