#include <gtest/gtest.h>

#include "device/known_answers.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

TEST(Golden, EveryCaseInEveryBuild) {
  for (const KnownAnswerFile& file : known_answer_files()) {
    for (const std::string& line : known_answer_cases(file)) {
      for (const Build build : builds_here()) {
        const UseBuild use(build);
        EXPECT_EQ(run_known_answer(line), "") << build_name(build) << ": " << line;
      }
    }
  }
}

}  // namespace
}  // namespace zavri::testing
