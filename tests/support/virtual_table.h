// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstring>

// Where a class keeps its virtual operations, which is part of the interface between modules.

#if defined(__GNUC__) && defined(__x86_64__)
#define HAS_TABLE_PLACE 1

// A pointer to a virtual member begins with its offset in the table, plus one.  The destructor takes the
// first two places.
template <class Member>
std::size_t table_place(Member member) {
  std::size_t offset_plus_one = 0;
  std::memcpy(&offset_plus_one, &member, sizeof(offset_plus_one));
  return (offset_plus_one - 1) / sizeof(void*);
}
#endif
