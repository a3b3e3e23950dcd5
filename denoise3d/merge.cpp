#include "denoise3d/merge.h"

#include <cstdlib>

#include "simd/overlap.h"
#include "simd/vec.h"

namespace zavri {
namespace {

constexpr bool uses_ramp(MergeKind kind) {
  return kind == MergeKind::kEdges || kind == MergeKind::kEdgesLuma;
}
constexpr bool writes_chroma(MergeKind kind) { return kind != MergeKind::kEdgesLuma; }
constexpr bool writes_luma(MergeKind kind) { return kind != MergeKind::kChroma; }

// Returns the mean of `count` values with the sum `sum`. Three values count the reference twice and
// round otherwise than four do: tuned devices rely on both.
uint8_t mean(int sum, int reference, int count) {
  if (count == 2) return static_cast<uint8_t>((sum + 1) >> 1);
  if (count == 3) return static_cast<uint8_t>((sum + reference + 2) >> 2);
  return static_cast<uint8_t>((sum + 1) >> 2);
}

// Returns the mean of r, the reference, and those of other[0, kOthers) whose mask is set. No step
// of it leaves the bytes, because each averages two values:
//   two     (r + a + 1) >> 1        = avg_round_up(r, a)
//   three   (2r + a + b + 2) >> 2   = avg_round_up(avg_round_down(a, b), r): with a + b = 2f + e
//                                     the sum is 2(r + f + 1) + e, and an even number stays in its
//                                     quarter when e, 0 or 1, is added
//   four    (r + a + b + c + 1) >> 2: with r + a = 2p + d and b + c = 2q + e the sum is
//                                     2(p + q) + d + e + 1, where d + e + 1 reaches 2, and so
//                                     rounds (p + q) / 2 up, exactly when d or e is 1
// One formula serves all counts: the frames that agree stand in for those that do not. With a alone
// of three frames it is avg_round_up(avg_round_down(a, a), r), the mean of two. Where none agrees
// the result means nothing.
template <int kOthers>
ZAVRI_INLINE U8 mean(U8 r, const U8* other, const U8* agrees) {
  const U8 o0 = other[0];
  const U8 m0 = agrees[0];
  if constexpr (kOthers == 1) {
    return avg_round_up(r, o0);
  } else if constexpr (kOthers == 2) {
    const U8 a = select(m0, o0, other[1]);
    const U8 b = select(agrees[1], other[1], o0);
    return avg_round_up(avg_round_down(a, b), r);
  } else {
    const U8 o1 = other[1];
    const U8 o2 = other[2];
    const U8 m1 = agrees[1];
    const U8 m2 = agrees[2];
    const U8 a = select(m0, o0, select(m1, o1, o2));
    const U8 b = select(m2, o2, select(m1, o1, o0));
    const U8 of_some = avg_round_up(avg_round_down(a, b), r);
    const U8 p = avg_round_down(r, o0);
    const U8 q = avg_round_down(o1, o2);
    const U8 odd = ((r ^ o0) | (o1 ^ o2)) & 1;
    const U8 of_all = avg_round_down(p, q) + ((p ^ q) & odd);
    return select(m0 & m1 & m2, of_all, of_some);
  }
}

bool within(int value, int reference, int limit) { return std::abs(value - reference) <= limit; }

// Returns a mask of the pairs of which both bytes are within the limits of the reference.
ZAVRI_INLINE U8 pairs_within(U8 pairs, U8 reference, U8 limits) {
  return (U8)((U16)saturating_sub(abs_diff(pairs, reference), limits) == 0);
}

// Applies the rule to the position at offset b.
template <MergeKind kKind, int kOthers>
void merge_position(const MergeRow& row, size_t b, const MergeLimits& limits) {
  const int limit = uses_ramp(kKind) ? limits.ramp[b] : limits.chroma;
  const int u = row.uv[b];
  const int v = row.uv[b + 1];
  const int y = writes_luma(kKind) ? row.y0[b] : 0;
  int sum_u = u;
  int sum_v = v;
  int sum_y = y;
  int count = 1;
  for (int k = 0; k < kOthers; ++k) {
    const int other_u = row.other_uv[k][b];
    const int other_v = row.other_uv[k][b + 1];
    if (!within(other_u, u, limit) || !within(other_v, v, limit)) continue;
    sum_u += other_u;
    sum_v += other_v;
    if (writes_luma(kKind)) sum_y += row.other_y[k][b];
    ++count;
  }
  if (count == 1) return;

  if (writes_chroma(kKind)) {
    row.uv[b] = mean(sum_u, u, count);
    row.uv[b + 1] = mean(sum_v, v, count);
  }
  if (writes_luma(kKind)) {
    const uint8_t merged = mean(sum_y, y, count);
    if (!within(merged, y, uses_ramp(kKind) ? limit : limits.luma)) return;
    row.y0[b] = row.y0[b + 1] = merged;
    row.y1[b] = row.y1[b + 1] = merged;
  }
}

// Samples are what a vector of positions reads of one plane.
template <int kOthers>
struct Samples {
  U8 reference;
  U8 other[kOthers];

