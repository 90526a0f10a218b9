// SPDX-License-Identifier: MIT

// Linear regression on data sets with certified results: how many digits does a least-squares solve get
// right?
//
//   linear_regression [--digits N] [--picture FILE.svg] [FILE ...]
//
// The picture is of the last data set, if it has one predictor.  Exits with 0 if every coefficient reaches
// the digits expected of its data set, with 1 if one does not, with 2 if a file or the command line is
// wrong.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "data_set.h"
#include "picture.h"
#include "regression.h"

namespace {

constexpr char kUsage[] = "usage: linear_regression [--digits N] [--picture FILE.svg] [FILE ...]";

constexpr double kDigitsOfNamedFile = 5.0;

struct Task {
  std::string path;
  double digits;    // expected of every coefficient
  const char* why;  // that many
};

// The expectations.  "Condition" is that of the design with its columns scaled to length 1, from exact
// arithmetic: of 16 digits, its logarithm is lost.  More is lost where a coefficient is small beside the
// data that it is computed from.
std::vector<Task> own_data_sets() {
  const std::string folder = DATA_FOLDER "/nist/";
  return {
      {folder + "Norris.txt", 13.0, "condition 3, and an intercept of 0.3 beside data of 1000"},
      {folder + "NoInt1.txt", 14.0, "condition 1: one column"},
      {folder + "Pontius.txt", 12.0, "condition 18, and an intercept of 7e-4 beside data of 2"},
      {folder + "Longley.txt", 12.0, "condition 4e4: predictors that grow together"},
      {folder + "Wampler1.txt", 9.0, "condition 2e3, and coefficients of 1 beside data of 3e6"},
      {folder + "Filip.txt", 6.5, "condition 5e9: the rounding of the powers alone costs that"},
  };
}

// One line per coefficient.  Returns the fewest correct digits.
double print_coefficients(const DataSet& data, const Fit& fit) {
  std::printf("  %-12s %23s %23s %7s\n", "coefficient", "computed", "certified", "digits");
  double worst = INFINITY;
  for (std::size_t j = 0; j < data.coefficients.size(); ++j) {
    const Coefficient& coefficient = data.coefficients[j];
    const double digits = correct_digits(fit.coefficients(j, 0), coefficient.certified);
    std::printf("  %-12s %23.14e %23.14e %7.1f\n", coefficient.name.c_str(), fit.coefficients(j, 0),
                coefficient.certified, digits);
    worst = std::min(worst, digits);
  }
  return worst;
}

// Prints the table of one data set.  True if every coefficient has the digits expected.
bool report(const Task& task, const DataSet& data, const Fit& result) {
  std::printf("%s: %zu observations, %zu coefficient%s\n", data.name.c_str(), data.n_observations(),
              data.terms.size(), data.terms.size() == 1 ? "" : "s");
  if (result.by_qr) {
    std::printf("  solved by QR\n");
  } else {
    std::printf("  refused by the QR verdict; solved by the rank-revealing decomposition, rank %d\n",
                result.rank);
  }
  const double worst = print_coefficients(data, result);
  std::printf("  %-12s %23.14e %23.14e\n", "residual sd", result.residual_sd, data.residual_sd);
  const bool reached = worst >= task.digits;
  std::printf("  fewest digits %.1f, expected %.1f: %s%s%s\n\n", worst, task.digits,
              reached ? "ok" : "MISSED", *task.why != '\0' ? " - " : "", task.why);
  return reached;
}

[[noreturn]] void refuse(const std::string& problem) {
  std::fprintf(stderr, "linear_regression: %s\n%s\n", problem.c_str(), kUsage);
  std::exit(2);
}

double parse_digits(const char* word) {
  char* end = nullptr;
  const double digits = std::strtod(word, &end);
  if (end == word || *end != '\0' || !(digits >= 0.0 && digits <= 15.0)) {
    refuse(std::string("'") + word + "' is not a number of digits from 0 to 15");
  }
  return digits;
}

struct Request {
  std::vector<Task> tasks;
  std::string picture;
};

Request parse(int argc, char** argv) {
  double digits = -1.0;
  Request result{{}, "linear_regression.svg"};
  std::vector<Task>& tasks = result.tasks;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--digits") {
      if (++i == argc) refuse("--digits wants a number");
      digits = parse_digits(argv[i]);
    } else if (word == "--picture") {
      if (++i == argc) refuse("--picture wants a file");
      result.picture = argv[i];
    } else if (word == "--help") {
      std::puts(kUsage);
      std::exit(0);
    } else if (word.size() > 1 && word[0] == '-') {
      refuse("unknown option '" + word + "'");
    } else {
      tasks.push_back({word, kDigitsOfNamedFile, ""});
    }
  }
  if (tasks.empty()) tasks = own_data_sets();
  if (digits >= 0.0) {
    for (Task& task : tasks) task.digits = digits;
  }
  return result;
}

// True if every coefficient of the task has the digits expected of it.
bool run(const Request& request, const Task& task) {
  const DataSet data = read_data_set(task.path);
  const Fit result = fit(data);
  const bool reached = report(task, data, result);
  if (&task == &request.tasks.back() && can_be_drawn(data)) {
    draw_fit(data, result, request.picture);
    std::printf("Picture: %s\n", request.picture.c_str());
  }
  return reached;
}

}  // namespace

int main(int argc, char** argv) {
  const Request request = parse(argc, argv);
  int status = 0;
  for (const Task& task : request.tasks) {
    try {
      if (!run(request, task) && status == 0) status = 1;
    } catch (const std::exception& problem) {
      std::fflush(stdout);
      std::fprintf(stderr, "%s\n", problem.what());
      status = 2;
    }
  }
  return status;
}
