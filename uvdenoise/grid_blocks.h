#pragma once

// Lines of the grid side by side, as the vector form of the chroma window filters them: lane i of a
// Cell is a sample of line i. Kernel sources only.

#include <algorithm>

#include "uvdenoise/window_means.h"

namespace zavri {
namespace {

// A vector of four neighbouring 4-byte cells in each half. Quad q of a cell has lines 4q .. 4q + 3
// in its first half and, in 32-byte vectors, the lines 16 further in its second.
constexpr ptrdiff_t kQuads = 4;
constexpr ptrdiff_t kLines = kVectorBytes;
constexpr ptrdiff_t kHalfLines = kHalfBytes;
static_assert(kQuads * kColumnStep == kHalfBytes);

ZAVRI_INLINE V8 minus_128(V8 samples) { return samples ^ splat8(128); }

ZAVRI_INLINE Cell cell_of(const V8* quads) {
  V8 u;
  V8 v;
  split_cells(quads, &u, &v);
  return {(S8)minus_128(u), (S8)minus_128(v)};
}

// The pairs of a cell's lines, U in the low bytes.
ZAVRI_INLINE Wide pairs_of(Cell cell) {
  return widen(minus_128((V8)cell.u), minus_128((V8)cell.v));
}

ZAVRI_INLINE void quads_of(Cell cell, V8* quads) {
  const Wide pairs = pairs_of(cell);
  quads[0] = (V8)zip_lower(pairs.lower, V16{});
  quads[1] = (V8)zip_upper(pairs.lower, V16{});
  quads[2] = (V8)zip_lower(pairs.upper, V16{});
  quads[3] = (V8)zip_upper(pairs.upper, V16{});
}

// Writes the pairs of a quad; the bytes between them are written back.
ZAVRI_INLINE void store_quad(uint8_t* to, ptrdiff_t distance, V8 quad) {
  const V32 between = (V32)load_halves(to, distance) & 0xffff0000;
  store_halves(to, distance, (V8)(between | (V32)quad));
}

// Writes the pairs of a quad and nothing else: for rows that another strip may be filling now.
ZAVRI_INLINE void store_quad_pairs(uint8_t* to, ptrdiff_t distance, V8 quad) {
  uint8_t bytes[kVectorBytes];
  store(bytes, quad);
  for (ptrdiff_t i = 0; i < kLines / kQuads; ++i) {
    memcpy(to + i / kQuads * distance + i % kQuads * kColumnStep, bytes + i * kColumnStep, 2);
  }
}

// Writes the pairs of lines [from, to), `step` bytes apart, and nothing else.
ZAVRI_INLINE void store_pairs(Cell cell, uint8_t* first, ptrdiff_t step, ptrdiff_t from,
                              ptrdiff_t to) {
  const Wide pairs = pairs_of(cell);
  uint8_t bytes[2 * kVectorBytes];
  store_halves(bytes, 2 * kHalfBytes, (V8)pairs.lower);
  store_halves(bytes + kHalfBytes, 2 * kHalfBytes, (V8)pairs.upper);
  for (ptrdiff_t i = from; i < to; ++i) memcpy(first + i * step, bytes + 2 * i, 2);
}

// The kLines columns from `column` on. Lines below `first_line` are read, but not written.
class ColumnBlock {
 public:
  ColumnBlock(const Grid& grid, ptrdiff_t column, ptrdiff_t first_line)
      : start_(grid.start + column * kColumnStep),
        row_step_(grid.row_step),
        rows_(grid.rows),
        first_line_(first_line) {}

  ZAVRI_INLINE void load(Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    const uint8_t* row = start_ + first * row_step_;
    for (ptrdiff_t i = 0; i < count; ++i, row += row_step_) {
      V8 quads[kQuads];
      for (ptrdiff_t q = 0; q < kQuads; ++q) quads[q] = load_halves(row + q * kHalfBytes, kHalf);
      cells[i] = cell_of(quads);
    }
  }

