// SPDX-License-Identifier: MIT

#include <functional>
#include <string>
#include <vector>

#include "accuracy/families.h"
#include "accuracy/measures.h"
#include "accuracy/tally.h"
#include "tarntnla.h"

namespace {

// A matrix and its eigenvalues, if they are known.
struct Spectrum {
  Matrix A;
  std::vector<long double> values;
};

struct SymmetricType {
  std::string name;
  std::function<Spectrum(Random&, std::size_t n)> make;
  bool knows_values = true;
};

std::vector<long double> with_random_signs(Random& random, std::vector<long double> values) {
  for (long double& x : values) x *= random.below(2) == 0 ? 1.0L : -1.0L;
  return values;
}

Spectrum times(const Spectrum& spectrum, double factor) {
  std::vector<long double> values = spectrum.values;
  for (long double& x : values) x *= factor;
  return {scaled(spectrum.A, factor), values};
}

Spectrum of_spread(Random& random, std::size_t n, Spread spread, bool signs, bool turned) {
  std::vector<long double> values = singular_values(random, n, spread, 1.0L / kUnit);
  if (signs) values = with_random_signs(random, values);
  return {turned ? of_eigenvalues(random, values) : rounded(wide_diagonal(n, n, values)), values};
}

Matrix random_symmetric(Random& random, std::size_t n) {
  Matrix A = random_matrix(random, n, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = j + 1; i < n; ++i) A(i, j) = A(j, i);
  }
  return A;
}

std::vector<SymmetricType> symmetric_types() {
  std::vector<SymmetricType> types = {
      {"zero",
       [](Random&, std::size_t n) {
         return Spectrum{Matrix(n, n), std::vector<long double>(n)};
       }},
      {"identity",
       [](Random&, std::size_t n) {
         return Spectrum{reference::identity(n), std::vector<long double>(n, 1.0L)};
       }},
      {"all eigenvalues the same",
       [](Random& random, std::size_t n) {
         const std::vector<long double> values(n, 0.7L);
         return Spectrum{of_eigenvalues(random, values), values};
       }},
      {"uniform entries",
       [](Random& random, std::size_t n) {
         return Spectrum{random_symmetric(random, n), {}};
       },
       false},
      {"uniform entries, times 2^900",
       [](Random& random, std::size_t n) {
         return Spectrum{scaled(random_symmetric(random, n), 0x1p900), {}};
       },
       false},
      {"uniform entries, times 2^-900",
       [](Random& random, std::size_t n) {
         return Spectrum{scaled(random_symmetric(random, n), 0x1p-900), {}};
       },
       false},
      {"geometric, times 2^900",
       [](Random& random, std::size_t n) {
         return times(of_spread(random, n, Spread::geometric, true, true), 0x1p900);
       }},
      {"geometric, times 2^-900",
       [](Random& random, std::size_t n) {
         return times(of_spread(random, n, Spread::geometric, true, true), 0x1p-900);
       }},
  };
  for (const auto& [spread, name] : spreads()) {
    for (const bool turned : {false, true}) {
      for (const bool signs : {false, true}) {
        types.push_back({std::string(turned ? "turned, " : "diagonal, ") + name +
                             (signs ? ", of either sign" : ", positive"),
                         [of = spread, signs, turned](Random& random, std::size_t n) {
                           return of_spread(random, n, of, signs, turned);
                         }});
      }
    }
  }
  return types;
}

void measure_basis(const Spectrum& spectrum, Ratios& ratios) {
  const std::size_t n = spectrum.A.n;
  TnLaDblMat a = dense(spectrum.A);
  TnArray<double> d;
  TnLaDblMat vectors;
  ASSERT_TRUE(tnla_eigenvector_basis(a, d, vectors));
  const Matrix V = plain(vectors);
  WideMatrix DVt(n, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) DVt(i, j) = static_cast<long double>(d[i]) * V(j, i);
  }
  const long double unit = count(n) * one_norm(spectrum.A) * kUlp;
  ratios[kEigen] = ratio(one_norm(minus_product(spectrum.A, V, DVt)), unit);
  ratios[kVectors] = orthogonality(V, kUlp);
  if (spectrum.values.empty()) return;
  std::vector<long double> values = spectrum.values;
  std::sort(values.begin(), values.end(), std::greater<>());
  ratios[kValues] = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    ratios.worsen(kValues, ratio(std::fabs(d[i] - values[i]), unit));
  }
}

}  // namespace

std::size_t symmetric_matrices() {
  constexpr std::size_t kSmall = 320;
  Tally tally("eigenvectors of symmetric matrices");
  for_all(symmetric_types(), square_shapes(), kSmall,
          [&](const SymmetricType& type, Shape shape, Random& random, std::size_t) {
            const Spectrum spectrum = type.make(random, shape.n);
            Ratios ratios;
            measure_basis(spectrum, ratios);
            if (type.knows_values) {
              tally.add(type.name, spectrum.A, ratios, {kEigen, kVectors, kValues});
            } else {
              tally.add(type.name, spectrum.A, ratios, {kEigen, kVectors});
            }
          });
  return tally.close();
}
