// SPDX-License-Identifier: MIT

#include "tnoperationbehaviour.h"

TnOperationBehaviour::~TnOperationBehaviour() = default;

void TnOperationBehaviour::reserved_1() {}

void TnOperationBehaviour::reserved_2() {}

std::int16_t TnOperationBehaviour::behaviour_level(const TnString* /*package*/, int /*operation*/,
                                                   std::int16_t /*version*/) {
  return 1;
}
