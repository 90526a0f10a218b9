// SPDX-License-Identifier: MIT

// The program's operators new and delete for all of its DLLs, too.
//
// Where a program replaces these operators, other systems' loaders make all modules use them.  On Windows
// each module keeps those that it was linked to, of libstdc++-6.dll, and a test that counts allocations, or
// makes them fail, would not reach the library.  Here, before main, a jump to the program's operator is
// written over the beginning of the DLL's.  The other forms call these four, but for those with an
// alignment, which the library does not use.

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Nothing, if the program has no such operator: what it calls is then a jump through the table of its
// imports.
void replace(const char* name, const void* by) {
  constexpr unsigned char kThroughTable[] = {0xff, 0x25};
  if (std::memcmp(by, kThroughTable, sizeof kThroughTable) == 0) return;
  FARPROC const found = GetProcAddress(GetModuleHandleA("libstdc++-6.dll"), name);
  void* function = nullptr;
  std::memcpy(&function, &found, sizeof function);
  unsigned char jump[] = {0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xe0};  // rax = by; jump to rax
  std::memcpy(jump + 2, &by, sizeof by);
  DWORD old = 0;
  if (function == nullptr || VirtualProtect(function, sizeof jump, PAGE_EXECUTE_READWRITE, &old) == 0) {
    std::abort();
  }
  std::memcpy(function, jump, sizeof jump);
  VirtualProtect(function, sizeof jump, old, &old);
  FlushInstructionCache(GetCurrentProcess(), function, sizeof jump);
}

const bool all_use_the_programs = [] {
  using Make = void*(std::size_t);
  using Release = void(void*) noexcept;
  replace("_Znwy", reinterpret_cast<const void*>(static_cast<Make*>(&::operator new)));
  replace("_Znay", reinterpret_cast<const void*>(static_cast<Make*>(&::operator new[])));
  replace("_ZdlPv", reinterpret_cast<const void*>(static_cast<Release*>(&::operator delete)));
  replace("_ZdaPv", reinterpret_cast<const void*>(static_cast<Release*>(&::operator delete[])));
  return true;
}();

}  // namespace
