# SPDX-License-Identifier: MIT

# The floating-point contract, in one place.
#
# Every result is a fixed sequence of IEEE 754 double operations, each rounded on its own: the same bits at
# every optimisation level, with either compiler, on every processor.  That rules out
#   - contraction of a * b + c into one fused operation (-ffp-contract=off),
#   - everything that -ffast-math and its parts allow,
#   - the x87 registers, which round to other precisions (SSE2 on x86).

function(tarn_floating_point target)
  # The negations come last on the command line, after whatever a parent project adds to all its targets.  Clang
  # takes the first of GCC's for a wish for exact floating-point exceptions, which costs half of the speed, and its
  # own resets the contraction, so that this comes behind it.
  target_compile_options(${target} PRIVATE
    $<IF:$<CXX_COMPILER_ID:GNU>,-fno-unsafe-math-optimizations,-fno-fast-math> -fno-associative-math
    -fno-reciprocal-math -fno-finite-math-only -fsigned-zeros -ffp-contract=off)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86)$" OR (CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64"
                                                           AND CMAKE_SIZEOF_VOID_P EQUAL 4))
    target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
  endif()
endfunction()

# A module that is linked with -ffast-math has the processor flush subnormals to zero as soon as it is loaded.
# Only another level takes -Ofast back.
function(tarn_floating_point_link target)
  target_link_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-unsafe-math-optimizations> -fno-fast-math)
  if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${TARN_BUILD_TYPE}}" MATCHES "-Ofast")
    target_link_options(${target} PRIVATE -O2)
  endif()
endfunction()

# Whoever builds the library alone is told.  A parent project may have such flags for its own targets.
string(TOUPPER "${CMAKE_BUILD_TYPE}" TARN_BUILD_TYPE)
set(_flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${TARN_BUILD_TYPE}}")
if(PROJECT_IS_TOP_LEVEL AND _flags MATCHES "-(ffast-math|Ofast|funsafe-math-optimizations|fassociative-math|freciprocal-math|ffinite-math-only|fno-signed-zeros|ffp-contract=(fast|on)|mfpmath=387|ffp-model=(fast|aggressive))")
  message(FATAL_ERROR "TARNtnla promises the same bits everywhere and cannot be built with -${CMAKE_MATCH_1}.")
endif()
