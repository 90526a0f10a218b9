// SPDX-License-Identifier: MIT

#pragma once

#include <string>

// The command line of an example:  NAME [--picture FILE.svg] [FILE]
struct Arguments {
  std::string file;     // empty if none is given
  std::string picture;  // NAME.svg in the current folder if none is given
};

// Whether a FILE may be given.
enum class Input { file, none };

// Prints the usage and ends the program with 0 for --help, with 2 for anything that is not understood.
Arguments parse_arguments(int argc, char** argv, const std::string& name, Input input);
