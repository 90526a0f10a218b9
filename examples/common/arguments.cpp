// SPDX-License-Identifier: MIT

#include "arguments.h"

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void refuse(const std::string& name, const std::string& problem, const std::string& usage) {
  std::fprintf(stderr, "%s: %s\n%s\n", name.c_str(), problem.c_str(), usage.c_str());
  std::exit(2);
}

}  // namespace

Arguments parse_arguments(int argc, char** argv, const std::string& name, Input input) {
  const std::string usage =
      "usage: " + name + " [--picture FILE.svg]" + (input == Input::file ? " [FILE]" : "");
  Arguments result{"", name + ".svg"};
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--help") {
      std::puts(usage.c_str());
      std::exit(0);
    } else if (word == "--picture") {
      if (++i == argc) refuse(name, "--picture wants a file", usage);
      result.picture = argv[i];
    } else if (word.empty() || word[0] == '-' || input == Input::none || !result.file.empty()) {
      refuse(name, "'" + word + "' is not understood", usage);
    } else {
      result.file = word;
    }
  }
  return result;
}
