#pragma once

#include <cstring>

#include "tvmath/point.h"

// The loops over long lists exist twice, for the baseline and for wider registers; the loader picks. The
// terms of one point are the lanes and the points follow in list order, so both give the same bits.
// Sanitizers run before the loader's choice can be made.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define TVMATH_WIDE_LOOP __attribute__((target_clones("avx2", "default")))
#else
#define TVMATH_WIDE_LOOP
#endif

inline namespace tvmath {

/// The slots weight, x, y, z of one point.
using point_lanes = double __attribute__((vector_size(32)));

/// Loads all four slots. The weight, and z of a 2D point, are not meant to reach a result.
#define TVMATH_LOAD_LANES(lanes, p) std::memcpy(&(lanes), &(p)[0], sizeof(lanes))
#define TVMATH_STORE_LANES(p, lanes) std::memcpy(&(p)[0], &(lanes), sizeof(lanes))

}  // namespace tvmath