  ZAVRI_INLINE Samples(uint8_t** row, const uint8_t** other_rows) : reference(load_next(row)) {
    for (int k = 0; k < kOthers; ++k) other[k] = load_next(&other_rows[k]);
  }
};

// An Agreement has masks of positions: of[k] where other frame k agrees with the reference, of_some
// where at least one does.
template <int kOthers>
struct Agreement {
  U8 of[kOthers];
  U8 of_some;
};

// The even byte of a pair is the merged luma, which the rule tests and writes to both columns: the
// limit of the odd byte lets everything pass.
struct VectorLimits {
  U8 chroma;
  U8 luma;

  ZAVRI_INLINE VectorLimits(U8 chroma_limits, U8 luma_limits)
      : chroma(chroma_limits), luma((U8)((U16)luma_limits | 0xff00)) {}
};

// Finds where the other frames agree with the reference, merges the chroma of a vector, and writes
// back the bytes that stay as they are.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE Agreement<kOthers> merge_chroma(MergeRow* to, const Samples<kOthers>& uv, U8 limits) {
  Agreement<kOthers> agreement{};
  for (int k = 0; k < kOthers; ++k) {
    agreement.of[k] = pairs_within(uv.other[k], uv.reference, limits);
    agreement.of_some |= agreement.of[k];
  }
  if constexpr (writes_chroma(kKind)) {
    const U8 merged = mean<kOthers>(uv.reference, uv.other, agreement.of);
    store_next(&to->uv, select(agreement.of_some, merged, uv.reference));
  }
  return agreement;
}

// Merges the luma of a vector, and writes back the bytes that stay as they are.
template <int kOthers>
ZAVRI_INLINE void merge_luma(MergeRow* to, const Samples<kOthers>& y0, U8 y1,
                             const Agreement<kOthers>& agreement, U8 limits) {
  const U8 merged = mean<kOthers>(y0.reference, y0.other, agreement.of);
  const U8 accepted = agreement.of_some & pairs_within(merged, y0.reference, limits);
  const U8 flat = duplicate_even(merged);
  store_next(&to->y0, select(accepted, flat, y0.reference));
  store_next(&to->y1, select(accepted, flat, y1));
}

// Merges the positions of one vector.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE void merge_one(MergeRow* from, MergeRow* to, VectorLimits limits) {
  const Samples<kOthers> uv(&from->uv, from->other_uv);
  const auto agreement = merge_chroma<kKind>(to, uv, limits.chroma);
  if constexpr (writes_luma(kKind)) {
    const Samples<kOthers> y0(&from->y0, from->other_y);
    merge_luma(to, y0, load_next(&from->y1), agreement, limits.luma);
  }
}

