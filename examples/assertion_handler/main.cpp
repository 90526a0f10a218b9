// SPDX-License-Identifier: MIT

// An assertion handler for development: it says which check failed, and by which calls it was reached.
//
//   assertion_handler
//
// Take report_assertion as it is, and install it at the start of your program.  Link with -rdynamic (in
// CMake: ENABLE_EXPORTS), or your functions are addresses without a name.  In a debugger, a breakpoint on
// report_assertion stops where it happens.
//
// The program makes two mistakes on purpose.  Exits with 0 if the handler was called for each, with 1 if
// not.

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <tarntnla.h>

#include <cstdio>
#include <cstdlib>

namespace {

int g_assertions = 0;

void print_frame(int number, void* address) {
  Dl_info place{};
  if (dladdr(address, &place) == 0 || place.dli_sname == nullptr) {
    std::fprintf(stderr, "  #%-2d %p in %s\n", number, address,
                 place.dli_fname != nullptr ? place.dli_fname : "?");
    return;
  }
  int status = 0;
  char* const readable = abi::__cxa_demangle(place.dli_sname, nullptr, nullptr, &status);
  std::fprintf(stderr, "  #%-2d %s\n", number, status == 0 ? readable : place.dli_sname);
  std::free(readable);
}

// Goes on afterwards, as the library does: a program that must not put std::abort() at the end.
void report_assertion(const char* file, int line) {
  ++g_assertions;
  std::fprintf(stderr, "%s:%d: assertion failed\n", file, line);
  void* frames[32];
  const int n = backtrace(frames, 32);
  for (int i = 1; i < n; ++i) print_frame(i, frames[i]);  // frame 0 is this function
}

}  // namespace

// Two mistakes, out of line so that the report can name them.

[[gnu::noinline]] TnLaDblVec last_load(const TnLaDblMat& loads) {
  TnLaDblVec load = loads.col_vec(loads.n_cols());  // columns are counted from 0
  load.resize(static_cast<int>(loads.n_rows()), true);
  return load;
}

[[gnu::noinline]] int supports(const TnLaDblMat& stiffness, const TnLaDblVec& load) {
  int rank = 0;
  TnLaDblMat displacements;
  tnla_linearsolve(stiffness, TnLaDblMat(load, false), displacements, 0.0, &rank);  // no tolerance is 0
  return rank;
}

[[gnu::noinline]] int analyse() {
  const TnLaDblVec load = last_load(TnLaDblMat(3, 2, 1.0));
  return load.dim() + supports(TnLaDblMat(3, 3, 1.0), load);
}

int main() {
  kit_assertion_handler = report_assertion;
  const int answer = analyse();
  std::printf("%d assertions, and the program went on to its answer, %d\n", g_assertions, answer);
  return g_assertions == 2 ? 0 : 1;
}
