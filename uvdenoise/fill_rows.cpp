#include "uvdenoise/fill_rows.h"

#include "simd/vec.h"

namespace zavri {
namespace {

constexpr size_t kCell = 4;  // bytes from one grid pair to the next

uint8_t mean(int a, int b) { return static_cast<uint8_t>((a + b) >> 1); }

void fill_cell(uint8_t* cell) {
  cell[2] = mean(cell[0], cell[kCell]);
  cell[3] = mean(cell[1], cell[kCell + 1]);
}

// Fills the cells of one vector.
ZAVRI_INLINE void fill_vector(uint8_t* cells) {
  const U32 pairs = load<U32>(cells);
  const U32 means = (U32)avg_round_down((U8)pairs, load(cells + kCell));
  store(cells, (pairs & 0xffff) | means << 16);
}

void fill_row(uint8_t* row, size_t blocks) {
  size_t x = 0;
  if (kVectorized) {
    const size_t readable = blocks * kFillBlock + 2;
    for (; x + kVectorBytes + kCell <= readable; x += kVectorBytes) fill_vector(row + x);
    if (x > 0) {
      // The last vector fills some cells again, from the same pairs: filling does not change them.
      x = (readable - kVectorBytes - kCell) & ~(kCell - 1);
      fill_vector(row + x);
      x += kVectorBytes;
    }
  }
  for (; x < blocks * kFillBlock; x += kCell) fill_cell(row + x);
}

void average_rows_plain(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  for (size_t x = 0; x < bytes; ++x) to[x] = mean(above[x], below[x]);
}

void average_rows(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  if (!kVectorized || bytes < kVectorBytes) return average_rows_plain(to, above, below, bytes);
  const auto average_at = [&](size_t x) {
    store(to + x, avg_round_down(load(above + x), load(below + x)));
  };
  for (size_t x = 0; x + kVectorBytes <= bytes; x += kVectorBytes) average_at(x);
  average_at(bytes - kVectorBytes);
}

}  // namespace

const FillRowKernels& fill_row_kernels(ThisBuild) {
  static constexpr FillRowKernels kKernels = {fill_row, average_rows};
  return kKernels;
}

}  // namespace zavri
