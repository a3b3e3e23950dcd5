#include "uvdenoise/chroma_window.h"

#include <algorithm>
#include <cstdlib>

#include "simd/vec.h"
#include "uvdenoise/chroma_window_vector_lines.h"

namespace zavri {
namespace {

// Calls `add` with the neighbours of the sample at `centre`, which lie `step` bytes apart.
template <class Add>
void each_neighbour(const uint8_t* centre, ptrdiff_t step, Window window, Add add) {
  for (int k = window.before; k > 0; --k) add(centre - k * step);
  for (int k = 1; k <= window.after; ++k) add(centre + k * step);
}

// Applies the rule of the weighted mean to one sample.
void filter_sample(uint8_t* centre, ptrdiff_t step, Window window, const Weights& weights) {
  const int u = centre[0];
  const int v = centre[1];
  int sum_u = kCentreWeight * u;
  int sum_v = kCentreWeight * v;
  int sum = kCentreWeight;
  each_neighbour(centre, step, window, [&](const uint8_t* neighbour) {
    const int distance = std::max(std::abs(neighbour[0] - u), std::abs(neighbour[1] - v));
    if (distance >= weights.threshold) return;
    const int weight = weights.of[distance];
    sum_u += weight * neighbour[0];
    sum_v += weight * neighbour[1];
    sum += weight;
  });
  // Negative weights may leave any sum. A mean is then cut to its low byte, and a sum of zero ends
  // in the processor's division by zero.
  centre[0] = static_cast<uint8_t>((sum_u + (sum >> 1)) / sum);
  centre[1] = static_cast<uint8_t>((sum_v + (sum >> 1)) / sum);
}

struct FixedTolerance {};

// Applies the rule of the plain mean to one sample.
void filter_sample(uint8_t* centre, ptrdiff_t step, Window window, FixedTolerance) {
  const int u = centre[0];
  const int v = centre[1];
  unsigned sum_u = centre[0];
  unsigned sum_v = centre[1];
  unsigned count = 1;
  each_neighbour(centre, step, window, [&](const uint8_t* neighbour) {
    // V is tested on one side only: tuned devices rely on it.
    if (std::abs(neighbour[0] - u) > kFixedTolerance) return;
    if (neighbour[1] < v - kFixedTolerance) return;
    sum_u += neighbour[0];
    sum_v += neighbour[1];
    ++count;
  });
  centre[0] = static_cast<uint8_t>((sum_u + (count >> 1)) / count);
  centre[1] = static_cast<uint8_t>((sum_v + (count >> 1)) / count);
}

template <class Rule>
void filter_rows_plain(const Grid& grid, const Pass& pass, const Rule& rule) {
  for (uint32_t i = 0; i < grid.rows; ++i) {
    uint8_t* const row = grid.start + i * grid.row_step;
    for (const Span& span : pass.spans) {
      uint8_t* sample = row + span.from * kColumnStep;
      for (uint32_t n = 0; n < span.count; ++n, sample += kColumnStep) {
        filter_sample(sample, kColumnStep, span.window, rule);
      }
    }
  }
}

// The rows are filtered one after the other, which shows where the row step is so short that
// columns overlap.
template <class Rule>
void filter_columns_plain(const Grid& grid, const Pass& pass, const Rule& rule) {
  for (const Span& span : pass.spans) {
    uint8_t* row = grid.start + span.from * grid.row_step;
    for (uint32_t n = 0; n < span.count; ++n, row += grid.row_step) {
      for (uint32_t j = 0; j < grid.columns; ++j) {
        filter_sample(row + j * kColumnStep, grid.row_step, span.window, rule);
      }
    }
  }
}

// So many samples of each line are filtered at a time: the nearest cache holds them.
constexpr ptrdiff_t kChunk = 128;
constexpr ptrdiff_t kShortestChunk = kShortestWindow + 1;
static_assert(kShortestChunk >= kQuads);

// Filters the lines of a group. Each span and each chunk reads its neighbours anew, so that those
// before it are filtered ones.
template <class Lines, class Mean>
void filter_lines(const Lines& lines, const Pass& pass, const Mean& mean) {
  Cell cells[kChunk + kLongestWindow];
  for (const Span& span : pass.spans) {
    const Window window = span.window;
    Cell* const centres = cells + window.before;
    const ptrdiff_t end = span.from + static_cast<ptrdiff_t>(span.count);
    for (ptrdiff_t at = span.from; at < end; at += kChunk) {
      const ptrdiff_t count = std::min(kChunk, end - at);
      lines.load(cells, at - window.before, window.before + count + window.after);
      for (ptrdiff_t i = 0; i < count; ++i) centres[i] = filtered(centres + i, window, mean);
      lines.store(centres, at, count);
    }
  }
}

template <class Mean>
void filter_row_groups(const Grid& grid, const Pass& pass, const Mean& mean) {
  const auto rows = static_cast<ptrdiff_t>(grid.rows);
  for (ptrdiff_t i = 0; i < rows; i += kLines) {
    filter_lines(RowGroup(grid, i, std::min(kLines, rows - i)), pass, mean);
  }
}

template <class Mean>
void filter_column_groups(const Grid& grid, const Pass& pass, const Mean& mean) {
  const auto columns = static_cast<ptrdiff_t>(grid.columns);
  for (ptrdiff_t j = 0; j < columns; j += kLines) {
    // The last group begins with columns of the one before it.
    const ptrdiff_t first = std::min(j, columns - kLines);
    filter_lines(ColumnGroup(grid, first, j - first), pass, mean);
  }
}

// Calls `filter` with the rule's mean in vectors. The smallest table that holds the weights is the
// fastest.
template <class Filter>
void with_mean(const Weights& weights, Filter filter) {
  if (weights.threshold <= 16) return filter(WeightedMean<16>(weights));
  if (weights.threshold <= 32) return filter(WeightedMean<32>(weights));
  if (weights.threshold <= 64) return filter(WeightedMean<64>(weights));
  return filter(WeightedMean<128>(weights));
}

template <class Filter>
void with_mean(FixedTolerance, Filter filter) {
  filter(TolerantMean());
}

bool fits_16_bits(const Pass&, FixedTolerance) { return true; }

// Tells whether the vector form filters as the rule does. It filters the lines of a group at once,
// the rule one line after the other: the same bytes only if lines do not touch each other.
template <class Rule>
bool takes_vectors(const Grid& grid, const Pass& pass, const Rule& rule) {
  return kVectorized && fits_16_bits(pass, rule) &&
         grid.row_step >= static_cast<ptrdiff_t>(grid.columns) * kColumnStep;
}

template <class Rule>
void filter_rows(const Grid& grid, const Pass& pass, const Rule& rule) {
  if (!takes_vectors(grid, pass, rule)) return filter_rows_plain(grid, pass, rule);
  with_mean(rule, [&](const auto& mean) { filter_row_groups(grid, pass, mean); });
}

template <class Rule>
void filter_columns(const Grid& grid, const Pass& pass, const Rule& rule) {
  const bool fills_a_group = static_cast<ptrdiff_t>(grid.columns) >= kLines;
  if (!fills_a_group || !takes_vectors(grid, pass, rule)) {
    return filter_columns_plain(grid, pass, rule);
  }
  with_mean(rule, [&](const auto& mean) { filter_column_groups(grid, pass, mean); });
}

void tolerant_rows(const Grid& grid, const Pass& pass) {
  filter_rows(grid, pass, FixedTolerance{});
}

void tolerant_columns(const Grid& grid, const Pass& pass) {
  filter_columns(grid, pass, FixedTolerance{});
}

}  // namespace

const ChromaWindowKernels& chroma_window_kernels(ThisBuild) {
  static constexpr ChromaWindowKernels kKernels = {filter_rows<Weights>, filter_columns<Weights>,
                                                   tolerant_rows, tolerant_columns};
  return kKernels;
}

}  // namespace zavri
