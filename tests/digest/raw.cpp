// SPDX-License-Identifier: MIT

#include "families.h"
#include "placed.h"

// The kernels on plain arrays: norms, scalar products, linear combinations, cross products.

void raw_round(Data& data, Digest& digest) {
  // Every other round has the three elements of a point, which have code of their own.
  const std::size_t size = data.round() % 2 == 1 && data.one_in(2) ? 3 : data.size(1000);
  const auto n = static_cast<int>(size);
  const Placed x(data.numbers(size));
  const Placed y(data.one_in(8) ? std::vector<double>(x.data(), x.data() + size) : data.numbers(size));
  const double a = data.number();
  const double b = data.number();
  digest.add(tnla_sq_norm(n, x.data(), nullptr));
  digest.add(tnla_sq_norm(n, x.data(), y.data()));
  digest.add(tnla_norm(n, x.data(), nullptr));
  digest.add(tnla_norm(n, x.data(), y.data()));
  const std::vector<double> before = data.numbers(size);
  for (unsigned flags = 0; flags < 8; ++flags) {
    const bool unit_x = (flags & 1) != 0;
    const bool unit_y = (flags & 2) != 0;
    const bool unit_result = (flags & 4) != 0;
    if (!unit_result) digest.add(tnla_scalprod(n, x.data(), y.data(), unit_x, unit_y));
    Placed r(before);
    tnla_lincomb(n, x.data(), a, y.data(), b, r.data(), unit_x, unit_y, unit_result);
    digest.add(r.data(), size);
    tnla_crossprod(n, x.data(), y.data(), r.data(), unit_x, unit_y, unit_result);
    digest.add(r.data(), size);
  }
  Placed r(before);
  tnla_ortho_vec(n, x.data(), r.data());
  digest.add(r.data(), size);
  tnla_lincomb(n, x.data(), a, r.data(), b, r.data());  // in place
  digest.add(r.data(), size);
  digest.add(tnla_normalize(n, r.data()));
  digest.add(r.data(), size);
  tnla_ortho_vec(n, r.data(), r.data());
  digest.add(r.data(), size);
}
