// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

#include "tnexport.h"

class TnString;

// Tells an operation which of its behaviours a caller wants.  A client derives from it, overrides
// behaviour_level and hands the object to operations that ask.
class TN_API TnOperationBehaviour {
 public:
  // Every operation at its present level.
  TnOperationBehaviour() = default;
  TnOperationBehaviour(const TnOperationBehaviour&) = default;
  TnOperationBehaviour& operator=(const TnOperationBehaviour&) = default;
  virtual ~TnOperationBehaviour();

  // Reserved: they keep the slots of later additions.
  virtual void reserved_1();
  virtual void reserved_2();

  // The level at which `operation` of `package` is to behave; 1, the present one, unless overridden.
  virtual std::int16_t behaviour_level(const TnString* package, int operation, std::int16_t version);
};
