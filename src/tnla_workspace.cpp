// SPDX-License-Identifier: MIT

#include "tnla_workspace.h"

// Out of line, because every instance of every template has one.

TnLaWorkspace::TnLaWorkspace(std::size_t size)
    : heap_(size > kInside ? new std::byte[size] : nullptr), next_(heap_ != nullptr ? heap_ : inside_) {}

TnLaWorkspace::~TnLaWorkspace() { delete[] heap_; }
