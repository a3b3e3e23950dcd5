#pragma once

#include <cstddef>
#include <cstdint>

// Loops that load and store the bytes that a kernel loads and stores, with as little work between
// as keeps the compiler from dropping them: what memory alone costs.
namespace zavri::bench {

// written[0, bytes) takes part in the result, as do `others` rows.
void touch_row(uint8_t* written, const uint8_t* const* read, int others, size_t bytes);

// read[0, bytes) is only loaded; the result depends on all of it.
uint64_t touch_row(const uint8_t* read, size_t bytes);

}  // namespace zavri::bench
