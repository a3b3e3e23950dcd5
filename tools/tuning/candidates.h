#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "tools/operations/chroma.h"
#include "tools/operations/denoise.h"
#include "tools/tuning/bursts.h"
#include "tools/tuning/choice.h"
#include "tools/tuning/found_tables.h"
#include "tools/tuning/judge.h"
#include "tools/tuning/progress.h"

namespace zavri::tools {

// Candidates are the settings among which a tuning chooses.
class Candidates {
 public:
  virtual ~Candidates() = default;

  virtual Planes planes() const = 0;
  virtual size_t count() const = 0;
  virtual std::unique_ptr<Operation> candidate(size_t index, int gain) const = 0;
  virtual std::unique_ptr<Operation> standard(int gain) const = 0;

  // Finds the best candidates for the gains of the trials that make one tuning; returns nothing
  // where all leave ghosts.
  virtual std::optional<Choice> choose(const Trials& trials) const = 0;
  virtual FoundTables tables(const Choice& choice) const = 0;
};

// These are modes and thresholds of the multi-frame denoise. A tuning has one mode, and for each
// gain two thresholds that are not below those of lower gains.
class DenoiseCandidates : public Candidates {
 public:
  // The thresholds lead to about evenly spaced used ones with frames of this size.
  explicit DenoiseCandidates(const Size& size);

  Planes planes() const override { return Planes::kBoth; }
  size_t count() const override { return settings_.size(); }
  std::unique_ptr<Operation> candidate(size_t index, int gain) const override;
  std::unique_ptr<Operation> standard(int gain) const override;
  std::optional<Choice> choose(const Trials& trials) const override;
  FoundTables tables(const Choice& choice) const override;

 private:
  // Holds thresholds as a curve has them, before they are scaled.
  struct Setting {
    Merge merge;
    int chroma;
    int luma;
  };

  std::vector<Setting> settings_;
};

// These are windows and weights of the chroma denoise. A tuning has one for all gains, since its
// record knows no gain.
class ChromaCandidates : public Candidates {
 public:
  ChromaCandidates();

  Planes planes() const override { return Planes::kChroma; }
  size_t count() const override { return settings_.size(); }
  std::unique_ptr<Operation> candidate(size_t index, int gain) const override;
  std::unique_ptr<Operation> standard(int gain) const override;
  std::optional<Choice> choose(const Trials& trials) const override;
  FoundTables tables(const Choice& choice) const override;

 private:
  std::vector<Chroma> settings_;
};

// Judges every candidate on a burst. Where nothing moves, which tells nothing of merging,
// candidates that merge are not judged.
Trial try_all(const Candidates& candidates, Judge& judge, const std::string& picture, int gain,
              Progress& progress);

}  // namespace zavri::tools
