// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "common/text_file.h"

// A regression problem with a certified solution, in the text format of examples/data/nist:
//
//     # comment
//     key value ...                 observations, parameters, design, certified, residual_sd, ...
//     data y x ...                  the names of the columns, then one row per observation, y first

// One column of the model: a predictor to a power; degree 0 is the column of ones.
struct Term {
  std::size_t predictor;
  int degree;
};

struct Coefficient {
  std::string name;
  double certified;
};

struct DataSet {
  std::string name;
  std::vector<Term> terms;
  std::vector<Coefficient> coefficients;  // one for each term
  double residual_sd = 0.0;               // certified
  std::vector<double> response;           // y, one per observation
  std::vector<std::vector<double>> predictors;

  std::size_t n_observations() const { return response.size(); }
};

// Throws DataError unless the file is whole and says what it should.
DataSet read_data_set(const std::string& path);
