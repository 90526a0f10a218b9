// SPDX-License-Identifier: MIT

// A problem's program: asks every peer for every case, checks the answers, and then times the tasks.
//
//     --quick   the quick cases only
//     --check   the quick cases, and no timing: the answers alone
//
// All other options are those of Google Benchmark.  The name of a benchmark is operation/size/peer.

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/heap.h"
#include "common/peer.h"
#include "common/problem.h"

namespace {

using bench::Case;
using bench::Task;

struct Peer {
  std::string name;
  Task* (*make_task)(const Case&) = nullptr;

  std::unique_ptr<Task> task(const Case& c) const { return std::unique_ptr<Task>(make_task(c)); }
};

// The problem's name: the program is called <problem>_bench.
std::string problem() {
  const std::string name = program_invocation_short_name;
  return name.substr(0, name.rfind('_'));
}

// Nothing where the peer has no file for the problem.
Peer load(const std::string& name) {
  const std::string module = TNLA_BENCH_MODULES + problem() + "_" + name + ".so";
  if (access(module.c_str(), F_OK) != 0) return {};
  // Local: a name that two peers define is looked up in the peer's own modules.
  void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::fprintf(stderr, "%s is left out: %s\n", name.c_str(), dlerror());
    return {};
  }
  const auto version = reinterpret_cast<void (*)(char*, std::size_t)>(dlsym(handle, "bench_version"));
  char text[200] = {};
  version(text, sizeof(text));
  benchmark::AddCustomContext("peer:" + name, text);
  return {name, reinterpret_cast<Task* (*)(const Case&)>(dlsym(handle, "bench_make_task"))};
}

std::vector<Peer> load_peers() {
  std::vector<Peer> peers;
  std::istringstream names(TNLA_BENCH_PEERS);
  for (std::string name; names >> name;) {
    const Peer peer = load(name);
    if (peer.make_task != nullptr) peers.push_back(peer);
  }
  return peers;
}

std::string row_name(const Case& c) {
  const bool square = c.m == c.n || c.m == 0;
  return c.operation + "/" + (square ? "" : std::to_string(c.m) + "x") + std::to_string(c.n);
}

// How far the run is, on a terminal.  A call that ran long enough is one of its repetitions; a shorter one
// was to find out how many steps that takes.
class Progress {
 public:
  void expect(int repetitions) { expected_ += repetitions; }
  void add(double seconds, bool always) {
    if (!always && seconds < 0.7 * shortest) return;
    ++done_;
    if (isatty(STDERR_FILENO) == 0 || expected_ == 0) return;
    std::fprintf(stderr, "\r  %3d%% ", done_ < expected_ ? 100 * done_ / expected_ : 100);
  }
  double shortest = 0.0;

 private:
  int expected_ = 0;
  int done_ = 0;
} progress;

struct Row {
  int number;  // in the problem's table; the repetitions come in random order
  Case c;
  std::string name;
};

void time_task(benchmark::State& state, const Peer& peer, const Row& row, heap::Use use) {
  const std::unique_ptr<Task> task = peer.task(row.c);
  task->run(1);  // the memory is there, the caches know it
  const auto start = std::chrono::steady_clock::now();
  while (state.KeepRunningBatch(state.max_iterations)) task->run(state.max_iterations);
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  progress.add(passed.count(), row.c.extent == bench::Extent::kLong);
  state.counters["row"] = row.number;
  if (peer.name == "tnla") {
    state.counters["peak_bytes"] = static_cast<double>(use.peak);
    state.counters["allocations"] = static_cast<double>(use.allocations);
  }
}

// Runs the task once and returns the error of its answer, which it tells if that is too large.
double checked(const Peer& peer, const Row& row, Task& task, heap::Use& use) {
  std::vector<double> answer(bench::answer_size(row.c), std::numeric_limits<double>::quiet_NaN());
  heap::start();
  task.run(1);
  use = heap::stop();
  task.answer(answer.data());
  const double error = bench::error(row.c, answer.data());
  if (!(error <= 1.0)) {
    std::fprintf(stderr, "WRONG: %s/%s: the error is %g times what rounding explains\n", row.name.c_str(),
                 peer.name.c_str(), error);
  }
  return error;
}

// For a run whose results go to a file.
class Silent : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& /*runs*/) override {}
};

struct Options {
  bool quick = false;
  bool check = false;
  bool silent = false;
  int repetitions = 0;
};

// Takes ours out of the arguments.
Options take_options(int& argc, char** argv) {
  Options options;
  int kept = 0;
  for (int i = 0; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--quick") {
      options.quick = true;
    } else if (argument == "--check") {
      options.quick = options.check = true;
    } else {
      argv[kept++] = argv[i];
    }
    const auto value_of = [argument](std::string_view name) {
      return argument.substr(0, name.size()) == name ? std::stod(std::string(argument.substr(name.size())))
                                                     : 0.0;
    };
    options.silent |= argument.substr(0, 16) == "--benchmark_out=";
    options.repetitions += static_cast<int>(value_of("--benchmark_repetitions="));
    progress.shortest += value_of("--benchmark_min_time=");
  }
  argc = kept;
  return options;
}

constexpr int kLongRepetitions = 3;

void register_benchmark(const Peer& peer, const Row& row, heap::Use use, int repetitions) {
  auto* const made = benchmark::RegisterBenchmark(
      (row.name + "/" + peer.name).c_str(),
      [&peer, &row, use](benchmark::State& state) { time_task(state, peer, row, use); });
  if (row.c.extent == bench::Extent::kLong) {
    made->Iterations(1)->Repetitions(repetitions = kLongRepetitions);
  }
  progress.expect(repetitions);
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = take_options(argc, argv);
  const std::vector<Peer> peers = load_peers();

  std::vector<Row> rows;
  for (const Case& c : bench::cases()) {
    if (!options.quick || c.extent == bench::Extent::kQuick) {
      rows.push_back({static_cast<int>(rows.size()), c, row_name(c)});
    }
  }
  int n_right = 0;
  double worst = 0.0;
  for (Row& row : rows) {
    bench::fill(row.c);
    for (const Peer& peer : peers) {
      const std::unique_ptr<Task> task = peer.task(row.c);
      if (task == nullptr) continue;
      heap::Use use;
      const double error = checked(peer, row, *task, use);
      if (!(error <= 1.0)) return 1;
      worst = std::max(worst, error);
      ++n_right;
      register_benchmark(peer, row, use, options.repetitions);
    }
  }
  if (options.check) {
    std::printf("%d answers are right, the worst error is %.2g of what rounding explains\n", n_right,
                worst);
    return n_right == 0 ? 1 : 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  Silent silent;
  if (options.silent) {
    benchmark::RunSpecifiedBenchmarks(&silent);
  } else {
    benchmark::RunSpecifiedBenchmarks();
  }
  benchmark::Shutdown();
}
