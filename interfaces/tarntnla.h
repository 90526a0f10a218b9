// SPDX-License-Identifier: MIT

#pragma once

// The whole public interface of TARNtnla.

#include "tnarray_i.h"
#include "tnarraydebug.h"
#include "tnassert.h"
#include "tnerr.h"
#include "tnjournal.h"
#include "tnla_eigenvector_basis_i.h"
#include "tnla_i.h"
#include "tnla_linearsolve_i.h"
#include "tnla_matrix_vector_i.h"
#include "tnla_util_adapt_jet_i.h"
#include "tnla_util_i.h"
#include "tnlablkbndsolver_i.h"
#include "tnlacholesky_i.h"
#include "tnlaerr_i.h"
#include "tnlahouseholder_i.h"
#include "tnlaqrdecompo_i.h"
#include "tnlatsmallmat_i.h"
#include "tnlatsmallvec_i.h"
#include "tnoperationbehaviour.h"
#include "tnresult.h"
#include "tnstring.h"