  ZAVRI_INLINE void store(const Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    uint8_t* row = start_ + first * row_step_;
    for (ptrdiff_t i = 0; i < count; ++i, row += row_step_) {
      // Row 0 and the rows beyond the grid belong to two strips.
      const bool own_row = first + i > 0 && first + i < rows_;
      if (own_row && first_line_ == 0) {
        V8 quads[kQuads];
        quads_of(cells[i], quads);
        for (ptrdiff_t q = 0; q < kQuads; ++q) store_quad(row + q * kHalfBytes, kHalf, quads[q]);
      } else {
        store_pairs(cells[i], row, kColumnStep, first_line_, kLines);
      }
    }
  }

 private:
  static constexpr ptrdiff_t kHalf = kHalfLines * kColumnStep;  // bytes

  uint8_t* const start_;
  const ptrdiff_t row_step_;
  const ptrdiff_t rows_;
  const ptrdiff_t first_line_;
};

// `lines` rows, at most kLines, from `row` on. Lanes beyond them repeat the last one.
class RowBlock {
 public:
  RowBlock(const Grid& grid, ptrdiff_t row, ptrdiff_t lines)
      : start_(grid.start + row * grid.row_step),
        row_step_(grid.row_step),
        lines_(lines),
        has_row_0_(row == 0) {}

  // Four cells at a time; `count` is not below that.
  ZAVRI_INLINE void load(Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    const uint8_t* const from = start_ + first * kColumnStep;
    for (ptrdiff_t i = 0; i < count; i += kQuads) {
      i = std::min(i, count - kQuads);
      V8 quads[kQuads][kQuads];  // of four cells
      for (ptrdiff_t q = 0; q < kQuads; ++q) {
        V8 rows[kQuads];
        for (ptrdiff_t r = 0; r < kQuads; ++r) {
          const ptrdiff_t line = std::min(q * kQuads + r, lines_ - 1);
          const ptrdiff_t other = std::min(q * kQuads + r + kHalfLines, lines_ - 1);
          rows[r] =
              load_halves(from + i * kColumnStep + line * row_step_, (other - line) * row_step_);
        }
        transpose_cells(rows);
        for (ptrdiff_t c = 0; c < kQuads; ++c) quads[c][q] = rows[c];
      }
      for (ptrdiff_t c = 0; c < kQuads; ++c) cells[i + c] = cell_of(quads[c]);
    }
  }

  ZAVRI_INLINE void store(const Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    uint8_t* const to = start_ + first * kColumnStep;
    ptrdiff_t i = 0;
    if (lines_ == kLines) {
      for (; i + kQuads <= count; i += kQuads) store_four(cells + i, to + i * kColumnStep);
    }
    for (; i < count; ++i) store_pairs(cells[i], to + i * kColumnStep, row_step_, 0, lines_);
  }

 private:
  ZAVRI_INLINE void store_four(const Cell* cells, uint8_t* to) const {
    V8 quads[kQuads][kQuads];
    for (ptrdiff_t c = 0; c < kQuads; ++c) quads_of(cells[c], quads[c]);
    for (ptrdiff_t q = 0; q < kQuads; ++q) {
      V8 rows[kQuads];
      for (ptrdiff_t c = 0; c < kQuads; ++c) rows[c] = quads[c][q];
      transpose_cells(rows);
      for (ptrdiff_t r = 0; r < kQuads; ++r) {
        const ptrdiff_t line = q * kQuads + r;
        uint8_t* const row = to + line * row_step_;
        if (line == 0 && has_row_0_) {
          store_quad_pairs(row, kHalfLines * row_step_, rows[r]);
        } else {
          store_quad(row, kHalfLines * row_step_, rows[r]);
        }
      }
    }
  }

  uint8_t* const start_;
  const ptrdiff_t row_step_;
  const ptrdiff_t lines_;
  const bool has_row_0_;
};

}  // namespace
}  // namespace zavri
