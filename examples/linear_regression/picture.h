// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "data_set.h"
#include "regression.h"

// Whether draw_fit can show a data set: a curve over one predictor, with more than one place on it.
bool can_be_drawn(const DataSet& data);

// The observations, and the curve of the fit.  Throws DataError if the file cannot be written.
void draw_fit(const DataSet& data, const Fit& result, const std::string& path);
