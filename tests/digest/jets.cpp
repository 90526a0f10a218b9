// SPDX-License-Identifier: MIT

#include "families.h"

// The adaptation of one jet of a curve to another.

namespace {

class Level : public TnOperationBehaviour {
 public:
  explicit Level(std::size_t level) : level_(static_cast<std::int16_t>(level)) {}
  std::int16_t behaviour_level(const TnString* /*package*/, int /*operation*/,
                               std::int16_t /*version*/) override {
    return level_;
  }

 private:
  std::int16_t level_;
};

// Mostly of three rows and four columns.
TnLaDblMat jet(Data& data) {
  const std::size_t n_rows = data.one_in(4) ? data.short_size() : 3;
  return data.matrix(n_rows, data.one_in(6) ? data.below(7) : 4);
}

void adapt(Data& data, Digest& digest) {
  TnLaDblMat x = jet(data);
  const TnLaDblMat ref = data.one_in(10) ? jet(data) : data.matrix(x.n_rows(), x.n_cols());
  Level level(data.below(2));
  int orientation = static_cast<int>(data.below(3)) - 1;
  int* const given = data.one_in(2) ? &orientation : nullptr;
  TnOperationBehaviour* const behaviour = data.one_in(2) ? &level : nullptr;
  const int order =
      data.one_in(8) ? static_cast<int>(data.below(7)) - 1 : 1 + static_cast<int>(data.below(3));
  const bool linear_only = data.one_in(5);
  tnla_util_adapt_jet(behaviour, order, x, data.one_in(20) ? x : ref, linear_only, given);
  digest.add(x);
  digest.add(orientation);
}

}  // namespace

void jets_round(Data& data, Digest& digest) {
  for (int k = 0; k < 6; ++k) adapt(data, digest);
}
