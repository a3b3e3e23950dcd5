#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

namespace zavri {

// Rebuilds the pairs between the samples of a strip's grid (G) from their neighbours, in blocks of
// 8 bytes by 4 rows below row 0: those of the grid's rows (-) first, then the rows between (|).
//
//   G - G -     row 4g        What is left of a row beyond its last whole block stays as it is.
//   | | | |                   Without such a rest the last block has no right neighbour: there the
//   G - G -     row 4g + 2    last pair is a copy of the pair before; in row 0 it stays.
//   | | | |
//
// Row 0 of the next strip is filled as well. The last strip has none below it: if its rows are a
// multiple of 4, the three rows after its last group are copies of the row before them. `rows` and
// `stride` count the strip's own rows, not the grid's.
void UV_denoise_fill_grid(uint8_t* start, uint16_t row_bytes, uint16_t rows, uint16_t stride,
                          uint32_t strip);

}  // namespace zavri
