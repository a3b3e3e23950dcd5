#include "denoise3d/merge.h"

#include <cstdlib>

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

constexpr bool uses_ramp(MergeKind kind) {
  return kind == MergeKind::kEdges || kind == MergeKind::kEdgesLuma;
}
constexpr bool writes_chroma(MergeKind kind) { return kind != MergeKind::kEdgesLuma; }
constexpr bool writes_luma(MergeKind kind) { return kind != MergeKind::kChroma; }

bool within(int value, int reference, int limit) { return std::abs(value - reference) <= limit; }

// Mean of `count` values, the reference among them. Three values count the reference twice, and
// round otherwise than four do: tuned devices rely on both.
uint8_t mean(int sum, int reference, int count) {
  if (count == 2) return static_cast<uint8_t>((sum + 1) >> 1);
  if (count == 3) return static_cast<uint8_t>((sum + reference + 2) >> 2);
  return static_cast<uint8_t>((sum + 1) >> 2);
}

// The rule, for the position at offset b.
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

template <MergeKind kKind, int kOthers>
void merge_plain(const MergeRow& row, size_t from, size_t bytes, const MergeLimits& limits) {
  for (size_t b = from; b < bytes; b += 2) merge_position<kKind, kOthers>(row, b, limits);
}

#ifdef ZAVRI_BUILD_PLAIN

template <MergeKind kKind, int kOthers>
void merge(const MergeRow& row, size_t bytes, const MergeLimits& limits) {
  merge_plain<kKind, kOthers>(row, 0, bytes, limits);
}

#else

// Lanes are computed at once, the rule goes from position to position: the same bytes only if no
// position writes what another one reads. Rows that drifting edge sections led into one another,
// or luma rows that reach into the chroma plane, may fail this.
template <MergeKind kKind, int kOthers>
bool positions_are_independent(const MergeRow& row, size_t bytes) {
  const auto apart = [bytes](const uint8_t* a, const uint8_t* b) {
    const auto distance = reinterpret_cast<uintptr_t>(a) - reinterpret_cast<uintptr_t>(b);
    return distance + (bytes - 1) > 2 * (bytes - 1);
  };
  // `counterpart` is the row whose lanes are read before it is written itself.
  const uint8_t* const rows[] = {row.uv, row.y0, row.y1};
  enum Row { kUv, kY0, kY1 };
  const auto undisturbed = [&](const uint8_t* read, Row counterpart) {
    bool result = true;
    for (int written = writes_chroma(kKind) ? kUv : kY0;
         written <= (writes_luma(kKind) ? kY1 : kUv); ++written) {
      const bool same_lanes = written == counterpart && read == rows[written];
      result &= same_lanes || apart(read, rows[written]);
    }
    return result;
  };
  bool result = undisturbed(row.uv, kUv);
  for (int k = 0; k < kOthers; ++k) result &= undisturbed(row.other_uv[k], kUv);
  if (writes_luma(kKind)) {
    result &= undisturbed(row.y0, kY0) && undisturbed(row.y1, kY1);
    for (int k = 0; k < kOthers; ++k) result &= undisturbed(row.other_y[k], kY0);
  }
  return result;
}

// All bits set in both bytes of the pairs that are within the limits.
ZAVRI_INLINE V8 agreement(V8 reference, V8 other, V8 limits) {
  return (V8)((V16)above(absdiff(reference, other), limits) == 0);
}

