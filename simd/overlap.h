#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace zavri {

// A Range is the bytes [first, first + count).
struct Range {
  const uint8_t* first;
  size_t count;
};

// Tells whether two ranges share a byte: the one that begins later begins inside the other. For an
// empty one either answer may come and serves, because nothing is read or written there. Only
// differences of addresses are taken, because a sum of address and count may wrap.
inline bool overlap(const Range& a, const Range& b) {
  const auto a_first = reinterpret_cast<uintptr_t>(a.first);
  const auto b_first = reinterpret_cast<uintptr_t>(b.first);
  const bool a_begins_first = a_first < b_first;
  const uintptr_t distance = a_begins_first ? b_first - a_first : a_first - b_first;
  return distance < (a_begins_first ? a.count : b.count);
}

// An Access says that a row kernel reads one range and writes another.
struct Access {
  Range read;
  Range written;
};

// Tells whether no access writes what it reads. A vector form reads many lanes before it writes
// them, the rule goes on from lane to lane: both leave the same bytes if nothing that is written is
// read in another lane.
inline bool no_overlap(std::initializer_list<Access> accesses) {
  for (const Access& access : accesses) {
    if (overlap(access.read, access.written)) return false;
  }
  return true;
}

}  // namespace zavri
