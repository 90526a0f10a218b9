// SPDX-License-Identifier: MIT

#include "outline.h"

#include "closed_curve.h"
#include "common/text_file.h"

namespace {

constexpr std::size_t kMostPoints = 20000;

constexpr double kShortest = 1.0;  // mm, so that the table shows it
constexpr double kLongest = 1e9;

}  // namespace

std::vector<Point> read_outline(const std::string& path) {
  std::vector<Point> points;
  for (const std::vector<double>& row : read_rows(path, 2, kPointsPerControl * kFewestControl)) {
    points.push_back({row[0], row[1]});
  }
  if (points.size() > kMostPoints) {
    throw DataError(path + ": more than " + std::to_string(kMostPoints) + " points");
  }
  const double length = polygon_length(points);
  if (length < kShortest) throw DataError(path + ": the outline is less than 1 mm long");
  if (length > kLongest) throw DataError(path + ": the outline is more than 1e9 mm long");
  return points;
}
