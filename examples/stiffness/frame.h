// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

// The frame whose stiffness matrix bcsstk01 is: two storeys, eight nodes, clamped to the ground.
//
//              4-------------3          y up, x along 1-4, z along 1-2; the ground is y = 0
//             /|            /|
//            1-------------2 |          unknown 6 (node - 1) + k: k = 0 to 2 the displacement in x, y, z,
//            | 8-----------|-7                                    k = 3 to 5 the rotation about x, y, z
//            |             |/
//            5-------------6            columns 1-5, 2-6, 3-7, 4-8, and from 5 to 8 to the ground;
//            :             :            a brace 3-8; no beam 5-8
//
// The file does not say so: it is read off the matrix.  A beam of length L that runs along x resists a
// displacement in y with 12 EI/L^3 and a rotation about z with 6 EI/L^2, so that L/2 is the quotient, and
// the signs say which end comes first.  `rigid_motions` is the test of it.
namespace frame {

inline constexpr std::size_t kNodes = 8;
inline constexpr std::size_t kUnknowns = 6 * kNodes;
inline constexpr std::size_t kFreeNodes = 4;  // the first four: no member of theirs ends in the ground

using Vector = std::array<double, 3>;

// In the file's unit; inches, by the look of 144, 180, 360 and 600.
inline constexpr std::array<Vector, kNodes> kPositions = {{{0, 324, 0},
                                                           {0, 324, 600},
                                                           {360, 324, 600},
                                                           {360, 324, 0},
                                                           {0, 180, 0},
                                                           {0, 180, 600},
                                                           {360, 180, 600},
                                                           {360, 180, 0}}};

// A place on the ground, or on a member, and how far it has moved.
struct Place {
  Vector at;
  Vector moved;
};

// The nodes that the matrix joins: pairs with a 6 x 6 block that is not zero.
std::vector<std::pair<std::size_t, std::size_t>> members(const TnLaDblMat& K);

// Three displacements and three rotations of the frame as a rigid body, 48 x 6.  They bend nothing, so that
// K times one of them is zero at the free nodes.
TnLaDblMat rigid_motions();

// Points along a member from node a to node b, displaced by x as a beam bends: a cubic whose ends turn as
// the nodes do.
std::vector<Place> bent_member(const TnLaDblVec& x, std::size_t a, std::size_t b);

// The same for the column that stands on the ground below node b.
std::vector<Place> bent_column(const TnLaDblVec& x, std::size_t b);

}  // namespace frame
