// SPDX-License-Identifier: MIT

#pragma once

#include <vector>

#include "accuracy/families.h"

// The types of matrices of linear systems that several families have.

Matrix uniform(Random& random, std::size_t m, std::size_t n);
Matrix well_conditioned(Random& random, std::size_t m, std::size_t n);

// Of full rank.
std::vector<Type> regular_types();
// With zero columns.
std::vector<Type> singular_types();

// Appends a type for every spread of the singular values, times a factor that brings it into the range.
void add_conditioned(std::vector<Type>& types, const char* name, long double condition, double factor);

// The least |R(j, j)| that the decompositions can use, where column j has a reflection.
constexpr double kShortest = 1e-10;

// Singular values of 1e-15 become 2e-5.
constexpr double kIntoRange = 0x1p34;
