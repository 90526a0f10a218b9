// SPDX-License-Identifier: MIT

#include "common/gsl.h"

#include <gsl/gsl_eigen.h>

namespace {

struct FreeWorkspace {
  void operator()(gsl_eigen_symmv_workspace* x) const { gsl_eigen_symmv_free(x); }
};

struct Basis {
  bench::Matrix A;
  bench::Matrix copy;
  bench::Matrix V;
  bench::Vector d;
  std::unique_ptr<gsl_eigen_symmv_workspace, FreeWorkspace> work;

  explicit Basis(const bench::Case& c)
      : A(bench::matrix_a(c)),
        copy(bench::new_matrix(c.n, c.n)),
        V(bench::new_matrix(c.n, c.n)),
        d(bench::new_vector(c.n)),
        work(gsl_eigen_symmv_alloc(static_cast<std::size_t>(c.n))) {}
  void step() {
    gsl_matrix_memcpy(copy.get(), A.get());
    gsl_eigen_symmv(copy.get(), d.get(), V.get(), work.get());
  }
  void answer(double* out) const {
    bench::copy_out(*d, out);
    bench::copy_out(*V, out + d->size);
  }
};

}  // namespace

std::unique_ptr<bench::Task> bench::make_task(const Case& c) { return task<Basis>(c); }