// Merges the positions of two vectors, which are loaded before they are merged, so that a processor
// which executes in order waits for both at once.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE void merge_two(MergeRow* from, MergeRow* to, VectorLimits limits,
                            VectorLimits next_limits) {
  const Samples<kOthers> uv(&from->uv, from->other_uv);
  const Samples<kOthers> next_uv(&from->uv, from->other_uv);
  const auto agreement = merge_chroma<kKind>(to, uv, limits.chroma);
  const auto next_agreement = merge_chroma<kKind>(to, next_uv, next_limits.chroma);
  if constexpr (writes_luma(kKind)) {
    const Samples<kOthers> y0(&from->y0, from->other_y);
    const Samples<kOthers> next_y0(&from->y0, from->other_y);
    const U8 y1 = load_next(&from->y1);
    const U8 next_y1 = load_next(&from->y1);
    merge_luma(to, y0, y1, agreement, limits.luma);
    merge_luma(to, next_y0, next_y1, next_agreement, next_limits.luma);
  }
}

// Merges whole vectors of positions; returns the offset of the first position that is left. Two
// vectors of four frames would not fit the registers.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE size_t merge_vectors(const MergeRow& row, size_t bytes, const MergeLimits& limits) {
  MergeRow from = row;
  MergeRow to = row;
  const U8 chroma = splat<U8>(limits.chroma);
  const U8 luma = splat<U8>(limits.luma);
  const uint8_t* next_ramp = limits.ramp;
  const auto next_limits = [&] {
    if constexpr (!uses_ramp(kKind)) return VectorLimits(chroma, luma);
    const U8 ramp = load_next(&next_ramp);
    return VectorLimits(ramp, ramp);
  };
  size_t left = bytes / kVectorBytes;
  if constexpr (kOthers <= 2) {
    for (; left >= 2; left -= 2) {
      const VectorLimits first = next_limits();
      merge_two<kKind, kOthers>(&from, &to, first, next_limits());
    }
  }
  for (; left > 0; --left) merge_one<kKind, kOthers>(&from, &to, next_limits());
  return bytes - bytes % kVectorBytes;
}

// Tells whether no position writes what another one reads, so that their order does not show. One
// does where drifting edge sections led rows into one another, and where luma rows reach into the
// chroma plane. A row that is read and written at the same bytes is no pair of the list: of each
// position and each vector, reading comes first.
template <MergeKind kKind, int kOthers>
bool positions_are_independent(const MergeRow& row, size_t bytes) {
  const auto range = [bytes](const uint8_t* first) { return Range{first, bytes}; };
  const Range uv = range(row.uv);
  bool independent = true;
  for (int k = 0; k < kOthers; ++k) independent &= no_overlap({{range(row.other_uv[k]), uv}});
  if constexpr (writes_luma(kKind)) {
    const Range y0 = range(row.y0);
    const Range y1 = range(row.y1);
    independent &= no_overlap({{uv, y0}, {uv, y1}, {y0, y1}});
    for (int k = 0; k < kOthers; ++k) {
      const Range other_uv = range(row.other_uv[k]);
      const Range other_y = range(row.other_y[k]);
      independent &=
          no_overlap({{other_uv, y0}, {other_uv, y1}, {other_y, uv}, {other_y, y0}, {other_y, y1}});
    }
  }
  return independent;
}

template <MergeKind kKind, int kOthers>
void merge(const MergeRow& row, size_t bytes, const MergeLimits& limits) {
  size_t b = 0;
  if (kVectorized && positions_are_independent<kKind, kOthers>(row, bytes)) {
    b = merge_vectors<kKind, kOthers>(row, bytes, limits);
  }
  for (; b < bytes; b += 2) merge_position<kKind, kOthers>(row, b, limits);
}

}  // namespace

const MergeKernels& merge_kernels(ThisBuild) {
  using Kind = MergeKind;
  static constexpr MergeKernels kKernels = {{
      {merge<Kind::kWhole, 1>, merge<Kind::kWhole, 2>, merge<Kind::kWhole, 3>},
      {merge<Kind::kChroma, 1>, merge<Kind::kChroma, 2>, merge<Kind::kChroma, 3>},
      {merge<Kind::kEdges, 1>, merge<Kind::kEdges, 2>, merge<Kind::kEdges, 3>},
      {merge<Kind::kEdgesLuma, 1>, merge<Kind::kEdgesLuma, 2>, merge<Kind::kEdgesLuma, 3>},
  }};
  return kKernels;
}

}  // namespace zavri
