#include "platform/host/gaussian.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

constexpr int kShift = 8;  // both weight sets sum to 16
constexpr int kHalf = 1 << (kShift - 1);

// The rule, for bytes and for vectors of them. Sums of columns are at most 16 * 255, those of the
// whole block and the half at most 65408: 16 bits hold both.
template <class T>
#ifndef ZAVRI_BUILD_PLAIN
ZAVRI_INLINE
#endif
T weighted(T a, T b, T c, T d, T e) {
  return static_cast<T>(a + e + (b + d) * 4 + c * 6);
}

void down_plain(const uint8_t* const* rows, size_t from, size_t count, uint16_t* sums) {
  for (size_t x = from; x < count; ++x) {
    sums[x] = weighted<uint16_t>(rows[0][x], rows[1][x], rows[2][x], rows[3][x], rows[4][x]);
  }
}

void along_plain(const uint16_t* sums, size_t from, size_t count, uint8_t* to) {
  for (size_t x = from; x < count; ++x) {
    const auto sum =
        weighted<uint16_t>(sums[x], sums[x + 1], sums[x + 2], sums[x + 3], sums[x + 4]);
    to[x] = static_cast<uint8_t>((sum + kHalf) >> kShift);
  }
}

#ifdef ZAVRI_BUILD_PLAIN

void down(const uint8_t* const* rows, size_t count, uint16_t* sums) {
  down_plain(rows, 0, count, sums);
}

void along(const uint16_t* sums, size_t count, uint8_t* to) { along_plain(sums, 0, count, to); }

#else

constexpr size_t kLanes = kVectorBytes / 2;

void down(const uint8_t* const* rows, size_t count, uint16_t* sums) {
  const uint8_t* const a = rows[0];
  const uint8_t* const b = rows[1];
  const uint8_t* const c = rows[2];
  const uint8_t* const d = rows[3];
  const uint8_t* const e = rows[4];
  size_t x = 0;
  for (; x + kLanes <= count; x += kLanes) {
    store16(sums + x, weighted(load_wide(a + x), load_wide(b + x), load_wide(c + x),
                               load_wide(d + x), load_wide(e + x)));
  }
  down_plain(rows, x, count, sums);
}

ZAVRI_INLINE V16 blurred(const uint16_t* sums) {
  return (weighted(load16(sums), load16(sums + 1), load16(sums + 2), load16(sums + 3),
                   load16(sums + 4)) +
          kHalf) >>
         kShift;
}

void along(const uint16_t* sums, size_t count, uint8_t* to) {
  size_t x = 0;
  for (; x + kVectorBytes <= count; x += kVectorBytes) {
    store(to + x, bytes_of(blurred(sums + x), blurred(sums + x + kLanes)));
  }
  along_plain(sums, x, count, to);
}

#endif

}  // namespace

const GaussianKernels& gaussian_kernels(ThisBuild) {
  static constexpr GaussianKernels kKernels = {down, along};
  return kKernels;
}

}  // namespace zavri
