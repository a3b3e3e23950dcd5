#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

#include "include/zavricustpro.h"

// The test framework looks for this beside the record.
std::ostream& operator<<(std::ostream& out, const T_3DYuvDenoiseParam& param);

namespace zavri::testing {

// Holds four frames and the record that describes them, with room in front and behind for sections
// that run past a frame. Copies own their frames.
class Frames {
 public:
  T_3DYuvDenoiseParam param{};

  // `gap` bytes lie between the planes; without them luma rows may run into the chroma plane.
  Frames(uint32_t width, uint32_t height, uint32_t y_stride, uint32_t uv_stride, uint32_t gap);
  Frames(const Frames& other);
  Frames& operator=(const Frames&) = delete;

  const std::vector<uint8_t>& bytes(int k) const { return bytes_[k]; }
  size_t size() const;

  void set(int k, std::vector<uint8_t> bytes);

 private:
  std::vector<uint8_t> bytes_[4];
};

// Works one strip in the calling thread.
void run_strip(const T_3DYuvDenoiseParam& param, int32_t strip);

}  // namespace zavri::testing
