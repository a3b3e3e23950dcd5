#include <cstdio>

#include "device/commands.h"
#include "device/known_answers.h"
#include "device/scaler.h"

namespace zavri::device {

// The known answers hold with the portable Gaussian, whatever a phone's vendor has.
int verify() {
  use_gaussian(portable_scaler().gaussian);
  size_t all = 0;
  size_t wrong = 0;
  for (const KnownAnswerFile& file : known_answer_files()) {
    size_t passed = 0;
    const std::vector<std::string> cases = known_answer_cases(file);
    for (const std::string& line : cases) {
      const std::string difference = run_known_answer(line);
      if (difference.empty()) {
        ++passed;
      } else {
        printf("wrong: %s: %s\n", difference.c_str(), line.c_str());
      }
    }
    printf("%-14s %3zu of %3zu\n", file.name, passed, cases.size());
    fflush(stdout);
    all += cases.size();
    wrong += cases.size() - passed;
  }
  printf("%-14s %3zu of %3zu\n", "all", all - wrong, all);
  return wrong == 0 ? 0 : 1;
}

}  // namespace zavri::device
