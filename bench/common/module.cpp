// SPDX-License-Identifier: MIT

#include <cstring>

#include "common/peer.h"

// The two symbols that a peer's module shows.

extern "C" __attribute__((visibility("default"))) bench::Task* bench_make_task(const bench::Case& c) {
  return bench::make_task(c).release();
}

extern "C" __attribute__((visibility("default"))) void bench_version(char* text, std::size_t size) {
  std::strncpy(text, bench::version().c_str(), size - 1);
}
