#pragma once

#include <vector>

#include "tools/console.h"
#include "tools/report/page.h"
#include "tools/tuning/candidates.h"

namespace zavri::tools {

// Says what a tuning tells: which settings to use instead of the defaults, if any.
enum class Advice {
  kUse,
  kMergeChromaAlone,
  kKeepDefault,
  kNothingMoves,  // the bursts cannot tell where ghosts begin
};

struct Tuning {  // NOLINT(bugprone-exception-escape): JSON values move without throwing.
  Advice advice = Advice::kKeepDefault;
  Choice choice;       // with the first two
  FoundTables tables;  // of the choice
  HeldOut held_out;
  Trials trials;  // that were chosen by; with kNothingMoves, all
  Planes planes = Planes::kBoth;
};

// Chooses by all trials, for merging by those in which something moves. Settings that on pictures
// which they were not chosen by are not better than the defaults, as far as the spread over the
// pictures tells, are not advised.
Tuning tune(const Candidates& candidates, Trials trials, uint64_t seed);

// Tells people and scripts the advice in words, the difference to the defaults with its spread, and
// tables of the three numbers by picture and by gain.
Report report_of(const Tuning& tuning);

ReportPage page_of_tuning(const Tuning& tuning);

}  // namespace zavri::tools