// The rule's mean in bytes, for the frames whose mask is set, without widening:
//   two     (r + a + 1) >> 1        = avg_up(r, a)
//   three   (2r + a + b + 2) >> 2   = avg_up(avg_down(a, b), r); with a + b = 2f + e, the even
//                                     number 2f + 2r + 2 stays in its quarter when e is added
//   four    (r + a + b + c + 1) >> 2: with r + a = 2p + d, b + c = 2q + e it is
//                                     (2(p + q) + d + e + 1) >> 2, where d + e + 1 reaches 2, and
//                                     so rounds p + q up, exactly when d or e is set
// A frame that does not agree is replaced by one that does, so that one formula serves all counts.
template <int kOthers>
ZAVRI_INLINE V8 mean(V8 reference, const V8* other, const V8* agrees) {
  const V8 r = reference;
  const V8 o0 = other[0];
  const V8 m0 = agrees[0];
  if constexpr (kOthers == 1) {
    return select(m0, avg_up(r, o0), r);
  } else if constexpr (kOthers == 2) {
    const V8 a = select(m0, o0, other[1]);
    const V8 b = select(agrees[1], other[1], o0);
    return select(m0 | agrees[1], avg_up(avg_down(a, b), r), r);
  } else {
    const V8 o1 = other[1];
    const V8 o2 = other[2];
    const V8 m1 = agrees[1];
    const V8 m2 = agrees[2];
    const V8 a = select(m0, o0, select(m1, o1, o2));
    const V8 b = select(m2, o2, select(m1, o1, o0));
    const V8 some = avg_up(avg_down(a, b), r);
    const V8 p = avg_down(r, o0);
    const V8 q = avg_down(o1, o2);
    const V8 odd = ((r ^ o0) | (o1 ^ o2)) & 1;
    const V8 all = avg_down(p, q) + ((p ^ q) & odd);
    return select(m0 & m1 & m2, all, select(m0 | m1 | m2, some, r));
  }
}

// The positions of one vector. Everything is read before anything is written; bytes that stay as
// they are are written back.
template <MergeKind kKind, int kOthers>
ZAVRI_INLINE void merge_vector(const MergeRow& row, size_t b, V8 chroma_limits, V8 luma_limits) {
  const V8 uv = load(row.uv + b);
  V8 other[kOthers];
  V8 agrees[kOthers];
  V8 some_agree{};
  for (int k = 0; k < kOthers; ++k) {
    other[k] = load(row.other_uv[k] + b);
    agrees[k] = agreement(uv, other[k], chroma_limits);
    some_agree |= agrees[k];
  }
  if constexpr (writes_chroma(kKind)) store(row.uv + b, mean<kOthers>(uv, other, agrees));
  if constexpr (writes_luma(kKind)) {
    const V8 y0 = load(row.y0 + b);
    const V8 y1 = load(row.y1 + b);
    for (int k = 0; k < kOthers; ++k) other[k] = load(row.other_y[k] + b);
    const V8 merged = mean<kOthers>(y0, other, agrees);
    // Only the even byte of a pair is tested; it goes into both columns.
    const V16 moved_too_far = (V16)above(absdiff(merged, y0), luma_limits) << 8;
    const V8 accepted = some_agree & (V8)(moved_too_far == 0);
    const V16 even = (V16)merged << 8;
    const V8 flat = (V8)(even | even >> 8);
    store(row.y0 + b, select(accepted, flat, y0));
    store(row.y1 + b, select(accepted, flat, y1));
  }
}

template <MergeKind kKind, int kOthers>
void merge(const MergeRow& row, size_t bytes, const MergeLimits& limits) {
  size_t b = 0;
  if (positions_are_independent<kKind, kOthers>(row, bytes)) {
    const MergeRow rows = row;  // a copy that no store can alias
    const V8 chroma = splat8(limits.chroma);
    const V8 luma = splat8(limits.luma);
    for (; b + kVectorBytes <= bytes; b += kVectorBytes) {
      if constexpr (uses_ramp(kKind)) {
        const V8 ramp = load(limits.ramp + b);
        merge_vector<kKind, kOthers>(rows, b, ramp, ramp);
      } else {
        merge_vector<kKind, kOthers>(rows, b, chroma, luma);
      }
    }
  }
  merge_plain<kKind, kOthers>(row, b, bytes, limits);
}

#endif

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
