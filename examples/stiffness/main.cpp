// SPDX-License-Identifier: MIT

// A stiffness matrix: several loads on a frame by one Cholesky factor, and a load that shakes it.
//
//   stiffness [--picture FILE.svg] [FILE]
//
// Statics.  K x = f: the stiffness matrix K of the frame is symmetric and positive definite, f are the
// forces, x the displacements.  K is given once; each load costs two triangular solves.
//
// Dynamics.  With unit masses, a force f cos(w t) makes the frame swing as x cos(w t), where
// (K - w^2 I) x = f.  Above the lowest eigenfrequency this matrix is indefinite, and has no Cholesky
// factor.  The same class solves it all the same, without a report.
//
// Exits with 0 if every check is met, with 1 if one is not, with 2 if the file or the command line is
// wrong.

#include <tarntnla.h>

#include <cmath>
#include <cstdio>
#include <exception>
#include <random>
#include <string>
#include <vector>

#include "common/arguments.h"
#include "common/checks.h"
#include "common/text_file.h"
#include "errors.h"
#include "frame.h"
#include "matrix_market.h"
#include "picture.h"

namespace {

constexpr std::size_t kX = 0;
constexpr std::size_t kY = 1;

int n_reports = 0;
void count_report(const char* /*file*/, int /*line*/) { ++n_reports; }

// --- Units ---------------------------------------------------------------------------------------------

// The solver calls a pivot zero below 1e-10, in whatever units, and K goes up to 2e9.  So each unknown gets
// the unit in which its own stiffness is between 1/4 and 1: a power of two, so that no bit is lost.  With
// these s on the diagonal of S, K x = f becomes S K S y = S f and x = S y.
TnLaDblVec units(const TnLaDblMat& K) {
  TnLaDblVec s(frame::kUnknowns, 0, 0.0);
  for (int i = 0; i < s.dim(); ++i) {
    int exponent = 0;
    std::frexp(K(static_cast<std::size_t>(i), static_cast<std::size_t>(i)), &exponent);
    s(i) = std::ldexp(1.0, -(exponent + 1) / 2);
  }
  return s;
}

TnLaDblMat scaled(TnLaDblMat K, const TnLaDblVec& s) {
  for (std::size_t j = 0; j < K.n_cols(); ++j) {
    for (std::size_t i = 0; i < K.n_rows(); ++i) K(i, j) *= s(static_cast<int>(i)) * s(static_cast<int>(j));
  }
  return K;
}

TnLaDblVec scaled(TnLaDblVec f, const TnLaDblVec& s) {
  for (int i = 0; i < f.dim(); ++i) f(i) *= s(i);
  return f;
}

// --- The frame and its loads ---------------------------------------------------------------------------

// Whether K belongs to the frame: rigid motions put no force on a free node.  The file has 12 digits of
// each entry, cut off, so that a term errs by 1e-11 of itself.
void check_frame(const TnLaDblMat& K, Checks& checks) {
  const TnLaDblMat R = frame::rigid_motions();
  double worst = 0.0;
  for (std::size_t motion = 0; motion < R.n_cols(); ++motion) {
    for (std::size_t i = 0; i < 6 * frame::kFreeNodes; ++i) {
      double force = 0.0;
      double size = 0.0;
      for (std::size_t j = 0; j < frame::kUnknowns; ++j) {
        force += K(i, j) * R(j, motion);
        size += std::fabs(K(i, j) * R(j, motion));
      }
      if (size > 0.0) worst = larger(worst, std::fabs(force) / size);
    }
  }
  checks.at_most("forces of rigid motions on nodes 1 to 4, relative", worst, 1e-11, "");
}

TnLaDblVec force(std::size_t node, std::size_t axis, double value) {
  return TnLaDblVec(frame::kUnknowns, static_cast<int>(6 * (node - 1) + axis), value);
}

std::vector<Response> loads() {
  TnLaDblVec weight(frame::kUnknowns, 0, 0.0);
  for (std::size_t node = 1; node <= frame::kNodes; ++node) weight += force(node, kY, -0.125);

  // Forces in [-1, 1), by mt19937 of the C++ standard with its default seed.
  std::mt19937 generator;
  TnLaDblVec random(frame::kUnknowns, 0, 0.0);
  for (std::size_t node = 1; node <= frame::kNodes; ++node) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      random += force(node, axis, std::ldexp(static_cast<double>(generator()), -31) - 1.0);
    }
  }
  return {{"Push: 1 at node 1", force(1, kX, 1.0), {}},
          {"Weight: 1, shared by the nodes", weight, {}},
          {"Twist: 1 at node 1, -1 at node 2", force(1, kX, 1.0) + force(2, kX, -1.0), {}},
          {"Pseudo-random forces", random, {}}};
}

void print_head() {
  std::printf("  %-33s%26s%17s%12s\n", "load", "largest displacement", "compliance f'x", "residual");
}

void print_response(const Response& response, double residual) {
  int largest = 0;
  for (int i = 0; i < response.x.dim(); ++i) {
    if (i % 6 < 3 && std::fabs(response.x(i)) > std::fabs(response.x(largest))) largest = i;
  }
  std::printf("  %-33s%12.4e, node %d in %c%17.4e%12.1e\n", response.name.c_str(), response.x(largest),
              largest / 6 + 1, "xyz"[largest % 6], response.load % response.x, residual);
}

// --- Statics -------------------------------------------------------------------------------------------

