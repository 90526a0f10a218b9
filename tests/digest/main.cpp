// SPDX-License-Identifier: MIT

// Prints a digest of all that the library computes: one line for each family of operations, with the
// digests after 1, 10 and 100 percent of its rounds.  They are the same for every compiler, level,
// processor, kernel set, place in memory and number of threads; expected.txt holds them, and is the output
// of
//     digest > tests/digest/expected.txt
// The first percent has all but the rarest operations, ten percent have every size from 0 to 64, 100 and
// 183, and the last round of all has the largest sizes.
#include <algorithm>
#include <cfenv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "families.h"
#include "placed.h"

namespace {

constexpr std::size_t kCheckpoints[] = {1, 10, 100};  // percent

struct Line {
  std::vector<std::string> digests;
  std::uint64_t results = 0;
};
using Lines = std::map<std::string, Line>;

struct Options {
  std::size_t percent = 100;
  std::size_t n_threads = 1;
  bool every_place = false;
  bool counts = false;
  std::string expected;
  std::vector<Family> families;
};

// Failed checks count, too.
thread_local Digest* checked = nullptr;
void record_check(const char* file, int /*line*/) { checked->text(file); }

std::string hexadecimal(std::uint64_t bits) {
  char text[17];
  std::snprintf(text, sizeof text, "%08lx%08lx", static_cast<unsigned long>(bits >> 32),
                static_cast<unsigned long>(bits & 0xffffffffu));
  return text;
}

std::uint64_t seed_of(const char* name) {
  Digest digest;
  digest.text(name);
  return digest.value() >> 32;
}

Line line_of(const Family& family, std::size_t percent) {
  Line line;
  Digest digest;
  checked = &digest;
  const std::uint64_t seed = seed_of(family.name);
  std::size_t round = 0;
  for (const std::size_t checkpoint : kCheckpoints) {
    if (checkpoint > percent) break;
    for (; round < family.rounds / 100 * checkpoint; ++round) {
      Data data(seed, round, family.rounds);
      family.round(data, digest);
    }
    line.digests.push_back(hexadecimal(digest.value()));
  }
  line.results = digest.results();
  return line;
}

// All families, beginning with another one in each thread, so that they meet.
Lines lines_of(const Options& options, std::size_t thread) {
  Lines lines;
  const std::size_t n = options.families.size();
  for (std::size_t k = 0; k < n; ++k) {
    const Family& family = options.families[(k + thread) % n];
    lines[family.name] = line_of(family, options.percent);
  }
  return lines;
}

// Whether all threads agree; the lines are those of the last one.
bool compute(const Options& options, Lines& lines) {
  std::vector<Lines> results(options.n_threads);
  std::vector<std::thread> threads;
  for (std::size_t t = 1; t < options.n_threads; ++t) {
    threads.emplace_back([&, t] { results[t] = lines_of(options, t); });
  }
  results[0] = lines_of(options, 0);
  for (std::thread& thread : threads) thread.join();
  lines = results[0];
  bool agree = true;
  for (const Lines& of_thread : results) {
    for (const auto& [name, line] : of_thread) agree = agree && line.digests == lines[name].digests;
  }
  if (!agree) std::printf("the threads differ\n");
  return agree;
}

// Three digests for each name.
Lines read(const std::string& path) {
  Lines lines;
  std::ifstream file(path);
  for (std::string text; std::getline(file, text);) {
    std::istringstream words(text);
    std::string name;
    words >> name;
    for (std::string digest; words >> digest;) lines[name].digests.push_back(digest);
  }
  return lines;
}

// Whether they begin as expected.
bool is_expected(const Line& line, const Line& expected) {
  if (line.digests.size() > expected.digests.size()) return false;
  for (std::size_t k = 0; k < line.digests.size(); ++k) {
    if (line.digests[k] != expected.digests[k]) return false;
  }
  return true;
}

// Prints the lines in the order of the families; whether all are as expected.
bool report(const Options& options, Lines lines, Lines expected) {
  bool all = true;
  for (const Family& family : options.families) {
    const Line& line = lines[family.name];
    std::printf("%-14s", family.name);
    for (const std::string& digest : line.digests) std::printf(" %s", digest.c_str());
    if (options.counts) std::printf(" %10.0f", static_cast<double>(line.results));
    if (!options.expected.empty()) {
      const bool same = is_expected(line, expected[family.name]);
      std::printf(" %s", same ? "as expected" : "DIFFERS");
      all = all && same;
    }
    std::printf("\n");
  }
  std::fflush(stdout);
  return all;
}

[[noreturn]] void show_usage() {
  std::fprintf(stderr,
               "usage: digest [--percent 1|10|100] [--threads N] [--place 0...63|every] [--counts]\n"
               "              [--expected FILE] [FAMILY ...]\n");
  std::exit(2);
}

const Family& family_called(const std::string& name) {
  for (const Family& family : kFamilies) {
    if (name == family.name) return family;
  }
  show_usage();
}

Options options_from(int n_args, char** args) {
  Options options;
  for (int i = 1; i < n_args; ++i) {
    const std::string name = args[i];
    const auto value = [&]() -> std::string {
      if (i + 1 == n_args) show_usage();
      return args[++i];
    };
    const auto number = [&] { return static_cast<std::size_t>(std::atoi(value().c_str())); };
    if (name == "--percent") {
      options.percent = number();  // expected.txt has no others
      if (std::find(std::begin(kCheckpoints), std::end(kCheckpoints), options.percent) ==
          std::end(kCheckpoints)) {
        show_usage();
      }
    } else if (name == "--threads") {
      options.n_threads = number();
    } else if (name == "--place") {
      const std::string where = value();
      options.every_place = where == "every";
      place = static_cast<std::size_t>(std::atoi(where.c_str())) % kPlaces;
    } else if (name == "--counts") {
      options.counts = true;
    } else if (name == "--expected") {
      options.expected = value();
    } else {
      options.families.push_back(family_called(name));
    }
  }
  if (options.families.empty()) options.families.assign(std::begin(kFamilies), std::end(kFamilies));
  return options;
}

}  // namespace

int main(int n_args, char** args) {
  // A program that is linked with -ffast-math begins with subnormals taken for zero, in all of its modules.
  std::fesetenv(FE_DFL_ENV);
  const Options options = options_from(n_args, args);
  kit_assertion_handler = &record_check;
  const Lines expected = read(options.expected);
  bool all = true;
  const std::size_t last_place = options.every_place ? kPlaces - 1 : place;
  for (; place <= last_place; ++place) {
    if (options.every_place) std::printf("place %d\n", static_cast<int>(place));
    Lines lines;
    all = compute(options, lines) && all;
    all = report(options, lines, expected) && all;
  }
  return all ? 0 : 1;
}
