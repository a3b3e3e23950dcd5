#include "resize/chroma_channels.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

void split_plain(const uint8_t* uv, size_t from, size_t pairs, uint8_t* a, uint8_t* b) {
  for (size_t i = from; i < pairs; ++i) {
    a[i] = uv[2 * i];
    b[i] = uv[2 * i + 1];
  }
}

void merge_plain(const uint8_t* a, const uint8_t* b, size_t from, size_t pairs, uint8_t* uv) {
  for (size_t i = from; i < pairs; ++i) {
    uv[2 * i] = a[i];
    uv[2 * i + 1] = b[i];
  }
}

#ifdef ZAVRI_BUILD_PLAIN

void split(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  split_plain(uv, 0, pairs, a, b);
}

void merge(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  merge_plain(a, b, 0, pairs, uv);
}

#else

// Whether no two of the ranges uv[0, 2 * pairs), a[0, pairs) and b[0, pairs) meet.
bool apart(const uint8_t* uv, const uint8_t* a, const uint8_t* b, size_t pairs) {
  const auto first = [](const uint8_t* p) { return reinterpret_cast<uintptr_t>(p); };
  const auto behind = [&](const uint8_t* p, const uint8_t* q, size_t bytes) {
    return first(p) >= first(q) && first(p) - first(q) >= bytes;
  };
  return (behind(a, uv, 2 * pairs) || behind(uv, a, pairs)) &&
         (behind(b, uv, 2 * pairs) || behind(uv, b, pairs)) &&
         (behind(a, b, pairs) || behind(b, a, pairs));
}

void split(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  size_t i = 0;
  if (apart(uv, a, b, pairs)) {
    for (; i + kVectorBytes <= pairs; i += kVectorBytes) {
      const V16 lo = load16(uv + 2 * i);
      const V16 hi = load16(uv + 2 * i + kVectorBytes);
      store(a + i, bytes_of(lo & 0xff, hi & 0xff));
      store(b + i, bytes_of(lo >> 8, hi >> 8));
    }
  }
  split_plain(uv, i, pairs, a, b);
}

void merge(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  size_t i = 0;
  if (apart(uv, a, b, pairs)) {
    for (; i + kVectorBytes <= pairs; i += kVectorBytes) {
      const V8 first = load(a + i);
      const V8 second = load(b + i);
      store(uv + 2 * i, zip_lo(first, second));
      store(uv + 2 * i + kVectorBytes, zip_hi(first, second));
    }
  }
  merge_plain(a, b, i, pairs, uv);
}

#endif

}  // namespace

const ChannelKernels& channel_kernels(ThisBuild) {
  static constexpr ChannelKernels kKernels = {split, merge};
  return kKernels;
}

}  // namespace zavri
