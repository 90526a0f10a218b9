// SPDX-License-Identifier: MIT

// Prints how long, in microseconds, it takes to load modules one after the other, into a program that has
// the C++ library already.  One program, one load: the second one would find everything in place.

#include <dlfcn.h>

#include <chrono>
#include <iostream>

int main(int argc, char** argv) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 1; i < argc; ++i) {
    if (dlopen(argv[i], RTLD_NOW | RTLD_GLOBAL) == nullptr) {
      std::cerr << dlerror() << '\n';
      return 1;
    }
  }
  const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - start;
  std::cout << taken.count() << '\n';
}
