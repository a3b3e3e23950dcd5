#include "tests/support/golden.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zavri::testing {

uint32_t GoldenCase::number(const std::string& key) const {
  return static_cast<uint32_t>(std::stoul(values.at(key)));
}

uint64_t GoldenCase::hash() const { return std::stoull(values.at("hash"), nullptr, 16); }

std::ostream& operator<<(std::ostream& out, const GoldenCase& golden) { return out << golden.text; }

std::vector<GoldenCase> load_golden(const std::string& file) {
  std::ifstream in(std::string(ZAVRI_TEST_DATA) + "/golden/" + file);
  std::vector<GoldenCase> cases;
  std::string line;
  while (std::getline(in, line)) {
    GoldenCase golden;
    golden.text = line;
    std::istringstream words(line);
    words >> golden.operation;
    for (std::string word; words >> word;) {
      const size_t equals = word.find('=');
      if (equals == std::string::npos) throw std::runtime_error(file + ": no value in " + word);
      golden.values[word.substr(0, equals)] = word.substr(equals + 1);
    }
    cases.push_back(golden);
  }
  return cases;
}

std::vector<uint8_t> golden_buffer(const GoldenCase& golden, uint32_t index) {
  std::vector<uint8_t> bytes(golden.number("size"));
  const uint32_t shift = golden.number("shift");
  const uint32_t span = golden.number("span");
  uint32_t x = golden.number("seed") + index;
  if (x == 0) x = 1;
  for (size_t i = 0; i < bytes.size(); ++i) {
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    bytes[i] = static_cast<uint8_t>(40 + ((i >> shift) & 127) + x % span);
  }
  return bytes;
}

uint64_t fnv1a(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 1469598103934665603u;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 1099511628211u;
  return hash;
}

}  // namespace zavri::testing
