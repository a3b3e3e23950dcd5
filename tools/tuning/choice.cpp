#include "tools/tuning/choice.h"

#include <algorithm>
#include <cstdlib>

namespace zavri::tools {
namespace {

std::vector<std::string> pictures_of(const Trials& trials) {
  std::vector<std::string> names;
  for (const Trial& trial : trials) {
    if (std::find(names.begin(), names.end(), trial.picture) == names.end()) {
      names.push_back(trial.picture);
    }
  }
  return names;
}

template <class Keep>
Trials filtered(const Trials& trials, Keep keep) {
  Trials kept;
  std::copy_if(trials.begin(), trials.end(), std::back_inserter(kept), keep);
  return kept;
}

// Returns the candidate for the gain, or for the one next to it.
size_t candidate_at(const Choice& choice, int gain) {
  const auto nearest =
      std::min_element(choice.begin(), choice.end(), [=](const auto& a, const auto& b) {
        return std::abs(a.first - gain) < std::abs(b.first - gain);
      });
  return nearest->second;
}

HeldOut::Picture judged(const std::string& name, const Trials& trials,
                        const std::optional<Choice>& choice, Planes planes) {
  std::vector<Score> tuned;
  std::vector<Score> standard;
  for (const Trial& trial : trials) {
    standard.push_back(trial.standard);
    tuned.push_back(choice ? trial.scores[candidate_at(*choice, trial.gain)] : trial.standard);
  }
  return {name, choice ? difference(trials, *choice, planes) : 0, mean_of(tuned),
          mean_of(standard)};
}

// Returns what the candidate is worth in all trials; nothing if it leaves ghosts in one.
std::optional<double> total_worth(const Trials& trials, size_t candidate, Planes planes) {
  double sum = 0;
  for (const Trial& trial : trials) {
    const Score& score = trial.scores[candidate];
    if (!is_free_of_ghosts(score, trial.before, trial.standard)) return {};
    sum += worth(planes, score, trial.before);
  }
  return sum;
}

// Holds the most that a choice up to some gain is worth which ends with a candidate.
struct Chain {
  double worth = 0;
  size_t before = 0;  // the candidate at the gain below
};
using Chains = std::map<size_t, Chain>;

// Finds the best chain to the gain above, for a candidate that is worth so much there.
std::optional<Chain> longer(const Chains& chains, size_t candidate, double worth,
                            const std::function<bool(size_t, size_t)>& may_follow) {
  std::optional<Chain> best;
  for (const auto& [last, chain] : chains) {
    if (!may_follow(last, candidate) || (best && chain.worth + worth <= best->worth)) continue;
    best = {chain.worth + worth, last};
  }
  return best;
}

}  // namespace

std::optional<Choice> best_choice(const Trials& trials, const std::vector<size_t>& among,
                                  Planes planes,
                                  const std::function<bool(size_t, size_t)>& may_follow) {
  std::map<int, Trials> by_gain;
  for (const Trial& trial : trials) by_gain[trial.gain].push_back(trial);
  std::map<int, Chains> chains;
  for (const auto& [gain, own] : by_gain) {
    const Chains* const below = chains.empty() ? nullptr : &chains.rbegin()->second;
    Chains here;
    for (const size_t candidate : among) {
      const std::optional<double> worth = total_worth(own, candidate, planes);
      if (!worth) continue;
      const std::optional<Chain> chain =
          below == nullptr ? Chain{*worth, 0} : longer(*below, candidate, *worth, may_follow);
      if (chain) here[candidate] = *chain;
    }
    if (here.empty()) return {};
    chains[gain] = here;
  }
  const Chains& last = chains.rbegin()->second;
  size_t candidate = std::max_element(last.begin(), last.end(), [](const auto& a, const auto& b) {
                       return a.second.worth < b.second.worth;
                     })->first;
  Choice choice;
  for (auto gain = chains.rbegin(); gain != chains.rend(); ++gain) {
    choice[gain->first] = candidate;
    candidate = gain->second[candidate].before;
  }
  return choice;
}

double difference(const Trials& trials, const Choice& choice, Planes planes) {
  double sum = 0;
  for (const Trial& trial : trials) {
    sum += worth(planes, trial.scores[candidate_at(choice, trial.gain)], trial.before) -
           worth(planes, trial.standard, trial.before);
  }
  return sum / static_cast<double>(trials.size());
}

HeldOut hold_out(const Trials& trials, Planes planes, uint64_t seed,
                 const std::function<std::optional<Choice>(const Trials&)>& choose) {
  const std::vector<std::string> names = pictures_of(trials);
  const auto is_even = [&](const Trial& trial) {
    return (std::find(names.begin(), names.end(), trial.picture) - names.begin()) % 2 == 0;
  };
  HeldOut held;
  held.is_held_out = names.size() > 1;
  const auto chosen_for = [&](bool even) {
    return choose(held.is_held_out
                      ? filtered(trials, [&](const Trial& t) { return is_even(t) != even; })
                      : trials);
  };
  const std::optional<Choice> choices[] = {chosen_for(false), chosen_for(true)};
  std::vector<double> differences;
  for (const std::string& name : names) {
    const Trials own = filtered(trials, [&](const Trial& t) { return t.picture == name; });
    held.pictures.push_back(judged(name, own, choices[is_even(own.front()) ? 1 : 0], planes));
    differences.push_back(held.pictures.back().difference);
  }
  held.difference = bootstrap(differences, seed);
  return held;
}

}  // namespace zavri::tools
