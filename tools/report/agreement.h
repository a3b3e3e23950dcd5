#pragma once

#include <vector>

#include "tools/images/frame.h"
#include "tools/report/page.h"

namespace zavri::tools {

// How the merge of whole frames decides, with the thresholds that the library used. Another frame
// agrees with the reference where both of its chroma bytes differ by less than `thresh`; the luma
// of these frames is merged where the mean differs from the reference by less than `thresh_luma`.
struct MergeRule {
  size_t reference = 0;
  int thresh = 0;
  int thresh_luma = 0;
  bool merges_luma = true;
};

// Maps of how many frames went into the chroma and into the luma besides the reference.
std::vector<PageAgreement> agreements(const std::vector<Frame>& frames, const MergeRule& rule);

}  // namespace zavri::tools
