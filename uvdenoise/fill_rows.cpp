#include "uvdenoise/fill_rows.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

constexpr size_t kCell = 4;  // bytes from one grid pair to the next

uint8_t mean(int a, int b) { return static_cast<uint8_t>((a + b) >> 1); }

void fill_row_plain(uint8_t* row, size_t from, size_t blocks) {
  for (size_t x = from; x < blocks * kFillBlock; x += kCell) {
    row[x + 2] = mean(row[x], row[x + kCell]);
    row[x + 3] = mean(row[x + 1], row[x + kCell + 1]);
  }
}

void average_rows_plain(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  for (size_t x = 0; x < bytes; ++x) to[x] = mean(above[x], below[x]);
}

#ifdef ZAVRI_BUILD_PLAIN

void fill_row(uint8_t* row, size_t blocks) { fill_row_plain(row, 0, blocks); }

void average_rows(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  average_rows_plain(to, above, below, bytes);
}

#else

ZAVRI_INLINE void fill_vector(uint8_t* at) {
  const V32 pairs = (V32)load(at);
  const V32 means = (V32)avg_down((V8)pairs, load(at + kCell));
  store(at, (V8)((pairs & 0xffff) | means << 16));
}

void fill_row(uint8_t* row, size_t blocks) {
  const size_t readable = blocks * kFillBlock + 2;
  size_t x = 0;
  for (; x + kVectorBytes + kCell <= readable; x += kVectorBytes) fill_vector(row + x);
  if (x > 0) {
    // Once more for the last cells: what a cell is filled from is not changed by filling.
    x = (readable - kVectorBytes - kCell) & ~(kCell - 1);
    fill_vector(row + x);
    x += kVectorBytes;
  }
  fill_row_plain(row, x, blocks);
}

void average_rows(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes) {
  if (bytes < kVectorBytes) return average_rows_plain(to, above, below, bytes);
  const auto average = [&](size_t x) { store(to + x, avg_down(load(above + x), load(below + x))); };
  for (size_t x = 0; x + kVectorBytes <= bytes; x += kVectorBytes) average(x);
  average(bytes - kVectorBytes);
}

#endif

}  // namespace

const FillRowKernels& fill_row_kernels(ThisBuild) {
  static constexpr FillRowKernels kKernels = {fill_row, average_rows};
  return kKernels;
}

}  // namespace zavri
