#pragma once

#include "tools/operations/operation.h"
#include "tools/operations/tables.h"

namespace zavri::tools {

// Says what the multi-frame denoise merges, as the record's switches choose it.
enum class Merge { kWhole, kEdges, kEdgesLuma, kChroma };

// Holds the thresholds that the library works with: what it makes of requests, curves, the gain and
// the size of the frames.
struct Thresholds {
  int chroma = 0;
  int luma = 0;

  bool operator==(const Thresholds& other) const {
    return chroma == other.chroma && luma == other.luma;
  }
};

// Merges one to four frames of a scene.
class Denoise : public Operation {
 public:
  static constexpr char kName[] = "denoise";

  static constexpr Count kFrames = {1, 4};

  int thresh = 0;  // as requested; 0 asks for the gain's
  int thresh_luma = 0;
  Curve curve;  // over the gain, of thresholds that are 0; empty: the library's own
  Curve curve_luma;
  Merge merge = Merge::kWhole;
  int gain = 16;
  int reference = 0;  // index of the frame that is denoised
  bool smooth = false;

  Settings settings() override;
  Count takes() const override { return kFrames; }
  void check(const Size& size, int frames) const override;
  // Its figures "thresh" and "thresh_luma" are the thresholds that the library used.
  Result run(const Frames& frames, int runs = 1) const override;

  // Asks the library for the thresholds that it uses with frames of this size. Where no luma is
  // merged, its threshold is 0.
  Thresholds used(const Size& size) const;

  // Tells what it does to frames of this size: settings with the same text give the same
  // bytes.
  std::string effect(const Size& size) const;
};

// Runs one after the other, with settings that may change, on the same frames, which must outlive
// it. Copies of them are made once.
class DenoiseRuns {
 public:
  explicit DenoiseRuns(const Frames& frames) : frames_(frames) {}

  // The result's frame is left empty: it is merged(), until the next run.
  Result run(const Denoise& denoise, int runs = 1);
  const Frame& merged() const { return copies_[worked_]; }

 private:
  // Makes copies with this room, unless those that there are have it.
  void prepare(const Room& room);

  const Frames& frames_;
  Frames copies_;
  Room room_;
  size_t worked_ = 0;
};

// Smooths the chroma of single frames and merges nothing.
class Smooth : public Denoise {
 public:
  static constexpr char kName[] = "smooth";

  Smooth() { smooth = true; }
  Settings settings() override;
  Count takes() const override { return {1, 1}; }
};

}  // namespace zavri::tools
