// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <vector>

#include "common/case.h"

// What a problem's file, bench/<problem>/problem.cpp, has to provide.
namespace bench {

// All rows of the problem's table, without numbers.
std::vector<Case> cases();

// Gives the case its numbers, the same ones in every run.
void fill(Case& c);

// How many numbers an answer has.
std::size_t answer_size(const Case& c);

// The error of an answer in units of what rounding can explain: 1 is the limit, NaN is wrong.
double error(const Case& c, const double* answer);

}  // namespace bench
