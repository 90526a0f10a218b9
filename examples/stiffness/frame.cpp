// SPDX-License-Identifier: MIT

#include "frame.h"

namespace frame {

namespace {

constexpr int kPieces = 24;  // of the curve of a bent member

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// An end of a member: where it is, how far it has moved, how it has turned.
struct End {
  Vector at;
  Vector moved;
  Vector turned;
};

End end_at(const TnLaDblVec& x, std::size_t node) {
  const int first = static_cast<int>(6 * node);
  return {
      kPositions[node], {x(first), x(first + 1), x(first + 2)}, {x(first + 3), x(first + 4), x(first + 5)}};
}

End ground_below(std::size_t node) {
  return {{kPositions[node][0], 0.0, kPositions[node][2]}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
}

// The cubic of Hermite: t = 0 at a, t = 1 at b; the derivative at an end is its rotation x (b - a).
std::vector<Place> bent(const End& a, const End& b) {
  const Vector chord = {b.at[0] - a.at[0], b.at[1] - a.at[1], b.at[2] - a.at[2]};
  const Vector a_slope = cross(a.turned, chord);
  const Vector b_slope = cross(b.turned, chord);
  std::vector<Place> places;
  for (int i = 0; i <= kPieces; ++i) {
    const double t = static_cast<double>(i) / kPieces;
    const double s = 1.0 - t;
    Place place{};
    for (std::size_t k = 0; k < 3; ++k) {
      place.at[k] = s * a.at[k] + t * b.at[k];
      place.moved[k] = s * s * (1.0 + 2.0 * t) * a.moved[k] + t * t * (1.0 + 2.0 * s) * b.moved[k] +
                       s * s * t * a_slope[k] - t * t * s * b_slope[k];
    }
    places.push_back(place);
  }
  return places;
}

bool has_block(const TnLaDblMat& K, std::size_t a, std::size_t b) {
  for (std::size_t j = 6 * b; j < 6 * b + 6; ++j) {
    for (std::size_t i = 6 * a; i < 6 * a + 6; ++i) {
      if (K(i, j) != 0.0) return true;
    }
  }
  return false;
}

}  // namespace

std::vector<std::pair<std::size_t, std::size_t>> members(const TnLaDblMat& K) {
  std::vector<std::pair<std::size_t, std::size_t>> pairs;
  for (std::size_t b = 0; b < kNodes; ++b) {
    for (std::size_t a = 0; a < b; ++a) {
      if (has_block(K, a, b)) pairs.emplace_back(a, b);
    }
  }
  return pairs;
}

TnLaDblMat rigid_motions() {
  TnLaDblMat R(kUnknowns, 6, 0.0);
  for (std::size_t node = 0; node < kNodes; ++node) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      Vector turn = {0.0, 0.0, 0.0};
      turn[axis] = 1.0;
      const Vector moved = cross(turn, kPositions[node]);
      R(6 * node + axis, axis) = 1.0;
      R(6 * node + 3 + axis, 3 + axis) = 1.0;
      for (std::size_t k = 0; k < 3; ++k) R(6 * node + k, 3 + axis) = moved[k];
    }
  }
  return R;
}

std::vector<Place> bent_member(const TnLaDblVec& x, std::size_t a, std::size_t b) {
  return bent(end_at(x, a), end_at(x, b));
}

std::vector<Place> bent_column(const TnLaDblVec& x, std::size_t b) {
  return bent(ground_below(b), end_at(x, b));
}

}  // namespace frame
