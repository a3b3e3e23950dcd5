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
// of three frames it is avg_round_up(avg_round_down(a, a), r), the mean of two.
template <int kOthers>
ZAVRI_INLINE U8 mean(U8 r, const U8* other, const U8* agrees) {
  const U8 o0 = other[0];
  const U8 m0 = agrees[0];
  if constexpr (kOthers == 1) {
    return select(m0, avg_round_up(r, o0), r);
  } else if constexpr (kOthers == 2) {
    const U8 a = select(m0, o0, other[1]);
    const U8 b = select(agrees[1], other[1], o0);
    return select(m0 | agrees[1], avg_round_up(avg_round_down(a, b), r), r);
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
    return select(m0 & m1 & m2, of_all, select(m0 | m1 | m2, of_some, r));
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

// Merges the positions of one vector. A row is read before it is written, and bytes that stay as
// they are are written back.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE void merge_vector(const MergeRow& row, size_t b, U8 chroma_limits, U8 luma_limits) {
  const U8 uv = load(row.uv + b);
  U8 other[kOthers];
  U8 agrees[kOthers];
  U8 some_agree{};
  for (int k = 0; k < kOthers; ++k) {
    other[k] = load(row.other_uv[k] + b);
    agrees[k] = pairs_within(other[k], uv, chroma_limits);
    some_agree |= agrees[k];
  }
  if constexpr (writes_chroma(kKind)) store(row.uv + b, mean<kOthers>(uv, other, agrees));
  if constexpr (writes_luma(kKind)) {
    const U8 y0 = load(row.y0 + b);
    const U8 y1 = load(row.y1 + b);
    for (int k = 0; k < kOthers; ++k) other[k] = load(row.other_y[k] + b);
    const U8 merged = mean<kOthers>(y0, other, agrees);
    // The even byte of a pair is the merged luma, which the rule tests and writes to both columns.
    const U16 beyond = (U16)saturating_sub(abs_diff(merged, y0), luma_limits) << 8;
    const U8 accepted = some_agree & (U8)(beyond == 0);
    const U8 flat = duplicate_even(merged);
    store(row.y0 + b, select(accepted, flat, y0));
    store(row.y1 + b, select(accepted, flat, y1));
  }
}

// Merges whole vectors of positions; returns the offset of the first position that is left.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE size_t merge_vectors(const MergeRow& row, size_t bytes, const MergeLimits& limits) {
  const MergeRow rows = row;  // a copy that no store can alias
  const U8 chroma = splat<U8>(limits.chroma);
  const U8 luma = splat<U8>(limits.luma);
  size_t b = 0;
  for (; b + kVectorBytes <= bytes; b += kVectorBytes) {
    if constexpr (uses_ramp(kKind)) {
      const U8 ramp = load(limits.ramp + b);
      merge_vector<kKind, kOthers>(rows, b, ramp, ramp);
    } else {
      merge_vector<kKind, kOthers>(rows, b, chroma, luma);
    }
  }
  return b;
}

// Tells whether no position writes what another one reads, so that their order does not show. One
// does where drifting edge sections led rows into one another, and where luma rows reach into
// the chroma plane.
template <MergeKind kKind, int kOthers>
bool positions_are_independent(const MergeRow& row, size_t bytes) {
  enum Place { kUv, kY0, kY1 };
  const uint8_t* const written[] = {row.uv, row.y0, row.y1};
  // A row that is read may begin where the written row of its place does: position by position and
  // vector by vector, reading comes first.
  const auto independent = [&](const uint8_t* read, Place place) {
    for (int w = writes_chroma(kKind) ? kUv : kY0; w <= (writes_luma(kKind) ? kY1 : kUv); ++w) {
      const bool in_place = w == place && read == written[w];
      if (!in_place && overlap({read, bytes}, {written[w], bytes})) return false;
    }
    return true;
  };
  bool result = independent(row.uv, kUv);
  for (int k = 0; k < kOthers; ++k) result &= independent(row.other_uv[k], kUv);
  if constexpr (writes_luma(kKind)) {
    result &= independent(row.y0, kY0) && independent(row.y1, kY1);
    for (int k = 0; k < kOthers; ++k) result &= independent(row.other_y[k], kY0);
  }
  return result;
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
