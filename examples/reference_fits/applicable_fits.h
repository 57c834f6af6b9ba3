#pragma once

#include <optional>

#include "reference_set.h"

/// What a fit gives; nothing for its null feature.
using answer = std::optional<figures>;

/// What a fit promises: least squares of the distances; nearly that, off by the second order of the scatter;
/// or the algebraic feature.
enum class promise { least_squares, nearly_least_squares, algebraic };

/// A fit of the library. One with a given centre, point or direction is given that of the reference answer,
/// so that the rest of it must come out.
struct named_fit {
    char const* name;
    char const* kind;  ///< Of the sets that it applies to.
    promise promised;
    answer (*run)(reference_set const&);
};

/// All fits of the kinds that have reference sets.
std::vector<named_fit> const& applicable_fits();
