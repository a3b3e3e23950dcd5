#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

// Known-answer cases as tests/golden/README.md describes them.
namespace zavri::testing {

struct GoldenCase {
  std::string operation;
  std::string text;  // the whole line
  std::map<std::string, std::string> values;

  uint32_t number(const std::string& key) const;
  uint64_t hash() const;
};

std::ostream& operator<<(std::ostream& out, const GoldenCase& golden);

// All cases of tests/golden/<file>; none is a failure of the caller's test.
std::vector<GoldenCase> load_golden(const std::string& file);

// A buffer filled as the case says, from `seed` + `index`.
std::vector<uint8_t> golden_buffer(const GoldenCase& golden, uint32_t index = 0);

uint64_t fnv1a(const std::vector<uint8_t>& bytes);

}  // namespace zavri::testing
