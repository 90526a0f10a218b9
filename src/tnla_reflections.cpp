// SPDX-License-Identifier: MIT

#include "tnla_reflections.h"

#include "tnla_access.h"

void tnla_keep_reflections(TnArray<TnLaHouseholder*>& list, std::size_t m, std::size_t n_made,
                           const tnla_kernels::StoredReflection* made) {
  list.set_size(n_made, true);
  for (std::size_t j = 0; j < n_made; ++j) {
    const int pivot = static_cast<int>(j);
    list[j] = TnLaAccess::new_reflection(pivot, pivot + 1, static_cast<int>(m), made[j]);
  }
}

void tnla_delete_reflections(TnArray<TnLaHouseholder*>& list) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    delete list[i];
    list[i] = nullptr;
  }
}
