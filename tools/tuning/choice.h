#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/tuning/bootstrap.h"
#include "tools/tuning/weighting.h"

namespace zavri::tools {

// Tells what every candidate of a tuning made of one burst.
struct Trial {
  std::string picture;
  int gain = 0;
  bool moves = false;         // a part is known to, so that ghosts can be told
  Score before;               // of the noisy frame
  Score standard;             // of the default settings
  std::vector<Score> scores;  // by candidate
};
using Trials = std::vector<Trial>;

// A choice has a candidate for each gain, one at least; other gains take that of the nearest.
using Choice = std::map<int, size_t>;

// Finds the choice for the gains of the trials that is worth most, of candidates that leave no
// ghosts in any of them. From gain to gain, `may_follow` tells which candidates may stand at a
// lower and the next higher one. Returns nothing if there is no such choice.
std::optional<Choice> best_choice(const Trials& trials, const std::vector<size_t>& among,
                                  Planes planes,
                                  const std::function<bool(size_t, size_t)>& may_follow);

// Returns what the choice is worth above the default settings, in dB, in the mean of the trials.
double difference(const Trials& trials, const Choice& choice, Planes planes);

// Tells how choices did on pictures that they were not made by.
struct HeldOut {
  struct Picture {
    std::string name;
    double difference = 0;
    Score tuned;  // means over the gains
    Score standard;
  };
  std::vector<Picture> pictures;
  Spread difference;
  bool is_held_out = false;  // false: there was one picture, which the choice was made by
};

// Chooses by every second picture and judges by the others, and the reverse. Where choose() finds
// nothing for a picture, the difference is 0.
HeldOut hold_out(const Trials& trials, Planes planes, uint64_t seed,
                 const std::function<std::optional<Choice>(const Trials&)>& choose);

}  // namespace zavri::tools
