// SPDX-License-Identifier: MIT

#include "picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "common/drawing.h"

namespace {

constexpr int kPieces = 400;  // of the curve
constexpr double kDot = 3.5;
constexpr double kHeight = 0.55;  // of the width

struct Interval {
  double low;
  double high;
  double length() const { return high - low; }
};

Interval reach(const std::vector<double>& values) {
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  return {*low, *high};
}

double value(const DataSet& data, const Fit& result, double x) {
  double sum = 0.0;
  for (std::size_t j = 0; j < data.terms.size(); ++j) {
    sum += result.coefficients(j, 0) * std::pow(x, data.terms[j].degree);
  }
  return sum;
}

std::string axis(const char* name, Interval reach) {
  char words[96];
  std::snprintf(words, sizeof words, "%s from %g to %g", name, reach.low, reach.high);
  return words;
}

}  // namespace

bool can_be_drawn(const DataSet& data) {
  return data.predictors.size() == 1 && reach(data.predictors[0]).length() > 0.0 &&
         reach(data.response).length() > 0.0;
}

void draw_fit(const DataSet& data, const Fit& result, const std::string& path) {
  const Interval x = reach(data.predictors[0]);
  const Interval y = reach(data.response);
  const auto place = [x, y](double at, double height) {
    return Point{(at - x.low) / x.length(), kHeight * (height - y.low) / y.length()};
  };
  std::vector<Point> observations;
  for (std::size_t i = 0; i < data.n_observations(); ++i) {
    observations.push_back(place(data.predictors[0][i], data.response[i]));
  }
  std::vector<Point> curve;
  for (int i = 0; i <= kPieces; ++i) {
    const double at = x.low + x.length() * i / kPieces;
    curve.push_back(place(at, value(data, result, at)));
  }

  std::vector<Point> shown = curve;
  shown.insert(shown.end(), observations.begin(), observations.end());
  Drawing drawing(data.name + ": the fit of " + std::to_string(data.terms.size()) + " coefficients", shown);
  drawing.line(curve, Style::curve);
  drawing.dots(observations, kDot, Style::data);
  drawing.explain_dots(Style::data, std::to_string(data.n_observations()) + " observations, " +
                                        axis("x", x) + ", " + axis("y", y));
  drawing.explain(Style::curve, result.by_qr ? "the curve of least squares, by QR"
                                             : "the curve of least squares, by the rank-revealing solve");
  drawing.write(path);
}
