#pragma once

// The vector form of the chroma window filters lines of the grid side by side: lane i of a Cell is
// a sample of line i.

#include <algorithm>

#include "uvdenoise/chroma_window_vector_means.h"

namespace zavri {
namespace {

// A quad is a vector with four neighbouring 4-byte cells of the grid in each block. Quad q of a
// Cell has the lines 4q .. 4q + 3 in its block 0 and, in 32-byte vectors, the lines 16 further in
// the other one.
constexpr ptrdiff_t kQuads = 4;
constexpr ptrdiff_t kLines = kVectorBytes;
constexpr ptrdiff_t kQuadBytes = kQuads * kColumnStep;
constexpr ptrdiff_t kBlockLines = kBlockBytes;
static_assert(kQuadBytes == kBlockBytes);

ZAVRI_INLINE U8 minus_128(U8 samples) { return samples ^ splat<U8>(128); }

ZAVRI_INLINE Cell cell_of(const U8* quads) {
  U8 u;
  U8 v;
  split_cells(quads, &u, &v);
  return {(S8)minus_128(u), (S8)minus_128(v)};
}

// Returns the pairs of a cell's lines, which have U in their low bytes.
ZAVRI_INLINE Wide pairs_of(Cell cell) {
  return widen(minus_128((U8)cell.u), minus_128((U8)cell.v));
}

ZAVRI_INLINE void quads_of(Cell cell, U8* quads) {
  const Wide pairs = pairs_of(cell);
  quads[0] = (U8)interleave_lower(pairs.lower, U16{});
  quads[1] = (U8)interleave_upper(pairs.lower, U16{});
  quads[2] = (U8)interleave_lower(pairs.upper, U16{});
  quads[3] = (U8)interleave_upper(pairs.upper, U16{});
}

// Writes the pairs of a quad and writes the bytes between them back.
ZAVRI_INLINE void store_quad(uint8_t* to, ptrdiff_t distance, U8 quad) {
  const U32 between = (U32)load_blocks(to, distance) & 0xffff0000;
  store_blocks(to, distance, (U8)(between | (U32)quad));
}

// Writes the pairs of a quad and nothing else, for rows that another strip may be filling now.
ZAVRI_INLINE void store_quad_pairs(uint8_t* to, ptrdiff_t distance, U8 quad) {
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
  constexpr ptrdiff_t kBlockPairs = 2 * kBlockLines;  // bytes
  uint8_t bytes[2 * kVectorBytes];
  store_blocks(bytes, kBlockPairs, (U8)pairs.lower);
  store_blocks(bytes + kBlockPairs / 2, kBlockPairs, (U8)pairs.upper);
  for (ptrdiff_t i = from; i < to; ++i) memcpy(first + i * step, bytes + 2 * i, 2);
}

// Transposes the 4x4 tile of 4-byte cells that the blocks 0 of four vectors make, and likewise that
// of the blocks 1.
ZAVRI_INLINE void transpose_tiles(U8* vectors) {
  const U32 a = (U32)vectors[0];
  const U32 b = (U32)vectors[1];
  const U32 c = (U32)vectors[2];
  const U32 d = (U32)vectors[3];
  const U32 ac_lower = interleave_lower(a, c);
  const U32 bd_lower = interleave_lower(b, d);
  const U32 ac_upper = interleave_upper(a, c);
  const U32 bd_upper = interleave_upper(b, d);
  vectors[0] = (U8)interleave_lower(ac_lower, bd_lower);
  vectors[1] = (U8)interleave_upper(ac_lower, bd_lower);
  vectors[2] = (U8)interleave_lower(ac_upper, bd_upper);
  vectors[3] = (U8)interleave_upper(ac_upper, bd_upper);
}

// A ColumnGroup is the kLines columns from `column` on. Lines below `first_line` are read, but not
// written.
class ColumnGroup {
 public:
  ColumnGroup(const Grid& grid, ptrdiff_t column, ptrdiff_t first_line)
      : start_(grid.start + column * kColumnStep),
        row_step_(grid.row_step),
        rows_(grid.rows),
        first_line_(first_line) {}

  ZAVRI_INLINE void load(Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    const uint8_t* row = start_ + first * row_step_;
    for (ptrdiff_t i = 0; i < count; ++i, row += row_step_) {
      U8 quads[kQuads];
      for (ptrdiff_t q = 0; q < kQuads; ++q) quads[q] = load_blocks(row + q * kQuadBytes, kBlock);
      cells[i] = cell_of(quads);
    }
  }

  ZAVRI_INLINE void store(const Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    uint8_t* row = start_ + first * row_step_;
    for (ptrdiff_t i = 0; i < count; ++i, row += row_step_) {
      // Another strip may be filling row 0 and the rows beyond the grid now.
      const bool own_row = first + i > 0 && first + i < rows_;
      if (own_row && first_line_ == 0) {
        U8 quads[kQuads];
        quads_of(cells[i], quads);
        for (ptrdiff_t q = 0; q < kQuads; ++q) store_quad(row + q * kQuadBytes, kBlock, quads[q]);
      } else {
        store_pairs(cells[i], row, kColumnStep, first_line_, kLines);
      }
    }
  }

 private:
  static constexpr ptrdiff_t kBlock = kBlockLines * kColumnStep;  // bytes

  uint8_t* const start_;
  const ptrdiff_t row_step_;
  const ptrdiff_t rows_;
  const ptrdiff_t first_line_;
};

// A RowGroup is `lines` rows, at most kLines, from `row` on. Lanes beyond them repeat the last row.
class RowGroup {
 public:
  RowGroup(const Grid& grid, ptrdiff_t row, ptrdiff_t lines)
      : start_(grid.start + row * grid.row_step),
        row_step_(grid.row_step),
        lines_(lines),
        has_row_0_(row == 0) {}

  // Loads four cells at a time; `count` is at least four.
  ZAVRI_INLINE void load(Cell* cells, ptrdiff_t first, ptrdiff_t count) const {
    const uint8_t* const from = start_ + first * kColumnStep;
    for (ptrdiff_t i = 0; i < count; i += kQuads) {
      i = std::min(i, count - kQuads);
      U8 quads[kQuads][kQuads];  // of four cells
      for (ptrdiff_t q = 0; q < kQuads; ++q) {
        U8 rows[kQuads];
        for (ptrdiff_t r = 0; r < kQuads; ++r) {
          const ptrdiff_t line = std::min(q * kQuads + r, lines_ - 1);
          const ptrdiff_t other = std::min(q * kQuads + r + kBlockLines, lines_ - 1);
          rows[r] =
              load_blocks(from + i * kColumnStep + line * row_step_, (other - line) * row_step_);
        }
        transpose_tiles(rows);
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
    U8 quads[kQuads][kQuads];
    for (ptrdiff_t c = 0; c < kQuads; ++c) quads_of(cells[c], quads[c]);
    for (ptrdiff_t q = 0; q < kQuads; ++q) {
      U8 rows[kQuads];
      for (ptrdiff_t c = 0; c < kQuads; ++c) rows[c] = quads[c][q];
      transpose_tiles(rows);
      for (ptrdiff_t r = 0; r < kQuads; ++r) {
        const ptrdiff_t line = q * kQuads + r;
        uint8_t* const row = to + line * row_step_;
        if (line == 0 && has_row_0_) {
          store_quad_pairs(row, kBlockLines * row_step_, rows[r]);
        } else {
          store_quad(row, kBlockLines * row_step_, rows[r]);
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
