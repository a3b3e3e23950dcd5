#include "uvdenoise/fill_grid.h"

#include <algorithm>
#include <cstring>

#include "uvdenoise/fill_rows.h"

namespace zavri {
namespace {

constexpr size_t kGroup = 4;  // rows

class Filler {
 public:
  Filler(size_t row_bytes, size_t stride)
      : kernels_(fill_row_kernels()),
        stride_(stride),
        // The last block has no right neighbour and is not counted.
        blocks_(row_bytes == 0 ? 0 : (row_bytes - 1) / kFillBlock),
        has_edge_(row_bytes != 0 && row_bytes % kFillBlock == 0),
        // Rows that overlap are worked block after block, others whole.
        blocks_at_once_(stride > blocks_ * kFillBlock + 1 ? std::max<size_t>(blocks_, 1) : 1) {}

  void fill_first_row(uint8_t* row) const { kernels_.fill_row(row, blocks_); }

  // The next strip may be filtering its row 0 at this time: there, only the filled pairs are
  // written.
  void fill_group(uint8_t* top, bool leaves_strip) const {
    const FillRowKernels& last_row = leaves_strip ? fill_row_kernels(PlainBuild{}) : kernels_;
    uint8_t* const rows[] = {top, top + stride_, top + 2 * stride_, top + 3 * stride_,
                             top + 4 * stride_};
    for (size_t b = 0; b < blocks_; b += blocks_at_once_) {
      const size_t x = b * kFillBlock;
      const size_t bytes = blocks_at_once_ * kFillBlock;
      kernels_.fill_row(rows[2] + x, blocks_at_once_);
      last_row.fill_row(rows[4] + x, blocks_at_once_);
      kernels_.average_rows(rows[1] + x, rows[0] + x, rows[2] + x, bytes);
      kernels_.average_rows(rows[3] + x, rows[2] + x, rows[4] + x, bytes);
    }
    if (has_edge_) fill_edge(rows);
  }

 private:
  void fill_edge(uint8_t* const* rows) const;

  const FillRowKernels& kernels_;
  const size_t stride_;
  const size_t blocks_;
  const bool has_edge_;
  const size_t blocks_at_once_;
};

void Filler::fill_edge(uint8_t* const* rows) const {
  const size_t x = blocks_ * kFillBlock;
  const auto repeat_last_pair = [x](uint8_t* row) { memcpy(row + x + 6, row + x + 4, 2); };
  for (const int r : {2, 4}) {
    kernels_.average_rows(rows[r] + x + 2, rows[r] + x, rows[r] + x + 4, 2);
    repeat_last_pair(rows[r]);
  }
  for (const int r : {1, 3}) {
    kernels_.average_rows(rows[r] + x, rows[r - 1] + x, rows[r + 1] + x, 6);
    repeat_last_pair(rows[r]);
  }
}

}  // namespace

void UV_denoise_fill_grid(uint8_t* start, uint16_t row_bytes, uint16_t rows, uint16_t stride,
                          uint32_t strip) {
  const Filler filler(row_bytes, stride);
  filler.fill_first_row(start);

  const bool repeats_last = strip >= kZavriLastStrip && rows > 0 && rows % kGroup == 0;
  const size_t groups = rows / kGroup - (repeats_last ? 1 : 0);
  uint8_t* row = start;
  for (size_t g = 0; g < groups; ++g, row += kGroup * stride) {
    filler.fill_group(row, (g + 1) * kGroup >= rows);
  }
  if (!repeats_last) return;
  const size_t bytes = row_bytes / kFillBlock * kFillBlock;
  for (size_t r = 1; r < kGroup; ++r) memmove(row + r * stride, row, bytes);
}

}  // namespace zavri
