// SPDX-License-Identifier: MIT

#include "cloud.h"

#include <cmath>
#include <vector>

#include "common/text_file.h"

// Far enough for any body, and near enough for the squares.
static constexpr double kFarthest = 1e9;  // mm

TnLaDblMat read_cloud(const std::string& path) {
  const std::vector<std::vector<double>> rows = read_rows(path, 3, 3);
  TnLaDblMat cloud(rows.size(), 3, 0.0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      if (std::fabs(rows[i][j]) > kFarthest) {
        throw DataError(path + ": point " + std::to_string(i + 1) + " is farther than 1e9 mm away");
      }
      cloud(i, j) = rows[i][j];
    }
  }
  return cloud;
}
