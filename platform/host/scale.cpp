#include "platform/host/scale.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/host/scale_double.h"
#include "platform/host/scale_rows.h"
#include "platform/host/scale_taps.h"

namespace zavri::host {
namespace {

struct Free {
  void operator()(void* block) const { free(block); }
};

// Holds arrays with one entry for each column of the result, in one block of memory.
class Columns {
 public:
  explicit Columns(uint32_t count) : count_((size_t{count} + kAlign - 1) / kAlign * kAlign) {
    size_t bytes = 0;
    void* block = nullptr;
    if (!__builtin_mul_overflow(count_, kBytes, &bytes) &&
        posix_memalign(&block, kAlign, bytes) == 0) {
      block_.reset(block);
    }
  }

  explicit operator bool() const { return block_ != nullptr; }

  uint32_t* first() const { return static_cast<uint32_t*>(block_.get()); }
  uint32_t* windows() const { return first() + count_; }
  uint16_t* pairs() const { return array(0); }
  int16_t* weights(uint32_t tap) const { return signed_array(2 + tap); }
  uint16_t* pair_weights() const { return array(1); }
  int16_t* sums(uint32_t row) const { return signed_array(2 + kTaps + row); }

 private:
  // The block begins at a multiple of so many bytes and each array has a multiple of so many
  // entries: no two arrays share a cache line.
  static constexpr size_t kAlign = 64;
  static constexpr size_t kTaps = 4;
  static constexpr size_t kBytes = 2 * sizeof(uint32_t) + (2 + 2 * kTaps) * sizeof(uint16_t);

  uint16_t* array(size_t index) const {
    return reinterpret_cast<uint16_t*>(windows() + count_) + index * count_;
  }

  int16_t* signed_array(size_t index) const { return reinterpret_cast<int16_t*>(array(index)); }