void run_statics(const TnLaDblMat& K, std::vector<Response>& responses, Checks& checks) {
  std::printf("\nStatics, K x = f: %zu loads with one factor\n", responses.size());
  print_head();
  const TnLaDblVec s = units(K);
  const TnLaDblMat A = scaled(K, s);
  TnLaCholesky cholesky(frame::kUnknowns);
  cholesky.a(A.array());
  double worst = 0.0;
  for (Response& response : responses) {
    const TnLaDblVec b = scaled(response.load, s);
    cholesky.b(b.array());
    const TnLaDblVec y = cholesky.x();
    response.x = scaled(y, s);
    const double residual = relative_residual(scaled(K * response.x - response.load, s), A, y, b);
    print_response(response, residual);
    worst = larger(worst, residual);
  }
  checks.at_most("largest residual", worst, cholesky_bound(frame::kUnknowns), "");
}

// --- Dynamics ------------------------------------------------------------------------------------------

struct Spectrum {
  TnLaDblVec values;  // in decreasing order
  TnLaDblMat vectors;
  double distance;  // of the matrix to a singular one, at least

  double lowest(int k) const { return values(values.dim() - k); }  // the k-th from below
};

Spectrum spectrum(const TnLaDblMat& A, Checks& checks) {
  TnLaDblMat scratch = A;
  TnArray<double> values;
  TnLaDblMat vectors;
  checks.is_true("the iteration for the eigenvalues has converged",
                 tnla_eigenvector_basis(scratch, values, vectors));
  return {values, vectors, distance_to_singular(A, values, vectors)};
}

void print_frequencies(const Spectrum& K) {
  for (int k = 1; k <= 4; ++k) {
    std::printf("  %d  w = %8.3f   w^2 = %9.2f\n", k, std::sqrt(K.lowest(k)), K.lowest(k));
  }
}

// A load in time, with the frequency w.
void run_dynamics(const TnLaDblMat& K, double w, Response& response, Checks& checks) {
  std::printf("\nDynamics, (K - w^2 I) x = f: w = %.3f, between the first two\n", w);
  print_head();
  const TnLaDblMat D = K - TnLaDblMat(frame::kUnknowns, frame::kUnknowns, w * w);
  const TnLaDblVec s = units(D);
  const TnLaDblMat A = scaled(D, s);
  const TnLaDblVec b = scaled(response.load, s);
  TnLaCholesky cholesky(frame::kUnknowns);
  cholesky.a(A.array());
  cholesky.b(b.array());
  const TnLaDblVec y = cholesky.x();
  response.x = scaled(y, s);
  const double residual = relative_residual(scaled(D * response.x - response.load, s), A, y, b);
  print_response(response, residual);
  const double bound = reflection_bound(frame::kUnknowns);
  checks.at_most("residual", residual, bound, "");

  // What the class did not say: A is indefinite.  By Sylvester's law it has as many negative eigenvalues as
  // there are eigenfrequencies below w.
  const Spectrum of_A = spectrum(A, checks);
  checks.is_true("one eigenvalue is negative, all rounding errors counted",
                 of_A.lowest(1) < 0.0 && of_A.lowest(2) > 0.0 && of_A.distance > 0.0);
  TnLaDblMat Z;
  checks.is_true("tnla_linearsolve: full rank", tnla_linearsolve(A, TnLaDblMat(b, false), Z));
  const TnLaDblVec z = Z.array();
  checks.at_most("difference to its solution, relative", std::sqrt((y - z).sq_norm() / z.sq_norm()),
                 difference_bound(A, y, z, b, bound, of_A.distance), "");
}

int run(const Arguments& arguments) {
  const std::string path = arguments.file.empty() ? DATA_FOLDER "/mtx/bcsstk01.mtx" : arguments.file;
  const TnLaDblMat K = read_symmetric_matrix(path);
  if (K.n_rows() != frame::kUnknowns) {
    throw DataError(path + ": the matrix has " + std::to_string(K.n_rows()) + " rows, the frame has " +
                    std::to_string(frame::kUnknowns) + " unknowns");
  }
  kit_assertion_handler = count_report;

  std::printf("A frame of %zu nodes with 3 displacements and 3 rotations each\n", frame::kNodes);
  Checks checks;
  check_frame(K, checks);
  std::vector<Response> responses = loads();
  run_statics(K, responses, checks);

  std::printf("\nEigenfrequencies, with unit masses\n");
  const Spectrum of_K = spectrum(K, checks);
  print_frequencies(of_K);
  checks.is_true("K is positive definite, all rounding errors counted",
                 of_K.lowest(1) > 0.0 && of_K.distance > 0.0);
  if (checks.exit_code() != 0) return checks.exit_code();
  const double w = (std::sqrt(of_K.lowest(1)) + std::sqrt(of_K.lowest(2))) / 2.0;
  Response shaken{"Push that swings as cos(w t)", responses[0].load, {}};
  run_dynamics(K, w, shaken, checks);
  checks.is_true("no violated precondition was reported", n_reports == 0);

  responses.push_back(shaken);
  draw_responses(K, responses, arguments.picture);
  std::printf("\nPicture: %s\n", arguments.picture.c_str());
  return checks.exit_code();
}

}  // namespace

int main(int argc, char** argv) {
  const Arguments arguments = parse_arguments(argc, argv, "stiffness", Input::file);
  try {
    return run(arguments);
  } catch (const std::exception& problem) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", problem.what());
    return 2;
  }
}
