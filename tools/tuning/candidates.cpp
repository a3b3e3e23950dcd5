#include "tools/tuning/candidates.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>

#include "tools/tuning/plan.h"
#include "tools/tuning/used_thresholds.h"

namespace zavri::tools {
namespace {

// These used thresholds are each about a third above the one before. Beyond the last one frames
// hardly differ from frames that always agree.
constexpr int kUsed[] = {2, 3, 4, 5, 7, 9, 12, 16, 21, 28, 37, 50};

// The modes stand in the order of what they do to a frame: where two are worth the same, the first
// is taken.
constexpr Merge kModes[] = {Merge::kChroma, Merge::kEdgesLuma, Merge::kEdges, Merge::kWhole};

// A mode that merges more must be worth more by so much.
constexpr double kLeastDifference = 0.05;  // dB

std::vector<int> values_for(const Size& size) {
  std::vector<int> values;
  const std::vector<DistinctValue> distinct = distinct_values(size);
  for (const int used : kUsed) {
    const auto reached = std::find_if(distinct.begin(), distinct.end(),
                                      [=](const DistinctValue& d) { return d.used >= used; });
    if (reached == distinct.end()) break;
    if (values.empty() || reached->value > values.back()) values.push_back(reached->value);
  }
  return values;
}

}  // namespace

DenoiseCandidates::DenoiseCandidates(const Size& size) {
  settings_.push_back({Merge::kChroma, 0, 0});
  const std::vector<int> values = values_for(size);
  for (const int chroma : values) {
    settings_.push_back({Merge::kChroma, chroma, 0});
    // Luma's threshold serves chroma, too.
    settings_.push_back({Merge::kEdgesLuma, chroma, chroma});
    settings_.push_back({Merge::kEdges, chroma, chroma});
    for (const int luma : values) settings_.push_back({Merge::kWhole, chroma, luma});
  }
}

std::unique_ptr<Operation> DenoiseCandidates::candidate(size_t index, int gain) const {
  const Setting& setting = settings_[index];
  auto denoise = std::make_unique<Denoise>();
  denoise->gain = gain;
  denoise->merge = setting.merge;
  // A value of 0 can only be had from a curve.
  denoise->curve = {{0, static_cast<uint8_t>(setting.chroma)}};
  denoise->curve_luma = {{0, static_cast<uint8_t>(setting.luma)}};
  return denoise;
}

std::unique_ptr<Operation> DenoiseCandidates::standard(int gain) const {
  auto denoise = std::make_unique<Denoise>();
  denoise->gain = gain;
  return denoise;
}

std::optional<Choice> DenoiseCandidates::choose(const Trials& trials) const {
  const auto ascends = [this](size_t low, size_t high) {
    return settings_[low].chroma <= settings_[high].chroma &&
           settings_[low].luma <= settings_[high].luma;
  };
  std::optional<Choice> best;
  double most = 0;
  for (const Merge mode : kModes) {
    std::vector<size_t> among;
    for (size_t k = 0; k < settings_.size(); ++k) {
      // Without a luma threshold the whole frame's mode merges chroma alone, and without any
      // threshold no mode merges anything.
      const Setting& setting = settings_[k];
      const bool serves_whole = mode == Merge::kWhole && setting.merge == Merge::kChroma;
      if (setting.merge == mode || serves_whole || setting.chroma == 0) among.push_back(k);
    }
    const std::optional<Choice> choice = best_choice(trials, among, planes(), ascends);
    if (!choice) continue;
    const double reached = difference(trials, *choice, planes());
    if (best && reached < most + kLeastDifference) continue;
    best = choice;
    most = reached;
  }
  return best;
}

FoundTables DenoiseCandidates::tables(const Choice& choice) const {
  Merge mode = Merge::kChroma;
  Curve chroma;
  Curve luma;
  for (const auto& [gain, index] : choice) {
    const Setting& setting = settings_[index];
    if (setting.merge != Merge::kChroma) mode = setting.merge;
    chroma.push_back({static_cast<uint8_t>(gain), static_cast<uint8_t>(setting.chroma)});
    luma.push_back({static_cast<uint8_t>(gain), static_cast<uint8_t>(setting.luma)});
  }
  return threshold_tables(mode, chroma, luma);
}

ChromaCandidates::ChromaCandidates() {
  for (const int taps : {7, 11, 15, 19}) {
    for (const int threshold : {3, 4, 6, 8, 11, 16, 22, 30, 42, 60, 90}) {
      // Weights range from those that fall within the threshold to nearly even ones.
      for (const double falloff : {0.35, 0.5, 0.8, 1.5}) {
        Chroma chroma;
        chroma.taps = taps;
        chroma.threshold = threshold;
        chroma.falloff = falloff * threshold;
        settings_.push_back(chroma);
      }
    }
  }
}

std::unique_ptr<Operation> ChromaCandidates::candidate(size_t index, int) const {
  return std::make_unique<Chroma>(settings_[index]);
}

std::unique_ptr<Operation> ChromaCandidates::standard(int) const {
  return std::make_unique<Chroma>();
}

std::optional<Choice> ChromaCandidates::choose(const Trials& trials) const {
  std::vector<size_t> all(settings_.size());
  std::iota(all.begin(), all.end(), size_t{0});
  return best_choice(trials, all, planes(), std::equal_to<>());
}

FoundTables ChromaCandidates::tables(const Choice& choice) const {
  return weight_tables(settings_[choice.begin()->second]);
}

Trial try_all(const Candidates& candidates, Judge& judge, const std::string& picture, int gain,
              Progress& progress) {
  Trial trial{picture, gain, judge.moves(), judge.before(), {}, {}};
  trial.standard = judge.judge(*candidates.standard(gain)).score;
  if (candidates.planes() == Planes::kBoth && !trial.moves) {
    progress.step(candidates.count());
    return trial;
  }
  // At some gains several candidates do the same.
  std::map<std::string, Score> known;
  for (size_t k = 0; k < candidates.count(); ++k) {
    const std::unique_ptr<Operation> operation = candidates.candidate(k, gain);
    const std::string effect = effect_of(*operation, judge.size());
    auto found = known.find(effect);
    if (found == known.end()) found = known.emplace(effect, judge.judge(*operation).score).first;
    trial.scores.push_back(found->second);
    progress.step();
  }
  return trial;
}

}  // namespace zavri::tools
