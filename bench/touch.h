#pragma once

#include <cstddef>
#include <cstdint>

// These loops load and store the bytes that a kernel loads and stores, with as little work between
// as keeps the compiler from dropping them. They show what memory alone costs.
namespace zavri::bench {

// The result in written[0, bytes) depends on what stood there and on `others` rows.
void touch_row(uint8_t* written, const uint8_t* const* read, int others, size_t bytes);

// read[0, bytes) is only loaded; the result depends on all of it.
uint64_t touch_row(const uint8_t* read, size_t bytes);

}  // namespace zavri::bench
