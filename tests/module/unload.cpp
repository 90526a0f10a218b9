// SPDX-License-Identifier: MIT

// Loads and unloads both modules a thousand times, works with them in between, and lets a TnResult that was
// filed by TARNtnla outlive it: its code and number stay, its text is gone with the module.  Fails if a
// module stays in memory or a round leaves a block behind; valgrind, in ./dev module, sees the rest. usage:
// unload <path of TARNtn> <path of TARNtnla>

#include <dlfcn.h>
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tnresult.h"

namespace {

constexpr int kRounds = 1000;
constexpr int kFirstRounds =
    50;  // until the loader and malloc have filled what they keep for the next time
constexpr int kSingularMatrix = 17;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

class Module {
 public:
  explicit Module(const char* path) : path_(path), handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    require(handle_ != nullptr, "cannot be loaded");
  }
  ~Module() {
    require(dlclose(handle_) == 0, "cannot be unloaded");
    require(dlopen(path_, RTLD_NOW | RTLD_NOLOAD) == nullptr, "is still there");
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  template <class F>
  F* function(const char* name) const {
    void* const address = dlsym(handle_, name);
    require(address != nullptr, name);
    return reinterpret_cast<F*>(address);
  }

 private:
  const char* path_;
  void* handle_;
};

bool is_mapped(const void* address) {
  Dl_info info;
  return dladdr(address, &info) != 0;
}

void one_round(const char* tn_path, const char* tnla_path) {
  const Module tn(tn_path);
  const auto error_text = tn.function<const char*(const TnResult*)>("_ZNK8TnResult10error_textEv");
  const auto get = tn.function<void(const TnResult*, TnResult::CodeID&, int&, const TnString**&)>(
      "_ZNK8TnResult19get_error_conditionERNS_6CodeIDERiRPPK8TnString");
  TnResult result;
  const char* text = nullptr;
  {
    const Module tnla(tnla_path);
    tnla.function<void(TnResult::CodeID, int, TnResult&)>(
        "_ZN7TnLaErr11make_resultEN8TnResult6CodeIDENS_11ErrorNumberERS0_")(TnResult::CodeID::error,
                                                                            kSingularMatrix, result);
    text = error_text(&result);
    require(std::string("Singular matrix found.") == text, "another text");
    require(is_mapped(text), "a text that is nowhere");

    const double u[] = {1.0, 0.0, 0.0, 0.0};  // four elements: this one allocates
    const double w[] = {0.0, 2.0, 0.0, 0.0};
    double product[4] = {};
    using CrossProduct = void(int, const double*, const double*, double*, bool, bool, bool);
    tnla.function<CrossProduct>("_Z14tnla_crossprodiPKdS0_Pdbbb")(4, u, w, product, false, false, false);
    require(product[2] * product[2] + product[3] * product[3] == 4.0, "another product");
  }
  TnResult::CodeID code = TnResult::CodeID::none;
  int number = 0;
  const TnString** package = nullptr;
  const TnResult copy = result;
  get(&copy, code, number, package);
  require(code == TnResult::CodeID::error && number == kSingularMatrix, "another condition");
  require(!is_mapped(text) && !is_mapped(package), "something of the module is still there");
}

}  // namespace

int main(int argc, char** argv) {
  require(argc == 3, "usage: unload <path of TARNtn> <path of TARNtnla>");
  std::size_t in_use = 0;
  for (int round = 0; round < kRounds; ++round) {
    if (round == kFirstRounds) in_use = mallinfo2().uordblks;
    one_round(argv[1], argv[2]);
  }
  require(mallinfo2().uordblks == in_use, "a round has left something behind");
  std::printf("loaded and unloaded %d times\n", kRounds);
}
