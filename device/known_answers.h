#pragma once

#include <string>
#include <vector>

namespace zavri {

// The known answers of tests/golden, whose README describes them, are packed into the program.
struct KnownAnswerFile {
  const char* name;  // without an ending
  const char* text;  // one case a line
};

const std::vector<KnownAnswerFile>& known_answer_files();

std::vector<std::string> known_answer_cases(const KnownAnswerFile& file);

// Runs a case through the library's exported functions. Returns "" when the answer is the known
// one, and otherwise what differs.
std::string run_known_answer(const std::string& line);

}  // namespace zavri