  size_t count_;
  std::unique_ptr<void, Free> block_;
};

void copy(const Source& source, const Target& target) {
  for (uint32_t y = 0; y < target.height; ++y) {
    memcpy(target.row(y), source.row(y), target.width);
  }
}

// Returns the sample that contains a position given in half samples, where sample k reaches from
// 2k - 1 to 2k + 1. A position of 2.7, say, is floored to 2, and (2 + 1) >> 1 is sample 1, which
// reaches from 1 to 3.
uint32_t containing(const Positions& halves) {
  return static_cast<uint32_t>((halves.floor() + 1) >> 1);
}

void scale_nearest(const Source& source, const Target& target, const Columns& columns) {
  Positions along(source.width, target.width, 1);
  for (uint32_t x = 0; x < target.width; ++x, along.advance()) {
    columns.first()[x] = containing(along);
  }
  Positions across(source.height, target.height, 1);
  for (uint32_t y = 0; y < target.height; ++y, across.advance()) {
    const uint8_t* const from = source.row(containing(across));
    uint8_t* const to = target.row(y);
    for (uint32_t x = 0; x < target.width; ++x) to[x] = from[columns.first()[x]];
  }
}

// Plans the lookups of an enlargement, whose kWindowOutputs neighbouring samples have their taps
// within one window of the source. A sample's first two taps stand at d and d + 1 of its window:
// d * 0x101 puts d into both bytes of the pair, 0x100 adds 1 to the high one, so that 5 becomes
// 0x0605.
void plan_windows(const Columns& columns, uint32_t source_count, uint32_t count) {
  const uint32_t* const first = columns.first();
  const uint32_t last_window = source_count - static_cast<uint32_t>(kWindow);
  for (uint32_t x = 0; x < count; x += kWindowOutputs) {
    const uint32_t window = std::min(first[x], last_window);
    columns.windows()[x / kWindowOutputs] = window;
    const uint32_t end = std::min<uint32_t>(x + kWindowOutputs, count);
    for (uint32_t i = x; i < end; ++i) {
      columns.pairs()[i] = static_cast<uint16_t>((first[i] - window) * 0x101 + 0x100);
    }
  }
}

// Puts the two weights of a linear sample into one pair of bytes. A weight of 256, beside one of 0,
// fits no byte: both bytes are 128 then, and both taps are the one that weighs 256.
void plan_pair_weights(const Columns& columns, uint32_t count) {
  constexpr int kWhole = 256;
  for (uint32_t x = 0; x < count; ++x) {
    const int low = columns.weights(0)[x];
    const int high = columns.weights(1)[x];
    uint16_t& pair = columns.pairs()[x];
    if (low == kWhole) pair = static_cast<uint16_t>((pair & 0xff) * 0x101);
    if (high == kWhole) pair = static_cast<uint16_t>((pair >> 8) * 0x101);
    columns.pair_weights()[x] =
        static_cast<uint16_t>(low == kWhole || high == kWhole ? 0x8080 : low | high << 8);
  }
}

template <class TapWalk>
RowPlan plan_row(const Columns& columns, TapWalk walk, uint32_t from, uint32_t to) {
  RowPlan plan{};
  plan.count = to;
  plan.source_count = from;
  plan.first = columns.first();
  for (uint32_t j = 0; j < TapWalk::kCount; ++j) plan.weights[j] = columns.weights(j);
  for (uint32_t x = 0; x < to; ++x) {
    const Taps taps = walk.next();
    columns.first()[x] = taps.first;
    for (uint32_t j = 0; j < TapWalk::kCount; ++j) columns.weights(j)[x] = taps.weights[j];
  }
  if (from >= kWindow && from <= to) {
    plan_windows(columns, from, to);
    if (TapWalk::kCount == 2) plan_pair_weights(columns, to);
    plan.windows = columns.windows();
    plan.pair_weights = columns.pair_weights();
    plan.pairs = columns.pairs();
  }
  return plan;
}

// Filters every source row at most once: there are as many rows of sums as taps, and a new one
// takes the place of the one that is needed no longer.
template <class TapWalk>
void scale_rows(const Source& source, const Target& target, const Columns& columns, Scheme scheme,
                const TapWalk& along, TapWalk across) {
  constexpr uint32_t kTaps = TapWalk::kCount;
  const RowPlan plan = plan_row(columns, along, source.width, target.width);
  const auto& kernel = scale_row_kernels().get(scheme);
  uint32_t done = 0;  // rows before this one are filtered or not needed
  for (uint32_t y = 0; y < target.height; ++y) {
    const Taps taps = across.next();
    const uint32_t end = std::min(taps.first + kTaps, source.height);
    for (done = std::max(done, taps.first); done < end; ++done) {
      kernel.filter(plan, source.row(done), columns.sums(done % kTaps));
    }
    const int16_t* rows[kTaps];
    for (uint32_t j = 0; j < kTaps; ++j) {
      // A row past the end weighs 0, so that any other can stand for it.
      rows[j] = columns.sums(std::min(taps.first + j, source.height - 1) % kTaps);
    }
    kernel.mix(rows, taps.weights, target.width, target.row(y));
  }
}

void scale_linear(const Source& source, const Target& target, const Columns& columns) {
  int bits_along = LinearTaps::bits_needed(source.width, target.width);
  int bits_across = LinearTaps::bits_needed(source.height, target.height);
  const bool is_short = bits_along + bits_across <= LinearTaps::kMostBits;
  if (!is_short) bits_along = LinearTaps::kMostBits;
  bits_across = is_short ? LinearTaps::kMostBits - bits_along : LinearTaps::kMostBits;
  scale_rows(source, target, columns, is_short ? Scheme::kLinearShort : Scheme::kLinear,
             LinearTaps(source.width, target.width, bits_along),
             LinearTaps(source.height, target.height, bits_across));
}

void scale_spline(const Source& source, const Target& target, const Columns& columns) {
  scale_rows(source, target, columns, Scheme::kSpline, SplineTaps(source.width, target.width),
             SplineTaps(source.height, target.height));
}

// Tells whether the kernels for exactly twice the size can be used.
bool doubles(const Source& source, const Target& target) {
  return source.width >= double_kernels().shortest && target.width / 2 == source.width &&
         target.width % 2 == 0 && target.height / 2 == source.height && target.height % 2 == 0;
}

// Returns row y, or the nearest one inside the plane.
template <class Byte>
Byte* row_near(const Plane<Byte>& plane, int64_t y) {
  return plane.row(static_cast<uint32_t>(std::clamp<int64_t>(y, 0, int64_t{plane.height} - 1)));
}

// Before the first row of the source and behind its last one lies one row of the result each: the
// two that the kernel makes there are equal.
void double_linear(const Source& source, const Target& target) {
  for (int64_t y = -1; y < source.height; ++y) {
    double_kernels().linear(row_near(source, y), row_near(source, y + 1), source.width,
                            row_near(target, 2 * y + 1), row_near(target, 2 * y + 2));
  }
}

void double_spline(const Source& source, const Target& target, const Columns& columns) {
  int16_t* const sums = columns.sums(0) + 1;
  for (int64_t y = 0; y < target.height; ++y) {
    const int64_t nearest = y / 2;
    const int64_t onward = y % 2 == 0 ? -1 : 1;  // away from the nearest row
    const uint8_t* rows[4];
    for (int64_t j = 0; j < 4; ++j) rows[j] = row_near(source, nearest + (j - 1) * onward);
    double_kernels().spline(rows, source.width, sums, row_near(target, y));
  }
}

}  // namespace

bool scale(const Source& source, const Target& target, Interpolation interpolation) {
  if (source.width == target.width && source.height == target.height) {
    copy(source, target);
    return true;
  }
  const Columns columns(target.width);
  if (!columns) return false;
  switch (interpolation) {
    case Interpolation::kNearest:
      scale_nearest(source, target, columns);
      break;
    case Interpolation::kLinear:
      if (doubles(source, target)) {
        double_linear(source, target);
      } else {
        scale_linear(source, target, columns);
      }
      break;
    case Interpolation::kSpline:
      if (doubles(source, target)) {
        double_spline(source, target, columns);
      } else {
        scale_spline(source, target, columns);
      }
      break;
  }
  return true;
}

}  // namespace zavri::host
