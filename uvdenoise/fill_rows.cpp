#include "uvdenoise/fill_rows.h"

#include "simd/overlap.h"
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

// The last cell is left to the rule, because a vector would read more of the next block than its
// first pair. Cells that two vectors fill are filled from the same pairs, which filling keeps.
void fill_row(uint8_t* row, size_t blocks) {
  const size_t end = blocks * kFillBlock;
  size_t x = 0;
  if (kVectorized && end >= kVectorBytes + kCell) {
    x = end - kCell;
    for_vectors(0, x, [row](size_t cells) { fill_vector(row + cells); });
  }
  for (; x < end; x += kCell) fill_cell(row + x);
}

void average_plain(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  for (size_t x = 0; x < bytes; ++x) to[x] = mean(above[x], below[x]);
}

void average_vectors(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  for_vectors(0, bytes,
              [=](size_t x) { store(to + x, avg_round_down(load(above + x), load(below + x))); });
}

void average_rows(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  const Range written{to, bytes};
  if (kVectorized && bytes >= kVectorBytes &&
      no_overlap({{{above, bytes}, written}, {{below, bytes}, written}})) {
    return average_vectors(to, above, below, bytes);
  }
  average_plain(to, above, below, bytes);
}

}  // namespace

const FillRowKernels& fill_row_kernels(ThisBuild) {
  static constexpr FillRowKernels kKernels = {fill_row, average_rows};
  return kKernels;
}

}  // namespace zavri
